// SPDX-License-Identifier: Apache-2.0
#include "moving.h"

#include <trellant/base/precondition.h>
#include <trellant/base/printable_path.h>
#include <trellant/extraction/audio_store.h>
#include <trellant/extraction/file_copy.h>
#include <trellant/extraction/sha256.h>
#include <trellant/extraction/staging.h>
#include <trellant/io/errors.h>

#include <algorithm>
#include <cerrno>
#include <sys/stat.h>
#include <unistd.h>

namespace trellant {

namespace {

constexpr mode_t readOnly = S_IRUSR | S_IRGRP | S_IROTH;
constexpr std::size_t levelDigits = 2;
constexpr std::size_t levels = 2;
constexpr std::size_t longestExtension = 8;

/// ".wav" of "Kick.WAV"; empty where it is no plain extension.
std::string extensionOf(const std::string& path) {
    const std::size_t dot = path.rfind('.');
    if (dot == std::string::npos || path.find('/', dot) != std::string::npos ||
        path.size() - dot - 1 > longestExtension) {
        return {};
    }
    std::string extension = path.substr(dot);
    for (char& letter : extension) {
        if (letter >= 'A' && letter <= 'Z') {
            letter = static_cast<char>(letter - 'A' + 'a');
        }
    }
    const bool isPlain = std::all_of(extension.begin() + 1, extension.end(), [](char letter) {
        return (letter >= 'a' && letter <= 'z') || (letter >= '0' && letter <= '9');
    });
    return isPlain ? extension : std::string();
}

bool areOne(const std::string& left, const std::string& right) {
    struct stat first {};
    struct stat second {};
    return ::lstat(left.c_str(), &first) == 0 && ::lstat(right.c_str(), &second) == 0 &&
           first.st_dev == second.st_dev && first.st_ino == second.st_ino;
}

/// The file system has no second names, or none between these places, or no more of this file.
bool hasNoLinks(int reason) {
    return reason == EXDEV || reason == EPERM || reason == EMLINK || reason == ENOSYS ||
           reason == EOPNOTSUPP;
}

void protect(const std::string& path) {
    // File systems without permissions refuse, and do without.
    static_cast<void>(::chmod(path.c_str(), readOnly));
}

}  // namespace

StoredFile AudioStore::keep(const std::string& path, const std::string& sha256,
                            const std::string& scratch) {
    precondition(sha256.size() > levels * levelDigits, "a digest is longer than its folders");
    StoredFile file;
    std::string folder = folder_;
    for (std::size_t level = 0; level < levels; ++level) {
        const std::string name = sha256.substr(level * levelDigits, levelDigits);
        folder += "/" + name;
        file.name += name + "/";
        if (::mkdir(folder.c_str(), 0777) != 0 && errno != EEXIST) {
            throw FileSystemError("create folder", folder, errno);
        }
    }
    file.name += sha256 + extensionOf(path);
    file.path = folder_ + "/" + file.name;
    file.wasThere = existsInAnyForm(file.path) || !add(path, sha256, file);
    if (file.wasThere && !areOne(path, file.path)) {
        checkStanding(file, sha256);
    }
    file.isLinked = isLinked(path, scratch, file);
    if (!file.isLinked && ::unlink(path.c_str()) != 0) {
        throw FileSystemError("remove", path, errno);
    }
    return file;
}

bool AudioStore::add(const std::string& path, const std::string& sha256, const StoredFile& file) {
    protect(path);
    if (::link(path.c_str(), file.path.c_str()) == 0) {
        return true;
    }
    if (errno == EEXIST) {
        return false;
    }
    if (!hasNoLinks(errno)) {
        throw FileSystemError("create", file.path, errno);
    }
    return addCopy(path, sha256, file);
}

bool AudioStore::addCopy(const std::string& path, const std::string& sha256,
                         const StoredFile& file) {
    const Staging staging(folder_);
    const std::string copy = staging.file("copy");
    copyFile(path, copy, progress_);
    if (fileDigest(copy, [this](std::uint64_t /*bytes*/) { progress_.check(); }) != sha256) {
        throw AudioStoreError(printablePath(path) + " changed while it was copied");
    }
    protect(copy);
    return moveWithoutReplacing(copy, file.path);
}

void AudioStore::checkStanding(const StoredFile& file, const std::string& sha256) {
    std::string found;
    try {
        found = fileDigest(file.path, [this](std::uint64_t bytes) { progress_.advance(bytes); });
    } catch (const FileSystemError& error) {
        throw AudioStoreError(std::string("the store cannot be relied on: ") + error.what());
    }
    if (found != sha256) {
        throw AudioStoreError("the store cannot be relied on: " + printablePath(file.path) +
                              " does not hold what its name says");
    }
}

bool AudioStore::isLinked(const std::string& path, const std::string& scratch,
                          const StoredFile& file) const {
    if (leaving_ == Leaving::nothing) {
        return false;
    }
    if (areOne(path, file.path)) {
        return true;
    }
    const std::string link = scratch + "/link";
    if (::link(file.path.c_str(), link.c_str()) != 0) {
        if (hasNoLinks(errno)) {
            return false;
        }
        throw FileSystemError("create", link, errno);
    }
    moveReplacing(link, path);
    return true;
}

}  // namespace trellant
