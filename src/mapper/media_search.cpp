// SPDX-License-Identifier: Apache-2.0
#include "media_search.h"

#include "file_names.h"

#include <trellant/base/text.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

namespace trellant {

namespace {

constexpr std::array<std::string_view, 5> audioExtensions{"wav", "wave", "aif", "aiff", "aifc"};

bool isHidden(std::string_view name) {
    return name.starts_with('.');
}

bool isAudioFileName(std::string_view name) {
    const auto extension = lowerCased(extensionOf(name));
    return std::find(audioExtensions.begin(), audioExtensions.end(), extension) !=
           audioExtensions.end();
}

std::string joined(const std::string& folder, std::string_view name) {
    std::string path = folder;
    if (!path.empty() && path.back() != '/') {
        path += '/';
    }
    path += name;
    return path;
}

enum class EntryKind { folder, file, link, other };

EntryKind kindOf(const dirent& entry, int folder) {
    switch (entry.d_type) {
        case DT_DIR:
            return EntryKind::folder;
        case DT_REG:
            return EntryKind::file;
        case DT_LNK:
            return EntryKind::link;
        case DT_UNKNOWN:
            break;
        default:
            return EntryKind::other;
    }
    struct stat status {};
    if (::fstatat(folder, entry.d_name, &status, AT_SYMLINK_NOFOLLOW) != 0) {
        return EntryKind::other;
    }
    if (S_ISDIR(status.st_mode)) {
        return EntryKind::folder;
    }
    if (S_ISLNK(status.st_mode)) {
        return EntryKind::link;
    }
    return S_ISREG(status.st_mode) ? EntryKind::file : EntryKind::other;
}

bool leadsToFile(int folder, const char* name) {
    struct stat status {};
    return ::fstatat(folder, name, &status, 0) == 0 && S_ISREG(status.st_mode);
}

struct TextFreer {
    void operator()(char* text) const noexcept { std::free(text); }
};

/// -1 for a folder that cannot be opened.
int openedFolder(int base, const std::string& path, int moreFlags) {
    int descriptor = -1;
    do {
        descriptor = ::openat(base, path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC | moreFlags);
    } while (descriptor < 0 && errno == EINTR);
    return descriptor;
}

struct DirectoryCloser {
    void operator()(DIR* directory) const noexcept { ::closedir(directory); }
};
using Directory = std::unique_ptr<DIR, DirectoryCloser>;

Directory opened(int descriptor) {
    if (descriptor < 0) {
        return nullptr;
    }
    Directory directory(::fdopendir(descriptor));
    if (directory == nullptr) {
        ::close(descriptor);
    }
    return directory;
}

}  // namespace

bool regularFileExists(const std::string& path) {
    // A path with a NUL names nothing; its head must not be taken for it.
    struct stat status {};
    return path.find('\0') == std::string::npos && ::stat(path.c_str(), &status) == 0 &&
           S_ISREG(status.st_mode);
}

bool mediaFileExists(const std::string& path) {
    if (!regularFileExists(path)) {
        return false;
    }
    const std::unique_ptr<char, TextFreer> resolved(::realpath(path.c_str(), nullptr));
    if (resolved == nullptr) {
        return false;
    }
    const std::string_view real(resolved.get());
    return !real.starts_with("/proc/") && !real.starts_with("/sys/");
}

bool MediaSearch::isInReach(const std::string& path) const {
    if (!mediaFileExists(path)) {
        return false;
    }
    if (!openable_ || openable_->contains(path)) {
        return true;
    }
    // Written meanwhile, or not seen by the look that the process was confined after.
    const int descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (descriptor < 0) {
        return errno != EACCES;
    }
    ::close(descriptor);
    return true;
}

std::optional<std::string> MediaSearch::locate(const std::string& lowerCasedName) {
    if (!directory_) {
        return std::nullopt;
    }
    if (!wasRead_) {
        wasRead_ = true;
        readDirectory();
    }
    const auto match = matchByName_.find(lowerCasedName);
    if (match == matchByName_.end() || match->second.ambiguous) {
        return std::nullopt;
    }
    return joined(folders_[match->second.folder], match->second.name);
}

void MediaSearch::fileAppeared(const std::string& path) {
    // Before the first search the file is simply found by it.
    if (!wasRead_ || !workDirectoryInSearch_) {
        return;
    }
    const auto name = lastPathComponent(path);
    if (!isHidden(name) && isAudioFileName(name)) {
        add(name, *workDirectoryInSearch_);
    }
}

void MediaSearch::add(std::string_view fileName, std::size_t folder) {
    const std::string lower = lowerCased(fileName);
    const auto match = matchByName_.find(lower);
    if (match == matchByName_.end()) {
        const std::string_view name = kept(fileName);
        matchByName_.emplace(lower == fileName ? name : kept(lower),
                             Match{.name = name, .folder = folder});
    } else if (match->second.folder != folder || match->second.name != fileName) {
        match->second.ambiguous = true;
    }
}

std::string_view MediaSearch::kept(std::string_view text) {
    auto* const memory = static_cast<char*>(memory_.allocate(text.size(), 1));
    std::copy(text.begin(), text.end(), memory);
    return {memory, text.size()};
}

void MediaSearch::readDirectory() {
    struct stat status {};
    if (!workDirectory_.empty() && ::stat(workDirectory_.c_str(), &status) == 0) {
        workIdentity_ = Identity{status.st_dev, status.st_ino};
    }
    const int root = openedFolder(AT_FDCWD, *directory_, 0);
    if (root < 0) {
        return;
    }
    std::vector<std::string> pending{std::string()};
    while (!pending.empty()) {
        const auto folder = std::move(pending.back());
        pending.pop_back();
        readFolder(root, folder, pending);
    }
    ::close(root);
}

void MediaSearch::readFolder(int root, const std::string& relative,
                             std::vector<std::string>& pending) {
    const auto directory =
        opened(openedFolder(root, relative.empty() ? "." : relative, O_NOFOLLOW));
    if (directory == nullptr) {
        return;
    }
    const int descriptor = ::dirfd(directory.get());
    const std::size_t folder = folders_.size();
    folders_.push_back(relative.empty() ? *directory_ : joined(*directory_, relative));
    struct stat status {};
    if (workIdentity_ && ::fstat(descriptor, &status) == 0 &&
        Identity{status.st_dev, status.st_ino} == *workIdentity_) {
        workDirectoryInSearch_ = folder;
    }
    // Safe on a stream of our own, whatever other threads read.
    // NOLINTNEXTLINE(concurrency-mt-unsafe)
    while (const auto* entry = ::readdir(directory.get())) {
        const std::string_view name(entry->d_name);
        if (isHidden(name)) {
            continue;
        }
        const auto kind = kindOf(*entry, descriptor);
        if (kind == EntryKind::folder) {
            pending.push_back(relative.empty() ? std::string(name) : joined(relative, name));
        } else if (kind != EntryKind::other && isAudioFileName(name) &&
                   (kind == EntryKind::file || (leadsToFile(descriptor, entry->d_name) &&
                                                mediaFileExists(joined(folders_[folder], name))))) {
            add(name, folder);
        }
    }
}

}  // namespace trellant
