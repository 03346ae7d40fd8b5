// SPDX-License-Identifier: Apache-2.0
// What was done for a bag, as PREMIS 3.0 metadata: each file with its format and fixity, what it
// was derived from, the events that led to it with their outcome, and the program.
#pragma once

#include "formats.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace trellant::bag {

struct PremisFile {
    enum class Origin {
        /// The OMF file, as it was given.
        interchange,
        /// Audio out of it, and the same made into WAVE.
        unpacked,
        normalized,
        /// Audio that lay outside of it, as it was found.
        found,
        /// What was understood of the OMF file.
        timeline
    };

    Origin origin = Origin::interchange;
    /// From the bag's folder on.
    std::string path{};
    std::string sha256{};
    std::uint64_t byteCount = 0;
    FileFormat format{};
    /// What it was called before; empty: the same.
    std::string originalName{};
};

struct PremisRecord {
    /// The interchange file first.
    std::vector<PremisFile> files{};
    /// A sentence for each thing that the timeline does not carry, at most mostNotes of them, and
    /// how many there are; the same of what had to be changed.
    std::vector<std::string> losses{};
    std::size_t lossCount = 0;
    std::vector<std::string> changes{};
    std::size_t changeCount = 0;
    /// Audio that is not in the bag, and why.
    std::vector<std::string> missing{};
    std::size_t missingCount = 0;
    /// When it was done, seconds since 1970.
    std::int64_t date = 0;
};

/// Sentences of one kind in a record; further ones are counted.
inline constexpr std::size_t mostNotes = 10'000;

/// A document with a declaration, in UTF-8.
[[nodiscard]] std::string premisText(const PremisRecord& record);

}  // namespace trellant::bag
