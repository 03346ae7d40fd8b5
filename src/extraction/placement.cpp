// SPDX-License-Identifier: Apache-2.0

#include "placement.h"

#include "moving.h"

#include <trellant/extraction/sha256.h>
#include <trellant/extraction/staging.h>
#include <trellant/io/errors.h>

#include <cerrno>
#include <sys/stat.h>
#include <unistd.h>

namespace trellant {

namespace {

/// A name that has this many neighbours is not looked at further.
constexpr std::uint64_t lastNumber = 1'000'000;

/// 0 for what cannot be looked at: nobody finds bytes like its own.
std::uint64_t sizeOf(const std::string& path) {
    struct stat status {};
    return ::lstat(path.c_str(), &status) == 0 ? static_cast<std::uint64_t>(status.st_size) : 0;
}

std::string seriesOf(const NumberedName& name, std::uint64_t number) {
    return FreeNumbers::series(number, [&](std::uint64_t other) { return name.withNumber(other); });
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

bool Placement::isInTheWay(const NumberedName& name, std::uint64_t number,
                           const std::string& path) {
    progress_.check();
    struct stat there {};
    if (taken_.contains(path)) {
        return true;
    }
    if (::lstat(path.c_str(), &there) != 0 ||
        (force_ && mayBeReplaced(path) && !read_.holds(path))) {
        return false;
    }
    if (S_ISREG(there.st_mode)) {
        standing_.add(seriesOf(name, number), number, path,
                      static_cast<std::uint64_t>(there.st_size));
    }
    return true;
}

std::optional<std::uint64_t> Placement::sameBytes(const Wish& wish, std::uint64_t end) {
    for (std::uint64_t first = wish.name.number; first < end;
         first = FreeNumbers::lastOfSeries(first) + 1) {
        const auto same = standing_.find(seriesOf(wish.name, first), first, wish.size, wish.sha256);
        if (same) {
            return same;
        }
    }
    return std::nullopt;
}

Placement::Place Placement::placeFor(const Wish& wish) {
    const NumberedName& name = wish.name;
    // That of the path last asked for.
    std::uint64_t asked = 0;
    const auto pathOf = [&](std::uint64_t number) {
        asked = number;
        return directory_ + "/" + name.withNumber(number);
    };
    const auto free = numbers_.find(name.number, lastNumber, pathOf, [&](const std::string& path) {
        return isInTheWay(name, asked, path);
    });
    if (const auto same = sameBytes(wish, free.value_or(lastNumber + 1))) {
        return {.number = *same, .hasSameBytes = true};
    }
    if (!free) {
        throw FileSystemError("find a free name for", directory_ + "/" + name.text(), EEXIST);
    }
    return {.number = *free};
}

bool Placement::hasBytesOf(const std::string& path, const Wish& wish) {
    struct stat there {};
    if (::lstat(path.c_str(), &there) != 0 || !S_ISREG(there.st_mode) ||
        static_cast<std::uint64_t>(there.st_size) != wish.size) {
        return false;
    }
    try {
        return digest(path) == wish.sha256;
    } catch (const FileSystemError&) {
        return false;
    }
}

bool Placement::settle(const std::string& path, const Wish& wish, PlacedFile& file) {
    if (!existsInAnyForm(path)) {
        return moveWithoutReplacing(wish.staged, path);
    }
    if (!force_ || !mayBeReplaced(path) || read_.holds(path)) {
        return false;
    }
    file.wasThere = hasBytesOf(path, wish);
    if (!file.wasThere) {
        moveReplacing(wish.staged, path);
    }
    return true;
}

PlacedFile Placement::place(const std::string& staged, const NumberedName& wanted) {
    const Wish wish{
        .staged = staged, .sha256 = digest(staged), .size = sizeOf(staged), .name = wanted};
    PlacedFile file{.sha256 = wish.sha256};
    for (;;) {
        const auto [number, hasSameBytes] = placeFor(wish);
        std::string name = wanted.withNumber(number);
        std::string path = directory_ + "/" + name;
        if (hasSameBytes) {
            standing_.take(seriesOf(wanted, number), number, wish.size, wish.sha256);
        } else if (!settle(path, wish, file)) {
            continue;
        }
        if (hasSameBytes || file.wasThere) {
            ::unlink(staged.c_str());
            file.wasThere = true;
        }
        taken_.insert(path);
        file.renumbered = number != wanted.number;
        file.path = std::move(path);
        file.name = std::move(name);
        return placed_.emplace_back(std::move(file));
    }
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
