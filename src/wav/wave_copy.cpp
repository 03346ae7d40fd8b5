// SPDX-License-Identifier: Apache-2.0
#include "wave_copy.h"

#include "new_file.h"
#include "sound_blocks.h"
#include "sound_source.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <sndfile.h>
#include <span>
#include <string_view>
#include <vector>

namespace trellant::wav {

namespace {

/// What a RIFF size can say, less more than the chunks around the samples take.
constexpr std::uint64_t plainFormLimit = std::numeric_limits<std::uint32_t>::max() - 65'536ULL;
constexpr std::string_view notWritten = "the WAVE file could not be written";

template <class Sample>
using Delivery = sf_count_t (*)(SNDFILE*, const Sample*, sf_count_t);

/// Of interleaved samples those of one channel.
template <class Sample>
void keepChannel(std::vector<Sample>& kept, std::span<const Sample> samples, std::size_t channels,
                 std::size_t channel) {
    kept.clear();
    for (std::size_t i = channel; i < samples.size(); i += channels) {
        kept.push_back(samples[i]);
    }
}

template <class Sample>
void moveFrames(const Source& source, SNDFILE* target, const std::optional<int>& channel,
                Delivery<Sample> write) {
    const auto channels = static_cast<std::size_t>(source.info.channels);
    std::vector<Sample> kept;
    forEachBlock<Sample>(source, source.info.frames, [&](std::span<const Sample> samples) {
        const auto frames = static_cast<sf_count_t>(samples.size() / channels);
        if (channel) {
            keepChannel(kept, samples, channels, static_cast<std::size_t>(*channel));
            samples = kept;
        }
        if (write(target, samples.data(), frames) != frames) {
            throw because(notWritten, ::sf_strerror(target));
        }
    });
}

bool isAiff(int format) {
    return (format & SF_FORMAT_TYPEMASK) == SF_FORMAT_AIFF;
}

void move(const Source& input, SNDFILE* target, const SampleForm& form,
          const std::optional<int>& channel) {
    if (form.subtype == SF_FORMAT_FLOAT) {
        moveFrames<float>(input, target, channel, ::sf_writef_float);
    } else if (form.isFloatingPoint) {
        moveFrames<double>(input, target, channel, ::sf_writef_double);
    } else {
        moveFrames<int>(input, target, channel, ::sf_writef_int);
    }
}

}  // namespace

bool needsLargeForm(std::uint64_t sampleBytes) noexcept {
    return sampleBytes > plainFormLimit;
}

namespace {

void copy(const std::string& source, const std::string& destination,
          const std::optional<int>& channel, const Origin* origin) {
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
    if (origin != nullptr) {
        constexpr std::uint64_t bitsOfByte = 8;
        if (!isAiff(input.info.format)) {
            copyOtherChunks(input, output.get());
        }
        setOrigin(output.get(), *origin, static_cast<std::uint32_t>(std::max(info.samplerate, 0)),
                  static_cast<std::uint32_t>(form.bytes * bitsOfByte));
    }
    move(input, output.get(), form, channel);
    // Closing writes the sizes into the head.
    if (const int failure = ::sf_close(output.release()); failure != 0) {
        throw because(notWritten, ::sf_error_number(failure));
    }
    file.keep();
}

}  // namespace

void copyAsWave(const std::string& source, const std::string& destination,
                const std::optional<int>& channel) {
    copy(source, destination, channel, nullptr);
}

void copyWithOrigin(const std::string& source, const std::string& destination,
                    const Origin& origin) {
    copy(source, destination, std::nullopt, &origin);
}

}  // namespace trellant::wav
