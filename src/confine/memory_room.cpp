// SPDX-License-Identifier: Apache-2.0
#include "memory_room.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <cstddef>
#include <fcntl.h>
#include <limits>
#include <string_view>
#include <unistd.h>

namespace trellant {

namespace {

constexpr auto npos = std::string_view::npos;

/// The longest of the files has some two kilobytes.
using Buffer = std::array<char, 8192>;

/// Reads until the end or until the buffer is full; false on failure.
bool readAll(int descriptor, Buffer& buffer, std::size_t& size) {
    for (size = 0; size < buffer.size();) {
        const ssize_t count = ::read(descriptor, buffer.data() + size, buffer.size() - size);
        if (count == 0) {
            return true;
        }
        if (count > 0) {
            size += static_cast<std::size_t>(count);
        } else if (errno != EINTR) {
            return false;
        }
    }
    return true;
}

/// Empty when it cannot be read: half a number would be another one.
std::string_view textOf(const std::string& path, Buffer& buffer) {
    const int descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0) {
        return {};
    }
    std::size_t size = 0;
    const bool isWhole = readAll(descriptor, buffer, size);
    ::close(descriptor);
    return isWhole ? std::string_view(buffer.data(), size) : std::string_view();
}

/// Takes the first line off `text`.
std::string_view nextLine(std::string_view& text) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    const std::string_view line = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    return line;
}

/// Absent for what is no number, as "max".
std::optional<std::uint64_t> numberOf(std::string_view text) {
    std::uint64_t value = 0;
    const auto [end, fault] = std::from_chars(text.data(), text.data() + text.size(), value);
    return fault == std::errc{} ? std::optional(value) : std::nullopt;
}

/// How a version of the interface calls what it tells. `reclaimable` are lines of the statistics.
struct Interface {
    std::string_view folder;
    std::string_view limit;
    std::string_view usage;
    std::array<std::string_view, 3> reclaimable;
};

constexpr std::string_view groupStatistics = "/memory.stat";
constexpr Interface firstVersion{.folder = "/memory",
                                 .limit = "/memory.limit_in_bytes",
                                 .usage = "/memory.usage_in_bytes",
                                 .reclaimable = {"total_active_file", "total_inactive_file"}};
constexpr Interface secondVersion{
    .folder = "",
    .limit = "/memory.max",
    .usage = "/memory.current",
    .reclaimable = {"active_file", "inactive_file", "slab_reclaimable"}};
/// The first version has no word for "no limit" but a number that no machine has.
constexpr std::uint64_t noLimit = std::uint64_t{1} << 62U;

struct Membership {
    const Interface* interface = nullptr;
    /// Below the mounted groups; empty for the topmost.
    std::string path{};
};

/// From lines "NUMBER:CONTROLLERS:PATH". A machine may have groups of both versions; memory is then
/// the matter of the one that names it.
Membership membershipIn(std::string_view text) {
    Membership found;
    while (!text.empty()) {
        const std::string_view line = nextLine(text);
        const std::size_t first = line.find(':');
        const std::size_t second = first == npos ? npos : line.find(':', first + 1);
        if (second == npos) {
            continue;
        }
        const std::string controllers =
            "," + std::string(line.substr(first + 1, second - first - 1)) + ",";
        const bool namesMemory = controllers.find(",memory,") != npos;
        if (namesMemory || (found.interface == nullptr && line.starts_with("0::"))) {
            found = {namesMemory ? &firstVersion : &secondVersion,
                     std::string(line.substr(second + 1))};
        }
    }
    // Outside of what is mounted here: only the topmost group can be asked.
    if (found.path == "/" || found.path.find("/..") != npos) {
        found.path.clear();
    }
    return found;
}

std::uint64_t reclaimable(const std::string& group, const Interface& interface) {
    Buffer buffer;
    std::uint64_t total = 0;
    for (auto rest = textOf(group + std::string(groupStatistics), buffer); !rest.empty();) {
        const std::string_view line = nextLine(rest);
        const std::size_t space = std::min(line.find(' '), line.size());
        const auto& names = interface.reclaimable;
        if (space > 0 && space < line.size() &&
            std::find(names.begin(), names.end(), line.substr(0, space)) != names.end()) {
            const std::uint64_t count = numberOf(line.substr(space + 1)).value_or(0);
            total += std::min(count, std::numeric_limits<std::uint64_t>::max() - total);
        }
    }
    return total;
}

/// What one group has left.
std::optional<std::uint64_t> roomOf(const std::string& group, const Interface& interface) {
    Buffer buffer;
    const auto limit = numberOf(textOf(group + std::string(interface.limit), buffer));
    if (!limit || *limit >= noLimit) {
        return std::nullopt;
    }
    const std::uint64_t used =
        numberOf(textOf(group + std::string(interface.usage), buffer)).value_or(0);
    const std::uint64_t kept = used - std::min(used, reclaimable(group, interface));
    return *limit - std::min(*limit, kept);
}

}  // namespace

std::optional<std::uint64_t> controlGroupRoom(const std::string& membership,
                                              const std::string& root) {
    Buffer buffer;
    auto [interface, path] = membershipIn(textOf(membership, buffer));
    if (interface == nullptr) {
        return std::nullopt;
    }
    const std::string top = root + std::string(interface->folder);
    std::optional<std::uint64_t> least;
    for (;;) {
        if (const auto room = roomOf(top + path, *interface)) {
            least = std::min(room, least ? least : room);
        }
        if (path.empty()) {
            return least;
        }
        const std::size_t slash = path.find_last_of('/');
        path.resize(slash == npos ? 0 : slash);
    }
}

std::optional<std::uint64_t> machineRoom(const std::string& statistics) {
    constexpr std::uint64_t kibibyte = 1024;
    Buffer buffer;
    std::optional<std::uint64_t> available;
    std::uint64_t swap = 0;
    for (auto rest = textOf(statistics, buffer); !rest.empty();) {
        std::string_view line = nextLine(rest);
        const bool isAvailable = line.starts_with("MemAvailable:");
        if (!isAvailable && !line.starts_with("SwapFree:")) {
            continue;
        }
        line.remove_prefix(line.find(':') + 1);
        line.remove_prefix(std::min(line.find_first_not_of(' '), line.size()));
        const auto count = numberOf(line);
        if (count && *count < noLimit / kibibyte) {
            (isAvailable ? available.emplace() : swap) = *count * kibibyte;
        }
    }
    return available ? std::optional(*available + swap) : std::nullopt;
}

}  // namespace trellant
