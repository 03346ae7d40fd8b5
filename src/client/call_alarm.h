// SPDX-License-Identifier: Apache-2.0
// What ends the wait of a call from another thread: a stop that is requested, a callback that
// threw.
#pragma once

#include <trellant/base/file_descriptor.h>

namespace trellant {

class CallAlarm {
  public:
    /// Throws AAFWorkerClientError launchFailed.
    CallAlarm();

    /// Readable from the first ring on.
    [[nodiscard]] int descriptor() const noexcept { return pipe_.reading.number(); }
    /// Safe from any thread.
    void ring() noexcept;

  private:
    Pipe pipe_;
};

/// A pipe between host and worker. Throws AAFWorkerClientError launchFailed.
[[nodiscard]] Pipe makePipeOfCall();

}  // namespace trellant
