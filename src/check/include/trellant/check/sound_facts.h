// SPDX-License-Identifier: Apache-2.0
// What rules ask of the sound itself. Whoever listens to the audio fills it; nothing here reads
// any.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace [[gnu::visibility("default")]] trellant {
namespace check {

/// Samples of one channel, from 0.
struct SampleRange {
    std::int64_t first = 0;
    std::int64_t samples = 0;
    bool operator==(const SampleRange&) const = default;

    [[nodiscard]] std::int64_t end() const noexcept { return first + samples; }
};

/// Each list by ascending place, without overlaps.
struct HeardChannel {
    /// Runs of samples of exactly 0.
    std::vector<SampleRange> silences{};
    /// Runs of three or more samples at full scale.
    std::vector<SampleRange> fullScale{};
    /// Where a tone of 1 kHz is nearly all that is heard.
    std::vector<SampleRange> tones{};
    bool operator==(const HeardChannel&) const = default;
};

/// A source that was listened to has channels; one that could not be read, or that nothing plays,
/// has none.
struct HeardSource {
    std::vector<HeardChannel> channels{};
    /// Why it could not be read, in one line for people; empty otherwise.
    std::string reason{};
    bool operator==(const HeardSource&) const = default;
};

/// One for each of the timeline's essences, in their order.
using SoundFacts = std::vector<HeardSource>;

}  // namespace check
}  // namespace trellant
