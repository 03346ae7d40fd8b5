// SPDX-License-Identifier: Apache-2.0
#include "preview.h"

#include "new_file.h"
#include "ogg_stream_number.h"
#include "sound_blocks.h"
#include "sound_source.h"

#include <trellant/audio/resampler.h>

#include <cmath>
#include <limits>
#include <sndfile.h>
#include <vector>

namespace trellant::wav {

namespace {

constexpr std::uint32_t previewRate = 48'000;
constexpr int mostPreviewChannels = 2;
constexpr std::string_view notWritten = "the preview could not be written";

/// The library takes no rate but a quality, from which it makes 6,000 to 256,000 bits in a second
/// for each channel.
double compressionLevel(std::uint32_t bitRate) noexcept {
    return 1 - static_cast<double>(bitRate - lowestBitRate) / (highestBitRate - lowestBitRate);
}

/// Frames of the part that are there. Throws ConversionError.
sf_count_t framesOf(const Source& source, const PreviewPart& part) {
    if (part.firstFrame >= static_cast<std::uint64_t>(source.info.frames)) {
        throw ConversionError("it ends before the part that is wanted");
    }
    const std::uint64_t rest = static_cast<std::uint64_t>(source.info.frames) - part.firstFrame;
    const std::uint64_t frames = std::min(part.frames.value_or(rest), rest);
    if (frames == 0) {
        throw ConversionError("a preview of no samples was asked for");
    }
    return static_cast<sf_count_t>(frames);
}

void check(const Source& source, const PreviewPart& part) {
    if (part.channel && (*part.channel < 0 || *part.channel >= source.info.channels)) {
        throw ConversionError("it has no channel " + std::to_string(*part.channel + 1));
    }
    if (!part.channel && source.info.channels > mostPreviewChannels) {
        throw ConversionError("it has " + std::to_string(source.info.channels) +
                              " channels, and a preview has two at most");
    }
    const auto rate = static_cast<std::uint32_t>(std::max(source.info.samplerate, 0));
    if (rate < audio::lowestResampledRate || rate > audio::highestResampledRate) {
        throw ConversionError("its sample rate is not one that previews are made of");
    }
}

Sound openPreview(const NewFile& file, int channels, std::uint32_t bitRate) {
    SF_INFO info{};
    info.samplerate = static_cast<int>(previewRate);
    info.channels = channels;
    info.format = SF_FORMAT_OGG | SF_FORMAT_OPUS;
    Sound output(::sf_open_fd(file.descriptor(), SFM_WRITE, &info, SF_FALSE));
    if (output == nullptr) {
        throw because(notWritten, ::sf_strerror(nullptr));
    }
    double level = compressionLevel(bitRate);
    ::sf_command(output.get(), SFC_SET_COMPRESSION_LEVEL, &level, sizeof level);
    return output;
}

/// Numbers of any size become ones that an encoder can make something of.
float usable(double sample) noexcept {
    constexpr double most = 4;
    return std::isnan(sample) ? 0 : static_cast<float>(std::clamp(sample, -most, most));
}

void encode(const Source& source, SNDFILE* output, sf_count_t frames, const PreviewPart& part) {
    const auto channels = static_cast<std::size_t>(source.info.channels);
    const std::size_t heard = part.channel ? 1 : channels;
    const std::size_t first = part.channel ? static_cast<std::size_t>(*part.channel) : 0;
    audio::Resampler resampler(static_cast<std::uint32_t>(source.info.samplerate), previewRate,
                               heard, [output, heard](std::span<const float> samples) {
                                   const auto made =
                                       static_cast<sf_count_t>(samples.size() / heard);
                                   if (::sf_writef_float(output, samples.data(), made) != made) {
                                       throw because(notWritten, ::sf_strerror(output));
                                   }
                               });
    std::vector<float> block;
    forEachBlock<double>(source, frames, [&](std::span<const double> samples) {
        block.clear();
        for (std::size_t frame = 0; frame < samples.size(); frame += channels) {
            for (std::size_t channel = first; channel < first + heard; ++channel) {
                block.push_back(usable(samples[frame + channel]));
            }
        }
        resampler.add(block);
    });
    resampler.finish();
}

}  // namespace

void writePreview(const std::string& source, const std::string& destination, std::uint32_t bitRate,
                  const PreviewPart& part) {
    const Source input = openSource(source);
    static_cast<void>(sampleForm(input.info.format));
    check(input, part);
    const sf_count_t frames = framesOf(input, part);
    const auto first = static_cast<sf_count_t>(part.firstFrame);
    if (::sf_seek(input.sound.get(), first, SEEK_SET) != first) {
        throw ConversionError("it ends before its last sample");
    }
    NewFile file(destination, "preview");
    Sound output = openPreview(file, part.channel ? 1 : input.info.channels, bitRate);
    encode(input, output.get(), frames, part);
    // Closing writes the last page.
    if (const int failure = ::sf_close(output.release()); failure != 0) {
        throw because(notWritten, ::sf_error_number(failure));
    }
    setStreamNumber(file.descriptor(), 1);
    file.keep();
}

}  // namespace trellant::wav
