// SPDX-License-Identifier: Apache-2.0
#include "measuring.h"

#include "new_file.h"
#include "sound_blocks.h"
#include "sound_source.h"

#include <trellant/audio/pcm.h>
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

/// Whether whole numbers lie in the file as they do in any WAVE file.
bool isLittleEndian(const Source& source) {
    return (source.info.format & SF_FORMAT_TYPEMASK) != SF_FORMAT_AIFF &&
           (source.info.format & SF_FORMAT_ENDMASK) != SF_ENDIAN_BIG;
}

/// Reads whole numbers as they lie: the library takes them one by one.
class PackedNumbers {
  public:
    PackedNumbers(const Source& source, const SampleForm& form)
        : sound_(source.sound.get()),
          format_{static_cast<std::uint16_t>(form.bytes * bitsOfByte), false} {}

    sf_count_t read(std::span<std::int32_t> numbers, sf_count_t frames) {
        bytes_.resize(numbers.size() * format_.bytes());
        const auto wanted = static_cast<sf_count_t>(bytes_.size());
        if (::sf_read_raw(sound_, bytes_.data(), wanted) != wanted) {
            return 0;
        }
        audio::unpackPcm(format_, bytes_, numbers);
        return frames;
    }

  private:
    SNDFILE* sound_;
    audio::PcmFormat format_;
    Bytes bytes_;
};

template <class Meter>
void readInto(Meter& meter, const Source& source, const SampleForm& form) {
    const sf_count_t frames = source.info.frames;
    const auto add = [&meter](auto samples) { meter.add(samples); };
    if (form.isFloatingPoint) {
        forEachBlock<double>(source, frames, add);
    } else if (isLittleEndian(source)) {
        PackedNumbers packed(source, form);
        const auto read = [&packed](std::span<std::int32_t> numbers, sf_count_t wanted) {
            return packed.read(numbers, wanted);
        };
        forEachBlockBy<std::int32_t>(source, frames, read, add);
    } else {
        forEachBlock<std::int32_t>(source, frames, add);
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
    // Divided into so many parts, rounded up: with fewer to a pair there would be more pairs.
    const std::uint64_t framesPerPair = audio::pairsOf(frames, mostPairs);
    NewFile file(destination, "file of measures");
    audio::SoundMeter meter(soundFormat(input, form, bitDepth),
                            std::max<std::uint64_t>(1, framesPerPair));
    readInto(meter, input, form);
    file.write(audio::packedMeasures(meter.taken()));
    file.keep();
}

void writeWaveform(const std::string& source, const std::string& destination,
                   std::uint32_t framesPerPair, audio::PeakBits bits) {
    const Source input = openSource(source);
    const SampleForm form = sampleForm(input.info.format);
    const std::uint64_t frames = measuredFrames(input);
    const std::uint64_t pairs = audio::pairsOf(frames, framesPerPair);
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
    readInto(meter, input, form);
    meter.finish();
    file.write(gathered);
    file.keep();
}

}  // namespace trellant::wav
