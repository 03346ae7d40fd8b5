// SPDX-License-Identifier: Apache-2.0
// What a person compares audio files by: format and length.
#pragma once

#include <trellant/omf/audio_probe.h>

#include <cstdint>
#include <optional>
#include <string>

namespace [[gnu::visibility("default")]] trellant {

struct AudioFacts {
    AudioFormatInfo format{};
    /// Samples of one channel; absent where the header does not tell, as with compressed WAVE.
    std::optional<std::uint64_t> frames{};
    bool operator==(const AudioFacts&) const = default;
};

/// Absent for what is no readable WAVE or AIFF file. Never throws for what a file holds.
[[nodiscard]] std::optional<AudioFacts> audioFacts(const std::string& path);

/// The length in seconds; absent without a length or with a rate that is not positive.
[[nodiscard]] std::optional<AAFRational> seconds(const AudioFacts& facts);

}  // namespace trellant
