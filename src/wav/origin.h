// SPDX-License-Identifier: Apache-2.0
// Where a sound was recorded, as it is told to this program and said in a WAVE file: by the chunks
// "bext" and "iXML".
#pragma once

#include "conversion_error.h"
#include "sound_source.h"

#include <trellant/audio/broadcast_chunks.h>
#include <trellant/model/rational.h>

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace trellant::wav {

struct Origin {
    std::string description{};
    std::string originator{};
    std::string reference{};
    /// Seconds since 1970-01-01 00:00:00.
    std::optional<std::int64_t> date{};
    std::optional<std::string> project{};
    std::optional<std::string> tape{};
    /// Seconds from midnight to the first sample.
    AAFRational sinceMidnight{};
    audio::TimecodeForm timecode{};
    bool operator==(const Origin&) const = default;
};

/// Of words "key=value": description, originator, reference, date, project, tape, since-midnight
/// and rate ("30000/1001"), counting ("DF" or "NDF"). Absent for any other word, and without the
/// last three.
[[nodiscard]] std::optional<Origin> originOf(std::span<const std::string_view> words);

/// Gives `target`, to which no sample was written yet, the chunks that say it. `bits` of a sample.
/// Throws ConversionError.
void setOrigin(SNDFILE* target, const Origin& origin, std::uint32_t sampleRate, std::uint32_t bits);

/// Gives `target` what the WAVE file `source` holds beside its sound. Throws ConversionError for
/// one that says itself where its sound comes from, and for one that holds too much.
void copyOtherChunks(const Source& source, SNDFILE* target);

}  // namespace trellant::wav
