// SPDX-License-Identifier: Apache-2.0
// What is measured of files of every kind that is taken, and how others are refused. Samples are
// few and peaks are theirs, by the rules in sound_measures.h.
#include "measuring.h"

#include "conversion_error.h"
#include "spawned_program.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <trellant_testing/aiff_builder.h>
#include <trellant_testing/byte_writer.h>
#include <trellant_testing/temporary_directory.h>
#include <trellant_testing/wave_builder.h>

namespace trellant::testing {
namespace {

namespace fs = std::filesystem;

using audio::FrameRange;
using audio::PeakPair;
using audio::SoundMeasures;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class Measuring : public ::testing::Test {
  protected:
    /// By the library, of so many pairs at most.
    SoundMeasures measured(const Bytes& file, std::uint64_t mostPairs = 8'192,
                           std::optional<std::uint32_t> bits = std::nullopt) {
        fs::remove(folder_.file("out"));
        wav::writeMeasures(writeFile(folder_.file("in"), file), folder_.file("out"), mostPairs,
                           bits);
        return audio::unpackedMeasures(readFile(folder_.file("out"))).value();
    }
    std::string refusal(const Bytes& file) {
        try {
            static_cast<void>(measured(file));
        } catch (const wav::ConversionError& error) {
            EXPECT_FALSE(fs::exists(folder_.file("out")));
            return error.what();
        }
        return {};
    }
    ProgramEnd run(const std::vector<std::string>& arguments) {
        // With every layer required there is still all that it takes.
        std::vector<std::string> words{"/usr/bin/env", "TRELLANT_SANDBOX=require", TRELLANT_WAV};
        words.insert(words.end(), arguments.begin(), arguments.end());
        return runProgram(words, [] {});
    }

    TemporaryDirectory folder_;
};

TEST_F(Measuring, EightBitsLieOnBothSidesOfTheirMiddle) {
    // In WAVE 0 to 255 around 128, in AIFF signed; full scale are 127 and -127 or -128.
    for (const SoundMeasures& sound :
         {measured(waveImage({.bitsPerSample = 8, .samples = hex("00 01 00 FF FF FF 80 80 81")})),
          measured(
              aiffImage({.bitsPerSample = 8, .samples = hex("80 81 80 7F 7F 7F 00 00 01")}))}) {
        EXPECT_EQ(sound.frames, 9U);
        EXPECT_EQ(sound.bitDepth, 8U);
        EXPECT_EQ(sound.peaks.framesPerPair, 1U);
        EXPECT_EQ(sound.peaks.at(0, 0), (PeakPair{-32'768, -32'768}));
        EXPECT_EQ(sound.peaks.at(3, 0), (PeakPair{32'512, 32'512}));
        EXPECT_THAT(sound.channels[0].fullScale.ranges,
                    ElementsAre(FrameRange{0, 3}, FrameRange{3, 3}));
        EXPECT_THAT(sound.channels[0].silences, ElementsAre(FrameRange{6, 2}));
    }
}

TEST_F(Measuring, SixteenBitsInBothByteOrders) {
    for (const Bytes& file :
         {waveImage({.samples = hex("FF7F FF7F FF7F 0080 0180 0080 0000 0100")}),
          aiffImage({.samples = hex("7FFF 7FFF 7FFF 8000 8001 8000 0000 0001")}),
          aiffImage({.formType = "AIFC",
          .compressionType = "sowt",
          .samples = hex("FF7F FF7F FF7F 0080 0180 0080 0000 0100")})}) {
        const SoundMeasures sound = measured(file, 2);
        EXPECT_EQ(sound.peaks.framesPerPair, 4U);
        EXPECT_THAT(sound.peaks.pairs,
                    ElementsAre(PeakPair{-32'768, 32'767}, PeakPair{-32'768, 1}));
        EXPECT_THAT(sound.channels[0].fullScale.ranges,
                    ElementsAre(FrameRange{0, 3}, FrameRange{3, 3}));
        EXPECT_THAT(sound.channels[0].silences, ElementsAre(FrameRange{6, 1}));
    }
}

TEST_F(Measuring, TwentyFourAndThirtyTwoBits) {
    auto sound = measured(aiffImage(
        {.bitsPerSample = 24, .samples = hex("7FFFFF 7FFFFF 7FFFFF 800000 800001 800000")}));
    EXPECT_EQ(sound.bitDepth, 24U);
    EXPECT_THAT(sound.channels[0].fullScale.ranges,
                ElementsAre(FrameRange{0, 3}, FrameRange{3, 3}));
    // The smallest sound that there is, is no silence.
    sound =
        measured(waveImage({.bitsPerSample = 32, .samples = hex("01000000 00000000 FFFFFFFF")}));
    EXPECT_EQ(sound.bitDepth, 32U);
    EXPECT_THAT(sound.channels[0].silences, ElementsAre(FrameRange{1, 1}));
    EXPECT_THAT(sound.peaks.pairs, ElementsAre(PeakPair{0, 0}, PeakPair{0, 0}, PeakPair{-1, -1}));
}

/// A WAVE file's numbers are taken as they lie, an AIFF file's through the library: of so many
/// frames that they come in several blocks.
TEST_F(Measuring, BothWaysOfReadingGiveTheSame) {
    for (const std::uint16_t bits : std::initializer_list<std::uint16_t>{16, 24, 32}) {
        const std::size_t width = bits / 8U;
        Bytes little;
        Bytes big;
        std::uint32_t state = 1;
        for (std::size_t i = 0; i < 3 * 70'000U; ++i) {
            state = state * 1'664'525U + 1'013'904'223U;
            // Every now and then silence, or full scale.
            const std::size_t kind = i % 5'000 / 100;
            const std::uint32_t word = kind == 7 ? 0 : (kind == 9 ? 0x7FFFFFFF : state);
            for (std::size_t k = 0; k < width; ++k) {
                little.push_back(static_cast<std::byte>(word >> (32 - bits + 8 * k)));
                big.push_back(static_cast<std::byte>(word >> (24 - 8 * k)));
            }
        }
        const SoundMeasures sound =
            measured(waveImage({.channels = 3, .bitsPerSample = bits, .samples = little}), 1'000);
        EXPECT_EQ(sound.frames, 70'000U);
        EXPECT_GE(sound.channels[2].fullScale.total, 42U);
        EXPECT_EQ(sound, measured(aiffImage({.channels = 3, .bitsPerSample = bits, .samples = big}),
                                  1'000));
    }
}

TEST_F(Measuring, FloatingPoint) {
    // 1, 1, 2, -1, -1, -1, 0, -0.0, the smallest number there is.
    const SoundMeasures sound = measured(
        waveImage({.formatTag = 3,
                   .bitsPerSample = 32,
                   .samples = hex("0000803F 0000803F 00000040 000080BF 000080BF 000080BF 00000000 "
                                  "00000080 01000000")}));
    EXPECT_TRUE(sound.isFloatingPoint);
    EXPECT_EQ(sound.bitDepth, 32U);
    EXPECT_EQ(sound.peaks.at(2, 0), (PeakPair{32'767, 32'767}));
    EXPECT_THAT(sound.channels[0].fullScale.ranges,
                ElementsAre(FrameRange{0, 3}, FrameRange{3, 3}));
    EXPECT_THAT(sound.channels[0].silences, ElementsAre(FrameRange{6, 2}));
    const SoundMeasures large =
        measured(aiffImage({.formType = "AIFC",
                            .bitsPerSample = 64,
                            .compressionType = "fl64",
                            .samples = hex("3FE0000000000000 7FF0000000000000 7FF8000000000000")}));
    EXPECT_EQ(large.bitDepth, 64U);
    EXPECT_THAT(large.peaks.pairs,
                ElementsAre(PeakPair{16'384, 16'384}, PeakPair{32'767, 32'767}, PeakPair{0, 0}));
}

TEST_F(Measuring, DepthsBetweenBytesAreFullAtTheirOwnLargestNumber) {
    // Twelve bits stand at the upper end of two bytes: the largest is 0x7FF0.
    const Bytes file =
        aiffImage({.bitsPerSample = 12, .samples = hex("7FF0 7FF0 7FF0 8000 8010 8000")});
    EXPECT_THAT(measured(file).channels[0].fullScale.ranges, IsEmpty());
    const SoundMeasures told = measured(file, 8'192, 12);
    EXPECT_EQ(told.bitDepth, 12U);
    EXPECT_THAT(told.channels[0].fullScale.ranges, ElementsAre(FrameRange{0, 3}, FrameRange{3, 3}));
    // A depth that does not go with two bytes is not believed.
    for (const std::uint32_t bits : {1U, 8U, 17U, 64U}) {
        EXPECT_EQ(measured(file, 8'192, bits).bitDepth, 16U) << bits;
    }
}

// The library takes whole bytes and what lies between them, and no less than one.
TEST_F(Measuring, EveryDepthOfAnAiffIsTakenOrRefused) {
    for (std::uint16_t bits = 0; bits <= 40; ++bits) {
        const Bytes file = aiffImage({.bitsPerSample = bits, .samples = Bytes(120)});
        const std::string why = refusal(file);
        EXPECT_EQ(why.empty(), bits >= 8 && bits <= 32) << bits << ": " << why;
    }
}

TEST_F(Measuring, UpToSixtyFourChannels) {
    for (const std::uint16_t channels : std::vector<std::uint16_t>{1, 2, 16, 64}) {
        ByteWriter samples(OMFByteOrder::little);
        for (std::uint16_t sample = 0; sample < 2 * channels; ++sample) {
            samples.u16(sample);
        }
        const SoundMeasures sound =
            measured(waveImage({.channels = channels, .samples = samples.written()}), 1);
        ASSERT_EQ(sound.channels.size(), channels);
        EXPECT_EQ(sound.frames, 2U);
        for (std::uint16_t channel = 0; channel < channels; ++channel) {
            EXPECT_EQ(sound.peaks.at(0, channel),
                      (PeakPair{static_cast<std::int16_t>(channel),
                                static_cast<std::int16_t>(channel + channels)}));
        }
    }
    EXPECT_EQ(refusal(waveImage({.channels = 65, .samples = Bytes(130)})),
              "it has 65 channels, more than are listened to");
    EXPECT_NE(refusal(waveImage({.channels = 0, .samples = Bytes(4)})), "");
}

TEST_F(Measuring, PairsAreNoMoreThanAreAllowed) {
    const Bytes file = waveImage({.samples = Bytes(2 * 1'000)});
    EXPECT_EQ(measured(file, 1'000).peaks.framesPerPair, 1U);
    EXPECT_EQ(measured(file, 999).peaks.framesPerPair, 2U);
    EXPECT_EQ(measured(file, 999).peaks.length(), 500U);
    EXPECT_EQ(measured(file, 1).peaks.length(), 1U);
}

TEST_F(Measuring, NoSamplesAreNoSound) {
    const SoundMeasures sound = measured(waveImage({}));
    EXPECT_EQ(sound.frames, 0U);
    EXPECT_THAT(sound.peaks.pairs, IsEmpty());
    EXPECT_EQ(audio::isSilent(sound, 0, {0, 100}), audio::Answer::yes);
}

TEST_F(Measuring, MoreThanOneBlockLosesNoFrame) {
    // 200,001 frames: silence but for the first and the last sample of each block of 65,536.
    Bytes samples(2 * 200'001);
    for (const std::size_t frame : {0U, 65'535U, 65'536U, 131'071U, 200'000U}) {
        samples[2 * frame] = std::byte{1};
    }
    const SoundMeasures sound = measured(waveImage({.samples = samples}));
    EXPECT_EQ(sound.frames, 200'001U);
    EXPECT_THAT(sound.channels[0].silences,
                ElementsAre(FrameRange{1, 65'534}, FrameRange{65'537, 65'534},
                            FrameRange{131'072, 68'928}));
}

TEST_F(Measuring, OddChunkLengthsAndOtherChunksAreReadOver) {
    const std::vector<RiffChunk> odd{{"junk", Bytes(3)}, {"LIST", Bytes(7)}};
    EXPECT_EQ(measured(waveImage({.samples = hex("0100 0200 0300"), .leadingChunks = odd})).frames,
              3U);
    EXPECT_EQ(measured(aiffImage({.samples = hex("0001 0002"), .leadingChunks = odd})).frames, 2U);
    // Half a frame at the end is none.
    EXPECT_EQ(measured(waveImage({.channels = 2, .samples = hex("0100 0200 0300")})).frames, 1U);
}

TEST_F(Measuring, HugeClaimsAreNoMoreThanWhatIsThere) {
    // A data chunk and an AIFF header that claim 2^32 - 1.
    Bytes wave = waveImage({.samples = hex("0100 0200")});
    const std::size_t sizeAt = wave.size() - 8;
    std::fill_n(wave.begin() + static_cast<std::ptrdiff_t>(sizeAt), 4, std::byte{0xFF});
    const std::string why = refusal(wave);
    if (why.empty()) {
        EXPECT_LE(measured(wave).frames, 2U);
    }
    Bytes aiff = aiffImage({.samples = hex("0001 0002")});
    const auto comm = textOf(aiff).find("COMM");
    std::fill_n(aiff.begin() + static_cast<std::ptrdiff_t>(comm) + 10, 4, std::byte{0xFF});
    if (refusal(aiff).empty()) {
        EXPECT_LE(measured(aiff).frames, 2U);
    }
}

TEST_F(Measuring, CutFilesGiveTheirSamplesOrAReason) {
    for (const Bytes& whole : {waveImage({.channels = 2, .samples = hex("0100 0200 0300 0400")}),
                               aiffImage({.formType = "AIFC", .samples = hex("0001 0002 0003")})}) {
        for (std::size_t size = 0; size < whole.size(); ++size) {
            const Bytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
            if (refusal(cut).empty()) {
                EXPECT_LE(measured(cut).frames, 3U) << size;
            }
        }
    }
}

TEST_F(Measuring, FlippedBytesGiveMeasuresOrAReason) {
    for (const Bytes& whole : {waveImage({.channels = 2, .samples = hex("0100 0200 0300 0400")}),
                               aiffImage({.formType = "AIFC", .samples = hex("0001 0002 0003")})}) {
        for (std::size_t i = 0; i < whole.size(); ++i) {
            Bytes changed = whole;
            changed[i] ^= std::byte{0xFF};
            if (refusal(changed).empty()) {
                EXPECT_LE(measured(changed).frames, 16U) << i;
            }
        }
    }
}

TEST_F(Measuring, CompressedAudioIsRefused) {
    EXPECT_EQ(refusal(aiffImage(
                  {.formType = "AIFC", .compressionType = "ulaw", .samples = hex("00 01 02 03")})),
              "its audio is compressed");
    EXPECT_EQ(refusal(bytesOf("fLaC and what the library would read as such")),
              "it is no AIFF, AIFC or WAVE file");
}

TEST_F(Measuring, WaveformIsTheOutlineAlone) {
    wav::writeWaveform(
        writeFile(folder_.file("in"), waveImage({.channels = 2,
                                                 .sampleRate = 44'100,
                                                 .samples = hex("0100 FFFF 0300 FDFF 0200 FEFF")})),
        folder_.file("out"), 2, audio::PeakBits::sixteen);
    // 44,100 is 0xAC44.
    EXPECT_EQ(readFile(folder_.file("out")),
              hex("02000000 00000000 44AC0000 02000000 02000000 02000000"
                  "0100 0300 FDFF FFFF 0200 0200 FEFF FEFF"));
}

TEST_F(Measuring, WaveformOfManyPairsIsWhole) {
    // More than are gathered before they are written.
    wav::writeWaveform(writeFile(folder_.file("in"), waveImage({.samples = Bytes(2 * 100'001)})),
                       folder_.file("out"), 1, audio::PeakBits::eight);
    EXPECT_EQ(readFile(folder_.file("out")).size(), 24U + 2 * 100'001U);
}

TEST_F(Measuring, ProgramDoesItConfined) {
    const std::string source =
        writeFile(folder_.file("in.wav"), waveImage({.samples = hex("0100")}));
    ProgramEnd end = run({"--measure", source, folder_.file("m"), "8192", "16"});
    EXPECT_EQ(end.status, 0) << end.errors;
    EXPECT_EQ(readFile(folder_.file("m")), audio::packedMeasures(measured(readFile(source))));
    end = run({"--waveform", source, folder_.file("w"), "256", "8"});
    EXPECT_EQ(end.status, 0) << end.errors;
    EXPECT_EQ(readFile(folder_.file("w")).size(), 26U);
    end = run({"--measure", source, folder_.file("m"), "8192"});
    EXPECT_EQ(end.status, 2);
    EXPECT_EQ(end.errors, "no file of measures could be created (File exists)\n");
}

TEST_F(Measuring, ProgramRefusesWrongUse) {
    for (const auto& words :
         std::vector<std::vector<std::string>>{{"--measure", "in", "out", "0"},
                                               {"--measure", "in", "out", "1048577"},
                                               {"--measure", "in", "out", "8192", "65"},
                                               {"--measure", "in", "out", "8192", "16", "1"},
                                               {"--waveform", "in", "out", "256"},
                                               {"--waveform", "in", "out", "256", "12"},
                                               {"--waveform", "in", "out", "0", "8"},
                                               {"--waveform", "in", "out", "2147483648", "8"},
                                               {"--preview", "in", "out", "5999", "0", "0"},
                                               {"--preview", "in", "out", "256001", "0", "0"},
                                               {"--preview", "in", "out", "64000", "-1", "0"},
                                               {"--preview", "in", "out", "64000", "0", "0", "0"},
                                               {"--preview", "in", "out", "64000"},
                                               {"--measure", "in"},
                                               {"--other", "in", "out"},
                                               {"in", "out", "--then"},
                                               {"--then", "in", "out"},
                                               {"in", "out", "--then", "in", "a/out"},
                                               {"in", "out", "--then", "in", "out", "0"},
                                               {}}) {
        const ProgramEnd end = run(words);
        EXPECT_EQ(end.status, 1) << (words.empty() ? "" : words.back());
        EXPECT_THAT(end.errors, HasSubstr("usage: trellant-wav IN OUT [CHANNEL]\n"));
    }
}

}  // namespace
}  // namespace trellant::testing
