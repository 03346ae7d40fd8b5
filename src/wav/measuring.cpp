// SPDX-License-Identifier: Apache-2.0
#include "measuring.h"

#include "new_file.h"
#include "sound_blocks.h"
#include "sound_source.h"

#include <trellant/audio/sound_meter.h>

#include <algorithm>
#include <limits>

namespace trellant::wav {

namespace {

constexpr std::uint32_t bitsOfByte = 8;

/// Of a source that can be measured, its frames; else ConversionError.
std::uint64_t measuredFrames(const Source& source) {
    if (source.info.samplerate < 1) {
        throw ConversionError("its header names no sample rate");
    }
    if (static_cast<std::size_t>(source.info.channels) > audio::mostChannels) {
        throw ConversionError("it has " + std::to_string(source.info.channels) +
                              " channels, more than are listened to");
    }
    return static_cast<std::uint64_t>(source.info.frames);
}

template <class Meter>
void readInto(Meter& meter, const Source& source, bool isFloatingPoint) {
    if (isFloatingPoint) {
        forEachBlock<double>(source, source.info.frames,
                             [&meter](std::span<const double> samples) { meter.add(samples); });
    } else {
        forEachBlock<std::int32_t>(
            source, source.info.frames,
            [&meter](std::span<const std::int32_t> samples) { meter.add(samples); });
    }
}

audio::SoundFormat soundFormat(const Source& source, const SampleForm& form,
                               const std::optional<std::uint32_t>& bitDepth) {
    const auto storedBits = static_cast<std::uint32_t>(form.bytes) * bitsOfByte;
    const bool isTold = bitDepth && !form.isFloatingPoint &&
                        *bitDepth<storedBits&& * bitDepth> storedBits - bitsOfByte &&
                        *bitDepth >= 2;
    return {.channels = static_cast<std::size_t>(source.info.channels),
            .sampleRate = static_cast<std::uint32_t>(source.info.samplerate),
            .bitDepth = isTold ? *bitDepth : storedBits,
            .isFloatingPoint = form.isFloatingPoint};
}

}  // namespace

void writeMeasures(const std::string& source, const std::string& destination,
                   std::uint64_t mostPairs, const std::optional<std::uint32_t>& bitDepth) {
    const Source input = openSource(source);
    const SampleForm form = sampleForm(input.info.format);
    const std::uint64_t frames = measuredFrames(input);
    const std::uint64_t framesPerPair = frames / mostPairs + (frames % mostPairs == 0 ? 0 : 1);
    NewFile file(destination, "file of measures");
    audio::SoundMeter meter(soundFormat(input, form, bitDepth),
                            std::max<std::uint64_t>(1, framesPerPair));
    readInto(meter, input, form.isFloatingPoint);
    file.write(audio::packedMeasures(meter.taken()));
    file.keep();
}

void writeWaveform(const std::string& source, const std::string& destination,
                   std::uint32_t framesPerPair, audio::PeakBits bits) {
    const Source input = openSource(source);
    const SampleForm form = sampleForm(input.info.format);
    const std::uint64_t frames = measuredFrames(input);
    const std::uint64_t pairs = frames / framesPerPair + (frames % framesPerPair == 0 ? 0 : 1);
    if (pairs > std::uint64_t{std::numeric_limits<std::int32_t>::max()}) {
        throw ConversionError("it is too long for so fine a waveform");
    }
    NewFile file(destination, "waveform");
    file.write(
        audio::waveformHeader({.bits = bits,
                               .sampleRate = static_cast<std::uint32_t>(input.info.samplerate),
                               .framesPerPair = framesPerPair,
                               .pairs = static_cast<std::uint32_t>(pairs),
                               .channels = static_cast<std::uint32_t>(input.info.channels)}));
    constexpr std::size_t mostGathered = 65'536;
    Bytes gathered;
    audio::PeakMeter meter(static_cast<std::size_t>(input.info.channels), framesPerPair,
                           [&](std::span<const audio::PeakPair> made) {
                               audio::appendPairs(gathered, made, bits);
                               if (gathered.size() >= mostGathered) {
                                   file.write(gathered);
                                   gathered.clear();
                               }
                           });
    readInto(meter, input, form.isFloatingPoint);
    meter.finish();
    file.write(gathered);
    file.keep();
}

}  // namespace trellant::wav
