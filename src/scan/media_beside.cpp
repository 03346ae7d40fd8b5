// SPDX-License-Identifier: Apache-2.0
#include "media_beside.h"

#include <utility>
#include <vector>

namespace trellant::scan {

std::shared_ptr<const MediaFolders> MediaBeside::of(const std::string& path) {
    std::string folder = path.substr(0, path.rfind('/') + 1);
    const std::lock_guard lock(mutex_);
    if (!media_ || folder != folder_) {
        auto media = std::make_shared<MediaFolders>(std::vector<std::string>(), progress_);
        media->addBeside(path);
        media_ = std::move(media);
        folder_ = std::move(folder);
    }
    return media_;
}

}  // namespace trellant::scan
