// SPDX-License-Identifier: Apache-2.0
// The samples of a source, block by block: memory does not grow with its length, and the process
// ends with its host between two of them.
#pragma once

#include "conversion_error.h"
#include "sound_source.h"

#include <trellant/base/host_watch.h>

#include <algorithm>
#include <cstdint>
#include <sndfile.h>
#include <span>
#include <vector>

namespace trellant::wav {

/// Samples of all channels that are taken at once.
inline constexpr sf_count_t blockSamples = 65'536;

inline sf_count_t readFrames(SNDFILE* sound, std::int32_t* samples, sf_count_t frames) {
    static_assert(sizeof(int) == sizeof(std::int32_t));
    return ::sf_readf_int(sound, samples, frames);
}
inline sf_count_t readFrames(SNDFILE* sound, float* samples, sf_count_t frames) {
    return ::sf_readf_float(sound, samples, frames);
}
inline sf_count_t readFrames(SNDFILE* sound, double* samples, sf_count_t frames) {
    return ::sf_readf_double(sound, samples, frames);
}

/// Hands the next `frames` frames to `take`, channels interleaved, as `read` gives them: it takes
/// room for so many frames, and says how many it filled. Throws ConversionError where the sound
/// ends before.
template <class Sample, class Read, class Take>
void forEachBlockBy(const Source& source, sf_count_t frames, const Read& read, const Take& take) {
    const sf_count_t channels = source.info.channels;
    const sf_count_t blockFrames = std::max<sf_count_t>(1, blockSamples / channels);
    std::vector<Sample> block(static_cast<std::size_t>(blockFrames * channels));
    while (frames > 0) {
        const sf_count_t wanted = std::min(blockFrames, frames);
        const auto part =
            std::span<Sample>(block).first(static_cast<std::size_t>(wanted * channels));
        if (read(part, wanted) != wanted) {
            throw ConversionError("it ends before its last sample");
        }
        take(std::span<const Sample>(part));
        frames -= wanted;
        endIfHostIsGone();
    }
}

/// The same: whole numbers at the upper end of 32 bits, or floating point.
template <class Sample, class Take>
void forEachBlock(const Source& source, sf_count_t frames, const Take& take) {
    forEachBlockBy<Sample>(
        source, frames,
        [&source](std::span<Sample> samples, sf_count_t wanted) {
            return readFrames(source.sound.get(), samples.data(), wanted);
        },
        take);
}

}  // namespace trellant::wav
