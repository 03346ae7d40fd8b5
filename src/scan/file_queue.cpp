// SPDX-License-Identifier: Apache-2.0
#include "file_queue.h"

#include <utility>

namespace trellant::scan {

bool FileQueue::put(FoundFile file) {
    std::unique_lock lock(mutex_);
    hasRoom_.wait(lock, [this] { return isAbandoned_ || files_.size() < room; });
    if (isAbandoned_) {
        return false;
    }
    files_.push_back(std::move(file));
    hasFiles_.notify_one();
    return true;
}

void FileQueue::close() {
    const std::lock_guard lock(mutex_);
    isClosed_ = true;
    hasFiles_.notify_all();
}

void FileQueue::abandon() {
    const std::lock_guard lock(mutex_);
    isAbandoned_ = true;
    isClosed_ = true;
    files_.clear();
    hasRoom_.notify_all();
    hasFiles_.notify_all();
}

std::optional<FoundFile> FileQueue::take() {
    std::unique_lock lock(mutex_);
    hasFiles_.wait(lock, [this] { return isClosed_ || !files_.empty(); });
    if (files_.empty()) {
        return std::nullopt;
    }
    FoundFile file = std::move(files_.front());
    files_.pop_front();
    hasRoom_.notify_one();
    return file;
}

}  // namespace trellant::scan
