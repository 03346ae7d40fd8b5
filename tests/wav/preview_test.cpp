// SPDX-License-Identifier: Apache-2.0
// Previews, decoded again: where their sound lies, how long and how loud it is.
#include "preview.h"

#include "conversion_error.h"
#include "spawned_program.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <numbers>
#include <sndfile.h>
#include <trellant_testing/aiff_builder.h>
#include <trellant_testing/byte_writer.h>
#include <trellant_testing/temporary_directory.h>
#include <trellant_testing/wave_builder.h>
#include <vector>

namespace trellant::testing {
namespace {

namespace fs = std::filesystem;

constexpr std::uint32_t bitRate = 64'000;

struct Decoded {
    int channels = 0;
    int rate = 0;
    /// Interleaved.
    std::vector<float> samples;

    [[nodiscard]] std::size_t frames() const {
        return samples.size() / static_cast<std::size_t>(channels);
    }
    /// Of one channel.
    [[nodiscard]] std::vector<float> channel(std::size_t number) const {
        std::vector<float> result;
        for (std::size_t i = number; i < samples.size(); i += static_cast<std::size_t>(channels)) {
            result.push_back(samples[i]);
        }
        return result;
    }
};

Decoded decoded(const std::string& path) {
    SF_INFO info{};
    SNDFILE* const file = ::sf_open(path.c_str(), SFM_READ, &info);
    if (file == nullptr) {
        ADD_FAILURE() << ::sf_strerror(nullptr);
        return {};
    }
    EXPECT_EQ(info.format, SF_FORMAT_OGG | SF_FORMAT_OPUS);
    Decoded result{.channels = info.channels, .rate = info.samplerate, .samples = {}};
    // Some room for frames that should not be there.
    result.samples.resize(static_cast<std::size_t>((info.frames + 1'000) * info.channels));
    const sf_count_t read = ::sf_readf_float(file, result.samples.data(), info.frames + 1'000);
    result.samples.resize(static_cast<std::size_t>(read * info.channels));
    ::sf_close(file);
    return result;
}

std::size_t loudest(const std::vector<float>& samples) {
    const auto found = std::max_element(
        samples.begin(), samples.end(),
        [](float left, float right) { return std::fabs(left) < std::fabs(right); });
    return static_cast<std::size_t>(found - samples.begin());
}

double power(const std::vector<float>& samples) {
    double sum = 0;
    for (const float sample : samples) {
        sum += static_cast<double>(sample) * static_cast<double>(sample);
    }
    return samples.empty() ? 0 : sum / static_cast<double>(samples.size());
}

class Preview : public ::testing::Test {
  protected:
    /// Of 16-bit samples, interleaved.
    std::string wave(const std::vector<std::int16_t>& samples, std::uint32_t rate = 48'000,
                     std::uint16_t channels = 1) {
        ByteWriter writer(OMFByteOrder::little);
        for (const std::int16_t sample : samples) {
            writer.u16(static_cast<std::uint16_t>(sample));
        }
        return writeFile(
            folder_.file("in.wav"),
            waveImage({.channels = channels, .sampleRate = rate, .samples = writer.written()}));
    }
    static std::vector<std::int16_t> sine(std::size_t frames, double hertz, double rate = 48'000) {
        std::vector<std::int16_t> samples(frames);
        for (std::size_t i = 0; i < frames; ++i) {
            samples[i] = static_cast<std::int16_t>(
                16'000 * std::sin(2 * std::numbers::pi * hertz * static_cast<double>(i) / rate));
        }
        return samples;
    }
    std::string made(const std::string& source, const wav::PreviewPart& part = {}) {
        const std::string path = folder_.file("out" + std::to_string(++made_) + ".ogg");
        wav::writePreview(source, path, bitRate, part);
        return path;
    }
    std::string refusal(const std::string& source, const wav::PreviewPart& part = {}) {
        try {
            static_cast<void>(made(source, part));
        } catch (const wav::ConversionError& error) {
            EXPECT_FALSE(fs::exists(folder_.file("out" + std::to_string(made_) + ".ogg")));
            return error.what();
        }
        return {};
    }

    TemporaryDirectory folder_;
    int made_ = 0;
};

TEST_F(Preview, KeepsEachMomentWhereItIs) {
    // An impulse half a second in, at 48,000 samples in a second frame 24,000.
    for (const std::uint32_t rate : {8'000U, 24'000U, 32'000U, 44'100U, 48'000U, 96'000U}) {
        std::vector<std::int16_t> samples(rate);
        samples[rate / 2] = 32'000;
        const Decoded sound = decoded(made(wave(samples, rate)));
        EXPECT_EQ(sound.rate, 48'000);
        EXPECT_EQ(sound.frames(), 48'000U) << rate;
        EXPECT_EQ(loudest(sound.samples), 24'000U) << rate;
    }
}

TEST_F(Preview, KeepsTheFirstAndTheLastSample) {
    for (const std::size_t frames : {1U, 5U, 959U, 960U, 961U, 48'001U}) {
        std::vector<std::int16_t> samples(frames);
        samples.back() = 32'000;
        const Decoded sound = decoded(made(wave(samples)));
        EXPECT_EQ(sound.frames(), frames);
        EXPECT_EQ(loudest(sound.samples), frames - 1) << frames;
    }
}

TEST_F(Preview, KeepsItsLevel) {
    const Decoded sound = decoded(made(wave(sine(48'000, 440))));
    // Amplitude 16,000/32,768: a power of 0.1192.
    EXPECT_NEAR(power(sound.samples), 0.1192, 0.005);
}

TEST_F(Preview, HasBothChannelsOfTwo) {
    std::vector<std::int16_t> samples;
    const auto left = sine(48'000, 300);
    for (const std::int16_t sample : left) {
        samples.insert(samples.end(), {sample, 0});
    }
    const Decoded sound = decoded(made(wave(samples, 48'000, 2)));
    ASSERT_EQ(sound.channels, 2);
    EXPECT_GT(power(sound.channel(0)), 0.1);
    EXPECT_LT(power(sound.channel(1)), 0.0001);
}

TEST_F(Preview, HasTheOneChannelThatIsWanted) {
    std::vector<std::int16_t> samples;
    for (const std::int16_t sample : sine(48'000, 300)) {
        samples.insert(samples.end(), {0, 0, sample});
    }
    const std::string source = wave(samples, 48'000, 3);
    const Decoded third = decoded(made(source, {.channel = 2}));
    EXPECT_EQ(third.channels, 1);
    EXPECT_GT(power(third.samples), 0.1);
    EXPECT_LT(power(decoded(made(source, {.channel = 1})).samples), 0.0001);
    EXPECT_EQ(refusal(source), "it has 3 channels, and a preview has two at most");
    EXPECT_EQ(refusal(source, {.channel = 3}), "it has no channel 4");
}

TEST_F(Preview, HasThePartThatIsWanted) {
    std::vector<std::int16_t> samples(48'000);
    samples[30'000] = 32'000;
    const std::string source = wave(samples);
    const Decoded part = decoded(made(source, {.firstFrame = 20'000, .frames = 15'000}));
    EXPECT_EQ(part.frames(), 15'000U);
    EXPECT_EQ(loudest(part.samples), 10'000U);
    EXPECT_EQ(decoded(made(source, {.firstFrame = 47'000})).frames(), 1'000U);
    EXPECT_EQ(decoded(made(source, {.firstFrame = 47'000, .frames = 9'000})).frames(), 1'000U);
    EXPECT_EQ(refusal(source, {.firstFrame = 48'000}), "it ends before the part that is wanted");
    EXPECT_EQ(refusal(source, {.firstFrame = ~std::uint64_t{0}, .frames = 1}),
              "it ends before the part that is wanted");
}

TEST_F(Preview, IsMadeOfEveryKindOfSample) {
    // Half of full scale, -6 dB, in each: a square wave of 3 kHz with a power of 0.25.
    const auto square = [](const Bytes& high, const Bytes& low) {
        Bytes samples;
        for (std::size_t i = 0; i < 9'600; ++i) {
            const Bytes& sample = i % 16 < 8 ? high : low;
            samples.insert(samples.end(), sample.begin(), sample.end());
        }
        return samples;
    };
    const std::vector<Bytes> files{
        waveImage({.bitsPerSample = 8, .samples = square(hex("C0"), hex("40"))}),
        waveImage({.bitsPerSample = 24, .samples = square(hex("000040"), hex("0000C0"))}),
        aiffImage({.bitsPerSample = 32, .samples = square(hex("40000000"), hex("C0000000"))}),
        waveImage({.formatTag = 3,
                   .bitsPerSample = 32,
                   .samples = square(hex("0000003F"), hex("000000BF"))}),
        aiffImage({.formType = "AIFC",
                   .bitsPerSample = 64,
                   .compressionType = "fl64",
                   .samples = square(hex("3FE0000000000000"), hex("BFE0000000000000"))})};
    for (const Bytes& file : files) {
        const Decoded sound = decoded(made(writeFile(folder_.file("in"), file)));
        EXPECT_EQ(sound.frames(), 9'600U);
        EXPECT_NEAR(power(sound.samples), 0.25, 0.04);
    }
}

TEST_F(Preview, OfNumbersThatAreNoneIsSilent) {
    Bytes samples;
    for (int i = 0; i < 4'800; ++i) {
        const Bytes none = hex("0000C07F");
        samples.insert(samples.end(), none.begin(), none.end());
    }
    const std::string source = writeFile(
        folder_.file("in"), waveImage({.formatTag = 3, .bitsPerSample = 32, .samples = samples}));
    EXPECT_LT(power(decoded(made(source)).samples), 1e-20);
}

TEST_F(Preview, OfTheSameSoundIsTheSame) {
    const std::string source = wave(sine(48'000, 440));
    EXPECT_EQ(readFile(made(source)), readFile(made(source)));
}

TEST_F(Preview, HasAboutTheBitRateThatIsWanted) {
    const std::string source = wave(sine(10 * 48'000, 440));
    for (const std::uint32_t rate : {16'000U, 64'000U, 128'000U}) {
        const std::string path = folder_.file("rate" + std::to_string(rate));
        wav::writePreview(source, path, rate, {});
        // Ten seconds, eight bits a byte; a tenth and a thousand bytes for pages and heads.
        EXPECT_LT(static_cast<double>(fs::file_size(path)), 1'000 + 1.1 * 10 * rate / 8.0) << rate;
    }
}

TEST_F(Preview, RatesThatNoSoundHasAreRefused) {
    EXPECT_EQ(refusal(wave({1, 2, 3}, 3'999)),
              "its sample rate is not one that previews are made of");
    EXPECT_EQ(refusal(wave({1, 2, 3}, 768'001)),
              "its sample rate is not one that previews are made of");
    EXPECT_EQ(refusal(wave({1, 2, 3}, 4'000)), "");
    EXPECT_EQ(refusal(wave({1, 2, 3}, 768'000)), "");
}

TEST_F(Preview, CutFilesGiveAPreviewOrAReason) {
    const Bytes whole = readFile(wave(sine(1'000, 440)));
    for (std::size_t size = 0; size < whole.size(); size += size < 60 ? 1 : 97) {
        const std::string source =
            writeFile(folder_.file("cut"),
                      Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size)));
        if (refusal(source).empty()) {
            EXPECT_LE(decoded(folder_.file("out" + std::to_string(made_) + ".ogg")).frames(),
                      1'000U);
        }
    }
}

TEST_F(Preview, ProgramMakesItConfined) {
    const std::string source = wave(sine(4'800, 440));
    const std::string path = folder_.file("program.ogg");
    const ProgramEnd end = runProgram(
        {TRELLANT_WAV, "--preview", source, path, std::to_string(bitRate), "0", "0"}, [] {});
    EXPECT_EQ(end.status, 0) << end.errors;
    EXPECT_EQ(readFile(path), readFile(made(source)));
}

}  // namespace
}  // namespace trellant::testing
