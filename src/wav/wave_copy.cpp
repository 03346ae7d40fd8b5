// SPDX-License-Identifier: Apache-2.0
#include "wave_copy.h"

#include "new_file.h"
#include "sound_source.h"

#include <trellant/base/host_watch.h>

#include <algorithm>
#include <limits>
#include <optional>
#include <sndfile.h>
#include <string_view>
#include <vector>

namespace trellant::wav {

namespace {

/// What a RIFF size can say, less more than the chunks around the samples take.
constexpr std::uint64_t plainFormLimit = std::numeric_limits<std::uint32_t>::max() - 65'536ULL;
/// Samples of all channels that are moved at once.
constexpr sf_count_t blockSamples = 65'536;

constexpr std::string_view notWritten = "the WAVE file could not be written";

template <class Sample>
using Transfer = sf_count_t (*)(SNDFILE*, Sample*, sf_count_t);
template <class Sample>
using Delivery = sf_count_t (*)(SNDFILE*, const Sample*, sf_count_t);

/// Leaves of the interleaved `frames` in `block` the samples of one channel, at its front.
template <class Sample>
void keepChannel(std::vector<Sample>& block, sf_count_t frames, sf_count_t channels,
                 sf_count_t channel) {
    for (sf_count_t frame = 0; frame < frames; ++frame) {
        block[static_cast<std::size_t>(frame)] =
            block[static_cast<std::size_t>(frame * channels + channel)];
    }
}

template <class Sample>
void moveFrames(const Source& source, SNDFILE* target, const std::optional<int>& channel,
                Transfer<Sample> read, Delivery<Sample> write) {
    const sf_count_t channels = source.info.channels;
    const sf_count_t blockFrames = std::max<sf_count_t>(1, blockSamples / channels);
    std::vector<Sample> block(static_cast<std::size_t>(blockFrames * channels));
    sf_count_t moved = 0;
    while (moved < source.info.frames) {
        const sf_count_t wanted = std::min(blockFrames, source.info.frames - moved);
        if (read(source.sound.get(), block.data(), wanted) != wanted) {
            throw ConversionError("it ends before its last sample");
        }
        if (channel) {
            keepChannel(block, wanted, channels, *channel);
        }
        if (write(target, block.data(), wanted) != wanted) {
            throw because(notWritten, ::sf_strerror(target));
        }
        moved += wanted;
        endIfHostIsGone();
    }
}

}  // namespace

bool needsLargeForm(std::uint64_t sampleBytes) noexcept {
    return sampleBytes > plainFormLimit;
}

void copyAsWave(const std::string& source, const std::string& destination,
                const std::optional<int>& channel) {
    const Source input = openSource(source);
    const SampleForm form = sampleForm(input.info.format);
    if (channel && (*channel < 0 || *channel >= input.info.channels)) {
        throw ConversionError("it has no channel " + std::to_string(*channel + 1));
    }
    SF_INFO info{};
    info.samplerate = input.info.samplerate;
    info.channels = channel ? 1 : input.info.channels;
    const auto samples =
        static_cast<std::uint64_t>(input.info.frames) * static_cast<std::uint64_t>(info.channels);
    info.format =
        (needsLargeForm(samples * form.bytes) ? SF_FORMAT_RF64 : SF_FORMAT_WAV) | form.subtype;
    NewFile file(destination, "WAVE file");
    Sound output(::sf_open_fd(file.descriptor(), SFM_WRITE, &info, SF_FALSE));
    if (output == nullptr) {
        throw because(notWritten, ::sf_strerror(nullptr));
    }
    // The chunk of peaks holds the time of day, and equal audio is to give equal files.
    ::sf_command(output.get(), SFC_SET_ADD_PEAK_CHUNK, nullptr, SF_FALSE);
    if (form.subtype == SF_FORMAT_FLOAT) {
        moveFrames<float>(input, output.get(), channel, ::sf_readf_float, ::sf_writef_float);
    } else if (form.isFloatingPoint) {
        moveFrames<double>(input, output.get(), channel, ::sf_readf_double, ::sf_writef_double);
    } else {
        moveFrames<int>(input, output.get(), channel, ::sf_readf_int, ::sf_writef_int);
    }
    // Closing writes the sizes into the head.
    if (const int failure = ::sf_close(output.release()); failure != 0) {
        throw because(notWritten, ::sf_error_number(failure));
    }
    file.keep();
}

}  // namespace trellant::wav
