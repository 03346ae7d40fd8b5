// SPDX-License-Identifier: Apache-2.0
// The audio files beside hand-offs. Ten thousand hand-offs may lie in one folder: it is read for
// the first of them, and kept until one of another folder comes.
#pragma once

#include <trellant/handoff/media_folders.h>
#include <trellant/handoff/work_progress.h>

#include <memory>
#include <mutex>
#include <string>

namespace trellant::scan {

/// Safe from several threads.
class MediaBeside {
  public:
    /// What lies beside the file at the absolute `path`, as MediaFolders::addBeside has it.
    [[nodiscard]] std::shared_ptr<const MediaFolders> of(const std::string& path);

  private:
    std::mutex mutex_;
    WorkProgress progress_;
    std::string folder_;
    std::shared_ptr<const MediaFolders> media_;
};

}  // namespace trellant::scan
