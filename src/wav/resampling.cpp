// SPDX-License-Identifier: Apache-2.0
#include "resampling.h"

#include "new_file.h"
#include "sound_blocks.h"
#include "sound_source.h"
#include "wave_copy.h"

#include <cstddef>
#include <memory>
#include <soxr.h>
#include <span>
#include <string_view>
#include <vector>

namespace trellant::wav {

namespace {

constexpr std::string_view notWritten = "the WAVE file could not be written";
constexpr std::string_view notResampled = "the sample rate could not be converted";

struct ResamplerCloser {
    void operator()(soxr_t resampler) const noexcept { ::soxr_delete(resampler); }
};
using Resampler = std::unique_ptr<soxr, ResamplerCloser>;

Resampler resamplerOf(const SampleRate& from, std::uint32_t to, int channels) {
    const soxr_io_spec_t samples = ::soxr_io_spec(SOXR_FLOAT64_I, SOXR_FLOAT32_I);
    const soxr_quality_spec_t quality = ::soxr_quality_spec(SOXR_VHQ, 0);
    // No threads: this process may not start any.
    const soxr_runtime_spec_t runtime = ::soxr_runtime_spec(1);
    soxr_error_t failure = nullptr;
    Resampler resampler(
        ::soxr_create(static_cast<double>(from.numerator) / static_cast<double>(from.denominator),
                      to, static_cast<unsigned>(channels), &failure, &samples, &quality, &runtime));
    if (resampler == nullptr || failure != nullptr) {
        throw because(notResampled, failure == nullptr ? "no memory" : failure);
    }
    return resampler;
}

class Conversion {
  public:
    Conversion(soxr_t resampler, SNDFILE* target, std::size_t channels)
        : resampler_(resampler),
          target_(target),
          channels_(channels),
          made_(static_cast<std::size_t>(blockSamples) / channels * channels + channels) {}

    void take(std::span<const double> samples) {
        std::size_t left = samples.size() / channels_;
        while (left != 0) {
            std::size_t used = 0;
            const double* const first = samples.data() + samples.size() - left * channels_;
            write(process(first, left, &used));
            left -= used;
        }
    }
    /// What is still under way.
    void finish() {
        while (const std::size_t frames = process(nullptr, 0, nullptr)) {
            write(frames);
        }
    }

  private:
    std::size_t process(const double* samples, std::size_t frames, std::size_t* used) {
        std::size_t done = 0;
        if (const soxr_error_t failure = ::soxr_process(
                resampler_, samples, frames, used, made_.data(), made_.size() / channels_, &done)) {
            throw because(notResampled, failure);
        }
        return done;
    }
    void write(std::size_t frames) {
        const auto count = static_cast<sf_count_t>(frames);
        if (::sf_writef_float(target_, made_.data(), count) != count) {
            throw because(notWritten, ::sf_strerror(target_));
        }
    }

    soxr_t resampler_;
    SNDFILE* target_;
    std::size_t channels_;
    std::vector<float> made_;
};

}  // namespace

void resampleAsWave(const std::string& source, const std::string& destination,
                    const SampleRate& from, std::uint32_t to) {
    const Source input = openSource(source);
    // Refuses what is compressed.
    static_cast<void>(sampleForm(input.info.format));
    const Resampler resampler = resamplerOf(from, to, input.info.channels);
    SF_INFO info{};
    info.samplerate = static_cast<int>(to);
    info.channels = input.info.channels;
    const double frames = static_cast<double>(input.info.frames) * to *
                          static_cast<double>(from.denominator) /
                          static_cast<double>(from.numerator);
    constexpr double sampleBytes = 4;
    constexpr double limit = 4.2e9;
    const bool isLarge = frames * info.channels * sampleBytes > limit;
    info.format = (isLarge ? SF_FORMAT_RF64 : SF_FORMAT_WAV) | SF_FORMAT_FLOAT;
    NewFile file(destination, "WAVE file");
    Sound output(::sf_open_fd(file.descriptor(), SFM_WRITE, &info, SF_FALSE));
    if (output == nullptr) {
        throw because(notWritten, ::sf_strerror(nullptr));
    }
    // The chunk of peaks holds the time of day, and equal audio is to give equal files.
    ::sf_command(output.get(), SFC_SET_ADD_PEAK_CHUNK, nullptr, SF_FALSE);
    Conversion conversion(resampler.get(), output.get(),
                          static_cast<std::size_t>(input.info.channels));
    forEachBlock<double>(input, input.info.frames,
                         [&](std::span<const double> samples) { conversion.take(samples); });
    conversion.finish();
    if (const int failure = ::sf_close(output.release()); failure != 0) {
        throw because(notWritten, ::sf_error_number(failure));
    }
    file.keep();
}

}  // namespace trellant::wav
