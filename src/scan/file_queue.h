// SPDX-License-Identifier: Apache-2.0
// Files between the thread that finds them and those that read them: a few at a time, so that
// finding does not run ahead.
#pragma once

#include <trellant/scan/found_files.h>

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <mutex>
#include <optional>

namespace trellant::scan {

class FileQueue {
  public:
    static constexpr std::size_t room = 1'024;

    /// Waits for room; false when nobody takes files any more.
    [[nodiscard]] bool put(FoundFile file);
    /// No more files come.
    void close();
    /// Nobody takes files any more; those that wait are dropped.
    void abandon();
    /// Waits for one; absent when there will be none.
    [[nodiscard]] std::optional<FoundFile> take();

  private:
    std::mutex mutex_;
    std::condition_variable hasRoom_;
    std::condition_variable hasFiles_;
    std::deque<FoundFile> files_;
    bool isClosed_ = false;
    bool isAbandoned_ = false;
};

}  // namespace trellant::scan
