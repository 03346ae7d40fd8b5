// SPDX-License-Identifier: Apache-2.0
// A sound that lies inside another file: which bytes it has there, and what is not sure about it.
#pragma once

#include <trellant/io/bento_types.h>

#include <array>
#include <cstdint>
#include <string_view>
#include <vector>

namespace [[gnu::visibility("default")]] trellant {
namespace salvage {

enum class SoundKind { aiff, aifc, wave, rf64 };

/// What says how long a sound is.
enum class SoundOrigin {
    /// An entry of the container's table of contents.
    table,
    /// The sound's own header.
    header
};

/// Something that is not sure about a sound.
enum class Doubt {
    /// The file ends within the samples.
    cutByEnd,
    /// Another sound begins within the samples that the header claims.
    cutByNext,
    /// The header does not say how long the samples are.
    openEnd,
    /// All samples are there; what the header announces behind them is not.
    chunksMissing,
    /// All samples are there; the header counts fewer bytes than they have.
    headerTooShort,
    /// The table and the sound's header name different lengths.
    lengthsDiffer,
    /// Nothing says what the samples are like: rate, channels, bits.
    formatMissing
};

/// In one word, for machines: the case's name.
[[nodiscard]] std::string_view doubtWord(Doubt doubt) noexcept;
/// A sentence for people.
[[nodiscard]] std::string_view doubtSentence(Doubt doubt) noexcept;

/// Four bytes of the copy that differ from the input.
struct Mend {
    /// From the first byte of the sound.
    std::uint64_t offset = 0;
    std::array<std::uint8_t, 4> bytes{};
    bool operator==(const Mend&) const = default;
};

struct FoundSound {
    SoundKind kind = SoundKind::aiff;
    SoundOrigin origin = SoundOrigin::header;
    /// Of the input, in the sound's own order; none lies over another, none leaves the file.
    std::vector<BentoRange> ranges{};
    /// Bytes that header or table claim; 0 where they do not say.
    std::uint64_t claimedBytes = 0;
    /// All bytes are there and the copy has them as they are.
    bool isWhole = true;
    std::vector<Doubt> doubts{};
    /// Of the copy of a sound that is not whole, ascending; it has one range.
    std::vector<Mend> mends{};
    /// The copy has a zero byte more, which makes its samples an even number of bytes.
    bool isPadded = false;

    /// Bytes in the input.
    [[nodiscard]] std::uint64_t bytes() const noexcept;
    /// The pieces that the copy is made of.
    [[nodiscard]] std::vector<BentoValueSegment> copied() const;
    bool operator==(const FoundSound&) const = default;
};

}  // namespace salvage
}  // namespace trellant
