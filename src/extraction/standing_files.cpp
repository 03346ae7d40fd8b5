// SPDX-License-Identifier: Apache-2.0
#include "standing_files.h"

#include <trellant/io/errors.h>

#include <utility>

namespace trellant {

std::string StandingFiles::keyOf(const std::string& series, std::uint64_t size) {
    return std::to_string(size) + " " + series;
}

void StandingFiles::add(const std::string& series, std::uint64_t number, std::string path,
                        std::uint64_t size) {
    files_[keyOf(series, size)].unread.emplace(number, std::move(path));
}

std::optional<std::uint64_t> StandingFiles::find(const std::string& series, std::uint64_t first,
                                                 std::uint64_t size, const std::string& digest) {
    const auto found = files_.find(keyOf(series, size));
    if (found == files_.end()) {
        return std::nullopt;
    }
    OfOneSize& files = found->second;
    const auto lowest = [&]() -> std::optional<std::uint64_t> {
        const auto& numbers = files.numbersByDigest[digest];
        const auto number = numbers.lower_bound(first);
        return number == numbers.end() ? std::nullopt : std::optional(*number);
    };
    std::optional<std::uint64_t> known = lowest();
    for (;;) {
        const auto next = files.unread.lower_bound(first);
        if (next == files.unread.end() || (known && *known < next->first)) {
            return known;
        }
        read(files, next);
        known = lowest();
    }
}

void StandingFiles::read(OfOneSize& files, std::map<std::uint64_t, std::string>::iterator file) {
    const auto [number, path] = *file;
    files.unread.erase(file);
    try {
        files.numbersByDigest[digest_(path)].insert(number);
    } catch (const FileSystemError&) {
        // A file that cannot be read is not ours to take for equal.
        return;
    }
}

void StandingFiles::take(const std::string& series, std::uint64_t number, std::uint64_t size,
                         const std::string& digest) {
    const auto found = files_.find(keyOf(series, size));
    if (found != files_.end()) {
        found->second.numbersByDigest[digest].erase(number);
    }
}

}  // namespace trellant
