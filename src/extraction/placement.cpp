// SPDX-License-Identifier: Apache-2.0

#include "placement.h"

#include "sha256.h"

#include <trellant/extraction/staging.h>
#include <trellant/io/errors.h>

#include <cerrno>
#include <cstdio>
#include <sys/stat.h>
#include <unistd.h>

namespace trellant {

namespace {

/// A name that has this many neighbours is not looked at further.
constexpr std::uint64_t lastNumber = 1'000'000;

bool existsInAnyForm(const std::string& path) {
    struct stat status {};
    return ::lstat(path.c_str(), &status) == 0;
}

void rename(const std::string& from, const std::string& to) {
    if (std::rename(from.c_str(), to.c_str()) != 0) {
        throw FileSystemError("create", to, errno);
    }
}

/// False when something stands at `to`.
bool moveWithoutReplacing(const std::string& from, const std::string& to) {
    // A second name for the file fails where one exists, which renaming does not.
    if (::link(from.c_str(), to.c_str()) == 0) {
        ::unlink(from.c_str());
        return true;
    }
    if (errno == EEXIST || existsInAnyForm(to)) {
        return false;
    }
    // Not every file system has second names.
    rename(from, to);
    return true;
}

/// What --force replaces: files, and links themselves, never what they lead to.
bool mayBeReplaced(const std::string& path) {
    struct stat status {};
    return ::lstat(path.c_str(), &status) == 0 &&
           (S_ISREG(status.st_mode) || S_ISLNK(status.st_mode));
}

}  // namespace

std::string Placement::digest(const std::string& path) {
    return fileDigest(path, [this](std::uint64_t bytes) { progress_.advance(bytes); });
}

Placement::Standing Placement::standingAt(const std::string& path, const std::string& staged,
                                          const std::string& sha256) {
    struct stat there {};
    struct stat ours {};
    if (::lstat(path.c_str(), &there) != 0) {
        return Standing::nothing;
    }
    if (!S_ISREG(there.st_mode) || ::lstat(staged.c_str(), &ours) != 0 ||
        there.st_size != ours.st_size) {
        return Standing::other;
    }
    auto known = digests_.find(path);
    if (known == digests_.end()) {
        try {
            known = digests_.emplace(path, digest(path)).first;
        } catch (const FileSystemError&) {
            // A file that cannot be read is not ours to take for equal.
            return Standing::other;
        }
    }
    return known->second == sha256 ? Standing::same : Standing::other;
}

bool Placement::settle(const std::string& path, const std::string& staged, PlacedFile& file) {
    switch (standingAt(path, staged, file.sha256)) {
        case Standing::nothing:
            return moveWithoutReplacing(staged, path);
        case Standing::same:
            ::unlink(staged.c_str());
            file.wasThere = true;
            return true;
        case Standing::other:
            if (!force_ || !mayBeReplaced(path) || read_.holds(path)) {
                return false;
            }
            rename(staged, path);
            return true;
    }
    return false;
}

PlacedFile Placement::place(const std::string& staged, const NumberedName& wanted) {
    PlacedFile file{.sha256 = digest(staged)};
    for (std::uint64_t number = wanted.number; number <= lastNumber; ++number) {
        progress_.check();
        std::string name = wanted.withNumber(number);
        std::string path = directory_ + "/" + name;
        if (taken_.contains(path) || !settle(path, staged, file)) {
            continue;
        }
        taken_.insert(path);
        file.renumbered = number != wanted.number;
        file.path = std::move(path);
        file.name = std::move(name);
        return placed_.emplace_back(std::move(file));
    }
    throw FileSystemError("find a free name for", directory_ + "/" + wanted.text(), EEXIST);
}

void Placement::keep(const std::string& staged, const std::string& name) {
    std::string path = directory_ + "/" + name;
    if (!taken_.contains(path) && moveWithoutReplacing(staged, path)) {
        taken_.insert(path);
        PlacedFile file;
        file.name = name;
        file.path = std::move(path);
        placed_.push_back(std::move(file));
    }
}

}  // namespace trellant
