// SPDX-License-Identifier: Apache-2.0
// A process of three: this test, a host, and a worker that the host started. The host can be killed
// and the worker's end be seen, though it is no child of the test.
#pragma once

#include <functional>
#include <sys/types.h>

namespace trellant::testing {

class KilledHost {
  public:
    enum class Reader { goesWithTheHost, stays };

    /// Starts both. The worker's standard output and standard error go to the host; `work`, done in
    /// the worker, calls its argument once it is where the test wants it, and with its return the
    /// worker ends with status 0. Returns when the worker has called. With Reader::stays the test
    /// can read from the worker too.
    explicit KilledHost(const std::function<void(const std::function<void()>& ready)>& work,
                        Reader reader = Reader::goesWithTheHost);
    /// Ends what is left.
    ~KilledHost();
    KilledHost(const KilledHost&) = delete;
    KilledHost& operator=(const KilledHost&) = delete;
    KilledHost(KilledHost&&) = delete;
    KilledHost& operator=(KilledHost&&) = delete;

    void kill();
    /// How the worker ended, as waitpid tells it; call once, after the host was killed. Throws when
    /// it has not ended within a second.
    [[nodiscard]] int endOfWorker();

  private:
    pid_t host_ = -1;
    pid_t worker_ = -1;
    int reading_ = -1;
};

}  // namespace trellant::testing
