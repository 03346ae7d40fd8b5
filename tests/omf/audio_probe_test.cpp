// SPDX-License-Identifier: Apache-2.0
#include <trellant/omf/audio_probe.h>

#include <gtest/gtest.h>

#include <limits>
#include <sys/stat.h>
#include <trellant_testing/aiff_builder.h>
#include <trellant_testing/byte_writer.h>
#include <trellant_testing/temporary_directory.h>
#include <trellant_testing/wave_builder.h>

namespace trellant {
namespace {

using testing::aiffImage;
using testing::AiffSpec;
using testing::bytesOf;
using testing::hex;
using testing::joined;
using testing::patternBytes;
using testing::TemporaryDirectory;
using testing::waveImage;
using testing::WaveSpec;
using testing::writeFile;

AudioFormatInfo format(std::int64_t rate, std::int64_t channels, std::int64_t bits,
                       const std::string& codec) {
    return {AAFRational(rate), channels, bits, codec};
}

std::optional<AAFRational> aiffRate(std::string_view rateBytes) {
    const auto info = AudioProbe::probe(aiffImage({.rateBytes = hex(rateBytes)}));
    return info ? info->sampleRate : std::nullopt;
}

TEST(AudioProbe, BuffersBelow12BytesAndOtherSignaturesAreAbsent) {
    EXPECT_EQ(AudioProbe::probe({}), std::nullopt);
    EXPECT_EQ(AudioProbe::probe(bytesOf("RIFF....WAV")), std::nullopt);
    EXPECT_EQ(AudioProbe::probe(bytesOf("RIFX....WAVEfmt ....................")), std::nullopt);
    EXPECT_EQ(AudioProbe::probe(waveImage({.formType = "AVI "})), std::nullopt);
    EXPECT_EQ(AudioProbe::probe(aiffImage({.formType = "8SVX"})), std::nullopt);
}

TEST(AudioProbe, SignaturesOfOneKindWithFormTypesOfTheOtherAreAbsent) {
    EXPECT_EQ(AudioProbe::probe(waveImage({.form = "FORM"})), std::nullopt);
    EXPECT_EQ(AudioProbe::probe(waveImage({.formType = "AIFF"})), std::nullopt);
}

TEST(WaveProbe, WholeNumberSamplesArePCM) {
    EXPECT_EQ(
        AudioProbe::probe(waveImage({.channels = 2, .sampleRate = 48'000, .bitsPerSample = 24})),
        format(48'000, 2, 24, "PCM"));
}

TEST(WaveProbe, FloatingPointAndOtherTagsAreNamed) {
    EXPECT_EQ(
        AudioProbe::probe(waveImage({.formatTag = 3, .sampleRate = 96'000, .bitsPerSample = 32})),
        format(96'000, 1, 32, "IEEE Float"));
    EXPECT_EQ(AudioProbe::probe(waveImage({.formatTag = 0xFFFE})),
              format(48'000, 1, 16, "WAVE format 0xFFFE"));
    EXPECT_EQ(AudioProbe::probe(waveImage({.formatTag = 0x0055})),
              format(48'000, 1, 16, "WAVE format 0x0055"));
}

TEST(WaveProbe, RF64IsReadLikeRIFF) {
    EXPECT_EQ(AudioProbe::probe(waveImage({.form = "RF64"})), format(48'000, 1, 16, "PCM"));
}

TEST(WaveProbe, LargestNumbersAreUnsigned) {
    EXPECT_EQ(AudioProbe::probe(waveImage(
                  {.channels = 0xFFFF, .sampleRate = 0xFFFFFFFF, .bitsPerSample = 0xFFFF})),
              format(4'294'967'295, 65'535, 65'535, "PCM"));
}

TEST(WaveProbe, ChunksOfOddSizeArePadded) {
    EXPECT_EQ(AudioProbe::probe(waveImage({.leadingChunks = {{"LIST", bytesOf("12345")}}})),
              format(48'000, 1, 16, "PCM"));
}

TEST(WaveProbe, AShortFormatChunkIsSkipped) {
    EXPECT_EQ(AudioProbe::probe(waveImage({.leadingChunks = {{"fmt ", Bytes(15)}}})),
              format(48'000, 1, 16, "PCM"));
}

TEST(WaveProbe, NoDataChunkIsNeeded) {
    const Bytes whole = waveImage({});
    EXPECT_EQ(AudioProbe::probe(ByteView(whole).first(12 + 8 + 16)), format(48'000, 1, 16, "PCM"));
}

TEST(WaveProbe, AFormatChunkThatIsCutOffIsAbsent) {
    const Bytes whole = waveImage({});
    EXPECT_EQ(AudioProbe::probe(ByteView(whole).first(12 + 8 + 15)), std::nullopt);
}

TEST(WaveProbe, AChunkThatClaimsMoreThanThereIsEndsTheSearch) {
    Bytes image = waveImage({.leadingChunks = {{"LIST", bytesOf("1234")}}});
    for (std::size_t index = 16; index < 20; ++index) {
        image[index] = std::byte{0xFF};
    }
    EXPECT_EQ(AudioProbe::probe(image), std::nullopt);
}

TEST(AiffProbe, AiffIsItsOwnCodec) {
    EXPECT_EQ(AudioProbe::probe(aiffImage({.channels = 2,
                                           .bitsPerSample = 24,
                                           .rateBytes = hex("40 0E BB 80 00 00 00 00 00 00")})),
              format(48'000, 2, 24, "AIFF"));
}

TEST(AiffProbe, AifcNamesItsCompressionType) {
    EXPECT_EQ(AudioProbe::probe(aiffImage({.formType = "AIFC"})), format(48'000, 1, 16, "NONE"));
    EXPECT_EQ(AudioProbe::probe(aiffImage({.formType = "AIFC", .compressionType = "sowt"})),
              format(48'000, 1, 16, "sowt"));
}

TEST(AiffProbe, AnAifcWithACommonChunkOf18BytesIsItsOwnCodec) {
    EXPECT_EQ(AudioProbe::probe(aiffImage({.formType = "AIFC", .compressionType = ""})),
              format(48'000, 1, 16, "AIFC"));
}

TEST(AiffProbe, AnAifcCutBeforeItsCompressionTypeIsItsOwnCodec) {
    const Bytes whole = aiffImage({.formType = "AIFC"});
    EXPECT_EQ(AudioProbe::probe(ByteView(whole).first(12 + 8 + 22)), format(48'000, 1, 16, "NONE"));
    EXPECT_EQ(AudioProbe::probe(ByteView(whole).first(12 + 8 + 21)), format(48'000, 1, 16, "AIFC"));
}

TEST(AiffProbe, ACompressionTypeThatIsNotAsciiGivesTheFormType) {
    for (std::size_t place = 0; place < 4; ++place) {
        std::string type = "NONE";
        type[place] = '\x80';
        EXPECT_EQ(AudioProbe::probe(aiffImage({.formType = "AIFC", .compressionType = type})),
                  format(48'000, 1, 16, "AIFC"));
    }
}

TEST(AiffProbe, PlainAiffIgnoresWhatFollowsTheRate) {
    AiffSpec given{.formType = "AIFC"};
    Bytes image = aiffImage(given);
    image[11] = std::byte{'F'};
    EXPECT_EQ(AudioProbe::probe(image), format(48'000, 1, 16, "AIFF"));
}

TEST(AiffProbe, ChunksBeforeTheCommonOneAreSkippedWithTheirPadding) {
    EXPECT_EQ(AudioProbe::probe(
                  aiffImage({.leadingChunks = {{"FVER", Bytes(4)}, {"NAME", bytesOf("odd")}}})),
              format(48'000, 1, 16, "AIFF"));
}

TEST(AiffProbe, ACommonChunkThatIsCutOffIsAbsent) {
    const Bytes whole = aiffImage({});
    EXPECT_EQ(AudioProbe::probe(ByteView(whole).first(12 + 8 + 18)), format(48'000, 1, 16, "AIFF"));
    EXPECT_EQ(AudioProbe::probe(ByteView(whole).first(12 + 8 + 17)), std::nullopt);
}

TEST(AiffProbe, RatesAreExtendedFloatingPointNumbers) {
    EXPECT_EQ(aiffRate("40 0E BB 80 00 00 00 00 00 00"), AAFRational(48'000));
    EXPECT_EQ(aiffRate("40 0D AC 44 00 00 00 00 00 00"), AAFRational(22'050));
    EXPECT_EQ(aiffRate("40 0E AC 44 00 00 00 00 00 00"), AAFRational(44'100));
    EXPECT_EQ(aiffRate("3F FF 80 00 00 00 00 00 00 00"), AAFRational(1));
}

TEST(AiffProbe, RatesAreRoundedHalfAwayFromZero) {
    // 1.5, 2.5 and -2.5; then 0.25.
    EXPECT_EQ(aiffRate("3F FF C0 00 00 00 00 00 00 00"), AAFRational(2));
    EXPECT_EQ(aiffRate("40 00 A0 00 00 00 00 00 00 00"), AAFRational(3));
    EXPECT_EQ(aiffRate("C0 00 A0 00 00 00 00 00 00 00"), AAFRational(-3));
    EXPECT_EQ(aiffRate("3F FD 80 00 00 00 00 00 00 00"), AAFRational(0));
}

TEST(AiffProbe, AnExponentOfZeroIsZero) {
    EXPECT_EQ(aiffRate("00 00 FF FF FF FF FF FF FF FF"), AAFRational(0));
    EXPECT_EQ(aiffRate("80 00 00 00 00 00 00 00 00 00"), AAFRational(0));
}

TEST(AiffProbe, RatesBeyond64BitsSaturate) {
    const AAFRational largest(std::numeric_limits<std::int64_t>::max());
    const AAFRational smallest(std::numeric_limits<std::int64_t>::min());
    // 2^62 still fits, 2^63 does not; -2^63 is the smallest.
    EXPECT_EQ(aiffRate("40 3D 80 00 00 00 00 00 00 00"), AAFRational(std::int64_t{1} << 62));
    EXPECT_EQ(aiffRate("40 3E 80 00 00 00 00 00 00 00"), largest);
    EXPECT_EQ(aiffRate("C0 3E 80 00 00 00 00 00 00 00"), smallest);
    EXPECT_EQ(aiffRate("C0 3F 80 00 00 00 00 00 00 00"), smallest);
    // Infinities.
    EXPECT_EQ(aiffRate("7F FF 80 00 00 00 00 00 00 00"), largest);
    EXPECT_EQ(aiffRate("FF FF 80 00 00 00 00 00 00 00"), smallest);
}

TEST(AiffProbe, AMantissaOfZeroIsZeroWhateverTheExponent) {
    EXPECT_EQ(aiffRate("7F FF 00 00 00 00 00 00 00 00"), AAFRational(0));
}

TEST(AudioProbeFile, ReadsTheHeaderOfAFile) {
    const TemporaryDirectory folder;
    EXPECT_EQ(AudioProbe::probeFile(writeFile(folder.file("a.wav"), waveImage({}))),
              format(48'000, 1, 16, "PCM"));
}

TEST(AudioProbeFile, LooksAtTheFirstMebibyteOnly) {
    const TemporaryDirectory folder;
    // Head 12, chunk head 8: the format chunk's 24 bytes end exactly at 1 MiB, or 2 bytes later.
    const std::size_t fitting = 1'048'576 - 12 - 8 - 24;
    const auto image = [](std::size_t size) {
        return waveImage({.leadingChunks = {{"LIST", Bytes(size)}}});
    };
    EXPECT_EQ(AudioProbe::probeFile(writeFile(folder.file("a.wav"), image(fitting))),
              format(48'000, 1, 16, "PCM"));
    EXPECT_EQ(AudioProbe::probeFile(writeFile(folder.file("b.wav"), image(fitting + 2))),
              std::nullopt);
}

TEST(AudioProbeFile, AFormatAcrossTheEndOfTheFirstReadIsReadWhole) {
    const TemporaryDirectory folder;
    // Head 12, chunk head 8, padding; COMM's head 8 and its 22 bytes. The first read takes 4096
    // bytes: it ends before, within and behind the chunk in turn.
    for (std::size_t end = 4080; end <= 4130; end += 2) {
        const Bytes padding(end - 12 - 8 - 8 - 22);
        const Bytes aifc = aiffImage({.formType = "AIFC",
                                      .compressionType = "sowt",
                                      .samples = Bytes(10'000),
                                      .leadingChunks = {{"FVER", padding}}});
        EXPECT_EQ(AudioProbe::probeFile(writeFile(folder.file("a.aifc"), aifc)),
                  format(48'000, 1, 16, "sowt"))
            << end;
        const Bytes wave =
            waveImage({.samples = Bytes(9000), .leadingChunks = {{"LIST", padding}}});
        EXPECT_EQ(AudioProbe::probeFile(writeFile(folder.file("a.wav"), wave)),
                  format(48'000, 1, 16, "PCM"))
            << end;
    }
}

TEST(AudioProbeFile, WhatCannotBeReadIsAbsent) {
    const TemporaryDirectory folder;
    EXPECT_EQ(AudioProbe::probeFile(folder.file("missing.wav")), std::nullopt);
    EXPECT_EQ(AudioProbe::probeFile(folder.path().string()), std::nullopt);
    EXPECT_EQ(AudioProbe::probeFile(writeFile(folder.file("empty.wav"), {})), std::nullopt);
    EXPECT_EQ(AudioProbe::probeFile(std::string("a\0b", 3)), std::nullopt);
}

TEST(AudioProbeFile, ANamedPipeDoesNotBlock) {
    const TemporaryDirectory folder;
    const std::string path = folder.file("pipe.wav");
    ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
    EXPECT_EQ(AudioProbe::probeFile(path), std::nullopt);
}

TEST(AudioProbeDamage, EveryTruncationAndChangedByteGivesAResultOrNone) {
    for (const Bytes& valid :
         {waveImage({.formatTag = 0xFFFE, .leadingChunks = {{"LIST", bytesOf("123")}}}),
          aiffImage({.formType = "AIFC", .leadingChunks = {{"FVER", bytesOf("1234")}}})}) {
        ASSERT_TRUE(AudioProbe::probe(valid).has_value());
        for (std::size_t length = 0; length < valid.size(); ++length) {
            // A buffer of exactly this size, so that a read beyond it is seen.
            const Bytes cut(valid.begin(), valid.begin() + static_cast<std::ptrdiff_t>(length));
            const auto info = AudioProbe::probe(cut);
            ASSERT_TRUE(!info || (info->sampleRate == AAFRational(48'000) && info->codec));
        }
        for (std::size_t index = 0; index < valid.size(); ++index) {
            for (unsigned value = 0; value < 256; ++value) {
                Bytes damaged = valid;
                damaged[index] = static_cast<std::byte>(value);
                const auto info = AudioProbe::probe(damaged);
                ASSERT_TRUE(!info || (info->sampleRate && info->channels && info->codec));
            }
        }
    }
}

// A head of 12 bytes, "fmt " of 8 + 16, and the head of "data": audio begins at byte 44.
TEST(AudioFrames, OfWaveAreWhatTheFileHasRoomFor) {
    const Bytes stereo = waveImage({.channels = 2, .samples = patternBytes(40)});
    // Four bytes a frame.
    EXPECT_EQ(AudioProbe::frames(stereo, 84), 10U);
    EXPECT_EQ(AudioProbe::frames(ByteView(stereo).first(44), 84), 10U);
    // A file that was cut holds less than its head says, down to nothing.
    EXPECT_EQ(AudioProbe::frames(stereo, 67), 5U);
    EXPECT_EQ(AudioProbe::frames(stereo, 44), 0U);
    EXPECT_EQ(AudioProbe::frames(stereo, 0), 0U);
}

TEST(AudioFrames, AreAbsentWhereTheHeadDoesNotReachOrTell) {
    const Bytes wave = waveImage({.samples = patternBytes(40)});
    for (std::size_t size = 0; size < 44; ++size) {
        EXPECT_EQ(AudioProbe::frames(ByteView(wave).first(size), 84), std::nullopt) << size;
    }
    EXPECT_EQ(AudioProbe::frames(waveImage({.formatTag = 0x55}), 1'000), std::nullopt);
    EXPECT_EQ(AudioProbe::frames(waveImage({.channels = 0, .samples = patternBytes(4)}), 48),
              std::nullopt);
    EXPECT_EQ(AudioProbe::frames(bytesOf("nothing that is known"), 1'000), std::nullopt);
}

TEST(AudioFrames, OfAiffAreCounted) {
    EXPECT_EQ(AudioProbe::frames(aiffImage({.channels = 2, .samples = patternBytes(40)}), 1'000),
              10U);
}

// A head of RIFF or FORM, a chunk "fmt " of 16 bytes or "COMM" of 18, and the head of the chunk of
// the samples: 12 + 24 + 8 and 12 + 26 + 8 + 8 bytes.
TEST(AudioSamples, LieBehindTheHeadOfTheirChunkInWholeFrames) {
    const Bytes wave = waveImage({.channels = 2, .bitsPerSample = 24, .samples = patternBytes(40)});
    // Six bytes a frame: 36 of 40.
    EXPECT_EQ(AudioProbe::samples(wave, wave.size()),
              (SamplePlace{.offset = 44, .length = 36, .sampleBytes = 3, .isBigEndian = false}));
    // The file ends within the samples.
    EXPECT_EQ(AudioProbe::samples(wave, 44 + 13),
              (SamplePlace{.offset = 44, .length = 12, .sampleBytes = 3, .isBigEndian = false}));
    EXPECT_EQ(AudioProbe::samples(wave, 44), std::nullopt);
    const Bytes aiff = aiffImage({.channels = 1, .samples = patternBytes(40)});
    EXPECT_EQ(AudioProbe::samples(aiff, aiff.size()),
              (SamplePlace{.offset = 54, .length = 40, .sampleBytes = 2, .isBigEndian = true}));
}

TEST(AudioSamples, OfCompressedAudioAreItsBytes) {
    const Bytes wave = waveImage({.formatTag = 0x55, .samples = patternBytes(41)});
    EXPECT_EQ(AudioProbe::samples(wave, wave.size()),
              (SamplePlace{.offset = 44, .length = 41, .sampleBytes = 1, .isBigEndian = false}));
    const auto packed = AudioProbe::samples(
        aiffImage({.formType = "AIFC", .compressionType = "ima4", .samples = patternBytes(34)}),
        1'000);
    ASSERT_TRUE(packed);
    EXPECT_EQ(packed->length, 34U);
    EXPECT_EQ(packed->sampleBytes, 1);
    EXPECT_FALSE(packed->isBigEndian);
    const auto swapped = AudioProbe::samples(
        aiffImage({.formType = "AIFC", .compressionType = "sowt", .samples = patternBytes(34)}),
        1'000);
    ASSERT_TRUE(swapped);
    EXPECT_EQ(swapped->sampleBytes, 2);
    EXPECT_FALSE(swapped->isBigEndian);
}

TEST(AudioSamples, AreAbsentWhereTheHeadDoesNotReach) {
    const Bytes wave = waveImage({.samples = patternBytes(40)});
    for (std::size_t size = 0; size < 44; ++size) {
        EXPECT_EQ(AudioProbe::samples(ByteView(wave).first(size), 84), std::nullopt) << size;
    }
    const Bytes aiff = aiffImage({.samples = patternBytes(40)});
    for (std::size_t size = 0; size < 54; ++size) {
        EXPECT_EQ(AudioProbe::samples(ByteView(aiff).first(size), 94), std::nullopt) << size;
    }
    EXPECT_EQ(AudioProbe::samples(bytesOf("nothing that is known"), 1'000), std::nullopt);
}

}  // namespace
}  // namespace trellant
