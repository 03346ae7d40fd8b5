// SPDX-License-Identifier: Apache-2.0
// The text files of a bag.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace trellant::bag {

/// Digests in hexadecimal by path from the bag's folder on, such as "data/Kick.wav".
using Digests = std::map<std::string, std::string>;

inline constexpr std::string_view declaration =
    "BagIt-Version: 1.0\nTag-File-Character-Encoding: UTF-8\n";

/// `path` with "%", carriage returns and line feeds as "%25", "%0D" and "%0A".
[[nodiscard]] std::string escapedPath(std::string_view path);

/// A line for each path, in their order; "%", carriage returns and line feeds in them are escaped.
[[nodiscard]] std::string manifestText(const Digests& digests);

struct BagInfo {
    std::optional<std::string> organization{};
    std::string identifier{};
    std::int64_t date = 0;
    std::uint64_t payloadBytes = 0;
    std::uint64_t payloadFiles = 0;
};

[[nodiscard]] std::string infoText(const BagInfo& info);

/// "2026-11-23T02:45:00Z" of seconds since 1970; years beyond 0 to 9999 count as the nearest.
[[nodiscard]] std::string dateTimeText(std::int64_t seconds);

}  // namespace trellant::bag
