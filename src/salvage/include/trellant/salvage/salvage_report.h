// SPDX-License-Identifier: Apache-2.0
// What a salvage has come to, as salvage.json has it (schema/command/salvage.schema.json).
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace [[gnu::visibility("default")]] trellant {
namespace salvage {

// All counts, offsets and lengths are in bytes of the damaged file, unless they say otherwise.

struct SalvagedRange {
    std::int64_t offset = 0;
    std::int64_t bytes = 0;
};

struct SalvagedTable {
    /// "label", "earlierLabel", "beforeLabel" or "byItsLook": see TablePlace.
    std::string place{};
    std::int64_t offset = 0;
    /// Absent without a label.
    std::optional<std::int64_t> claimedBytes{};
    std::int64_t sensibleBytes = 0;
    std::int64_t entries = 0;
    bool whole = false;
};

struct SalvagedSound {
    /// Of the file with the copy.
    std::string name{};
    /// "whole" or "incomplete".
    std::string state{};
    /// "table" or "header".
    std::string from{};
    std::int64_t offset = 0;
    std::int64_t bytes = 0;
    /// Where it lies in several pieces: all of them.
    std::vector<SalvagedRange> pieces{};
    std::optional<std::int64_t> claimedBytes{};
    /// Hz, channels, bits of a sample, and the samples of one channel in the copy.
    std::optional<std::int64_t> sampleRate{};
    std::optional<std::int64_t> channels{};
    std::optional<std::int64_t> bitDepth{};
    std::optional<std::string> codec{};
    std::optional<std::int64_t> frames{};
    /// Words for programs: see Doubt.
    std::vector<std::string> doubts{};
    /// Sentences for people.
    std::vector<std::string> certain{};
    std::vector<std::string> uncertain{};
};

struct SalvageReport {
    using Range = SalvagedRange;
    using Table = SalvagedTable;
    using Sound = SalvagedSound;

    std::string file{};
    /// The name of the record beside the sounds; absent in itself.
    std::optional<std::string> record{};
    std::int64_t bytes = 0;
    /// Absent when none was found.
    std::optional<Table> table{};
    std::vector<Sound> sounds{};
    /// Less than `bytes` where the bound on sounds ended the search.
    std::int64_t searchedBytes = 0;

    [[nodiscard]] std::size_t incompleteCount() const noexcept;
};

/// As JSON, keys in the order above.
[[nodiscard]] std::string encodeSalvage(const SalvageReport& report);
/// Throws JsonDecodingError.
[[nodiscard]] SalvageReport decodeSalvage(std::string_view json);

}  // namespace salvage
}  // namespace trellant
