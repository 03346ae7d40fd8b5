// SPDX-License-Identifier: Apache-2.0
#include <trellant/base/numbered_name.h>
#include <trellant/io/errors.h>
#include <trellant/io/random_access_file.h>
#include <trellant/salvage/whole_file.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <sys/stat.h>
#include <unistd.h>

namespace trellant::salvage {

namespace {

/// A name that has this many neighbours is not looked at further.
constexpr std::uint64_t lastNumber = 10'000;
constexpr std::size_t comparedBytes = 65'536;

bool isFile(const std::string& path, bool orLink) {
    struct stat there {};
    return ::lstat(path.c_str(), &there) == 0 &&
           (S_ISREG(there.st_mode) || (orLink && S_ISLNK(there.st_mode)));
}

bool exists(const std::string& path) {
    struct stat there {};
    return ::lstat(path.c_str(), &there) == 0;
}

bool haveSameBytes(const std::string& left, const std::string& right) {
    try {
        const RandomAccessFile first(left);
        const RandomAccessFile second(right);
        if (first.size() != second.size()) {
            return false;
        }
        Bytes ofFirst(comparedBytes);
        Bytes ofSecond(comparedBytes);
        for (std::uint64_t at = 0; at < first.size(); at += comparedBytes) {
            const std::size_t count = first.readAvailable(at, ofFirst);
            if (second.readAvailable(at, ofSecond) != count || count == 0 ||
                !std::equal(ofFirst.begin(), ofFirst.begin() + static_cast<std::ptrdiff_t>(count),
                            ofSecond.begin())) {
                return false;
            }
        }
        return true;
    } catch (const FileSystemError&) {
        return false;
    }
}

/// False when something stands at `to`.
bool moveWithoutReplacing(const std::string& from, const std::string& to) {
    // A second name for the file fails where one exists, which renaming does not.
    if (::link(from.c_str(), to.c_str()) == 0) {
        ::unlink(from.c_str());
        return true;
    }
    if (errno == EEXIST || exists(to)) {
        return false;
    }
    // Not every file system has second names.
    if (std::rename(from.c_str(), to.c_str()) != 0) {
        throw FileSystemError("create", to, errno);
    }
    return true;
}

}  // namespace

WholeFile placeWhole(const std::string& staged, const std::string& directory,
                     const std::string& name, bool force, const ReadFiles& read) {
    const NumberedName wanted = NumberedName::whole(name);
    for (std::uint64_t number = wanted.number; number <= lastNumber; ++number) {
        WholeFile file{.name = wanted.withNumber(number)};
        const std::string path = directory + "/" + file.name;
        if (moveWithoutReplacing(staged, path)) {
            return file;
        }
        if (isFile(path, false) && haveSameBytes(staged, path)) {
            ::unlink(staged.c_str());
            file.wasThere = true;
            return file;
        }
        if (force && isFile(path, true) && !read.holds(path)) {
            if (std::rename(staged.c_str(), path.c_str()) != 0) {
                throw FileSystemError("create", path, errno);
            }
            return file;
        }
    }
    throw FileSystemError("find a free name for", directory + "/" + name, EEXIST);
}

}  // namespace trellant::salvage
