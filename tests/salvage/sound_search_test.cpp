// SPDX-License-Identifier: Apache-2.0
#include "searched_bytes.h"

#include <trellant/omf/audio_probe.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <trellant_testing/aiff_builder.h>
#include <trellant_testing/wave_builder.h>

namespace trellant::testing {
namespace {

using salvage::Doubt;
using salvage::FoundSound;
using salvage::SoundKind;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

/// Bytes between sounds, none of which begins a mark.
Bytes gap(std::size_t count) {
    return Bytes(count, std::byte{0x5A});
}

/// What the data chunk of `wave` has instead of its size; its head is at byte 36.
Bytes withWaveSizes(Bytes wave, std::uint32_t form, std::uint32_t data) {
    const Bytes sizes = ByteWriter(OMFByteOrder::little).u32(form).u32(data).written();
    std::copy_n(sizes.begin(), 4, wave.begin() + 4);
    std::copy_n(sizes.begin() + 4, 4, wave.begin() + 40);
    return wave;
}

TEST(SoundSearch, FindsEachKindWithItsPlace) {
    const Bytes aiff = aiffImage({.samples = patternBytes(200)});
    const Bytes aifc = aifcOf(100);
    const Bytes wave = waveOf(100);
    const Bytes image = joined({gap(7), aiff, gap(1), aifc, wave, gap(30)});
    const SearchedBytes searched(image);
    const auto sounds = searched.sounds();
    ASSERT_THAT(sounds, SizeIs(3));
    const std::uint64_t aifcBegin = 7 + aiff.size() + 1;
    EXPECT_EQ(sounds[0].kind, SoundKind::aiff);
    EXPECT_THAT(sounds[0].ranges, ElementsAre(BentoRange{7, aiff.size()}));
    EXPECT_EQ(sounds[1].kind, SoundKind::aifc);
    EXPECT_THAT(sounds[1].ranges, ElementsAre(BentoRange{aifcBegin, aifc.size()}));
    EXPECT_EQ(sounds[2].kind, SoundKind::wave);
    EXPECT_THAT(sounds[2].ranges, ElementsAre(BentoRange{aifcBegin + aifc.size(), wave.size()}));
    for (const FoundSound& sound : sounds) {
        EXPECT_TRUE(sound.isWhole);
        EXPECT_THAT(sound.doubts, IsEmpty());
        EXPECT_EQ(sound.claimedBytes, sound.bytes());
    }
    EXPECT_EQ(searched.copyOf(sounds[1]), aifc);
}

TEST(SoundSearch, TakesTheByteThatMakesAFormEven) {
    // 101 bytes of samples; their chunk is padded, and the form counts that byte.
    const Bytes padded = waveImage({.bitsPerSample = 8, .samples = patternBytes(101)});
    // A form that does not count it: what comes behind is no part of it unless it is zero.
    Bytes odd = padded;
    odd[4] = std::byte{static_cast<std::uint8_t>(padded.size() - 9)};
    for (const Bytes& image : {joined({padded, gap(20)}), joined({odd, gap(20)})}) {
        const auto sounds = SearchedBytes(image).sounds();
        ASSERT_THAT(sounds, SizeIs(1));
        EXPECT_THAT(sounds[0].ranges, ElementsAre(BentoRange{0, padded.size()}));
        EXPECT_TRUE(sounds[0].isWhole);
    }
    odd.pop_back();
    const auto unpadded = SearchedBytes(joined({odd, gap(20)})).sounds();
    ASSERT_THAT(unpadded, SizeIs(1));
    EXPECT_THAT(unpadded[0].ranges, ElementsAre(BentoRange{0, odd.size()}));
}

TEST(SoundSearch, CutWaveSaysWhatIsThere) {
    // 44 bytes of header; 41 of 200 bytes of samples are 20 frames of two bytes.
    const Bytes wave = waveOf(100);
    const SearchedBytes searched(ByteView(wave).first(44 + 41));
    const auto sounds = searched.sounds();
    ASSERT_THAT(sounds, SizeIs(1));
    EXPECT_FALSE(sounds[0].isWhole);
    EXPECT_THAT(sounds[0].doubts, ElementsAre(Doubt::cutByEnd));
    EXPECT_EQ(sounds[0].claimedBytes, wave.size());
    EXPECT_EQ(searched.copyOf(sounds[0]),
              waveImage({.samples = Bytes(wave.begin() + 44, wave.begin() + 84)}));
}

TEST(SoundSearch, CutAifcCountsItsFrames) {
    // The head of the form, a chunk "COMM" of 24 bytes, the head of "SSND" with its 8: 60 bytes.
    const Bytes aifc = aifcOf(100);
    constexpr std::size_t header = 12 + 8 + 24 + 8 + 8;
    const SearchedBytes searched(ByteView(aifc).first(header + 51));
    const auto sounds = searched.sounds();
    ASSERT_THAT(sounds, SizeIs(1));
    const Bytes left(aifc.begin() + header, aifc.begin() + header + 50);
    EXPECT_EQ(searched.copyOf(sounds[0]), aiffImage({.formType = "AIFC", .samples = left}));
}

TEST(SoundSearch, OddRestOfSamplesIsPadded) {
    const Bytes wave = waveImage({.bitsPerSample = 24, .samples = patternBytes(300)});
    const SearchedBytes searched(ByteView(wave).first(44 + 10));
    const auto sounds = searched.sounds();
    ASSERT_THAT(sounds, SizeIs(1));
    EXPECT_TRUE(sounds[0].isPadded);
    EXPECT_EQ(
        searched.copyOf(sounds[0]),
        waveImage({.bitsPerSample = 24, .samples = Bytes(wave.begin() + 44, wave.begin() + 53)}));
}

TEST(SoundSearch, HeaderWithoutSamplesIsNoSound) {
    const Bytes wave = waveOf(100);
    EXPECT_THAT(SearchedBytes(ByteView(wave).first(44)).sounds(), IsEmpty());
    EXPECT_THAT(SearchedBytes(ByteView(wave).first(45)).sounds(), IsEmpty());
    EXPECT_THAT(SearchedBytes(ByteView(wave).first(20)).sounds(), IsEmpty());
    EXPECT_THAT(SearchedBytes(Bytes{}).sounds(), IsEmpty());
    // Writers set a header aside before the one that counts.
    const Bytes empty = aifcOf(0);
    const Bytes full = aifcOf(10);
    const auto sounds = SearchedBytes(joined({empty, full})).sounds();
    ASSERT_THAT(sounds, SizeIs(1));
    EXPECT_THAT(sounds[0].ranges, ElementsAre(BentoRange{empty.size(), full.size()}));
}

TEST(SoundSearch, SoundInsideAnothersSamplesIsNotTaken) {
    const Bytes inner = waveOf(50);
    const Bytes outer = aiffImage({.samples = joined({inner, inner})});
    const auto sounds = SearchedBytes(joined({outer, inner})).sounds();
    ASSERT_THAT(sounds, SizeIs(2));
    EXPECT_THAT(sounds[0].ranges, ElementsAre(BentoRange{0, outer.size()}));
    EXPECT_THAT(sounds[1].ranges, ElementsAre(BentoRange{outer.size(), inner.size()}));
}

TEST(SoundSearch, HeaderThatClaimsTooMuchEndsWhereTheNextSoundBegins) {
    const Bytes wave = withWaveSizes(waveOf(100), 0x70000000, 0x6FFFFFD0);
    const Bytes next = aifcOf(30);
    const SearchedBytes searched(joined({wave, next}));
    const auto sounds = searched.sounds();
    ASSERT_THAT(sounds, SizeIs(2));
    EXPECT_THAT(sounds[0].doubts, ElementsAre(Doubt::cutByNext));
    EXPECT_EQ(searched.copyOf(sounds[0]), waveOf(100));
    EXPECT_TRUE(sounds[1].isWhole);
    EXPECT_THAT(sounds[1].ranges, ElementsAre(BentoRange{wave.size(), next.size()}));
}

TEST(SoundSearch, LengthThatWasNeverWrittenGoesToTheNextSound) {
    const Bytes next = aifcOf(30);
    for (const std::uint32_t size : {0U, 0xFFFFFFFFU}) {
        const SearchedBytes searched(joined({withWaveSizes(waveOf(100), size, size), next}));
        const auto sounds = searched.sounds();
        ASSERT_THAT(sounds, SizeIs(2));
        EXPECT_THAT(sounds[0].doubts, ElementsAre(Doubt::openEnd));
        EXPECT_EQ(sounds[0].claimedBytes, 0U);
        EXPECT_EQ(searched.copyOf(sounds[0]), waveOf(100));
    }
}

TEST(SoundSearch, FormThatIsTooShortIsCorrected) {
    const Bytes wave = waveOf(100);
    const SearchedBytes searched(joined({withWaveSizes(wave, 20, 200), gap(40)}));
    const auto sounds = searched.sounds();
    ASSERT_THAT(sounds, SizeIs(1));
    EXPECT_FALSE(sounds[0].isWhole);
    EXPECT_THAT(sounds[0].doubts, ElementsAre(Doubt::headerTooShort));
    EXPECT_EQ(searched.copyOf(sounds[0]), wave);
}

TEST(SoundSearch, ChunksBehindTheSamplesAreTakenAsFarAsTheyMakeSense) {
    const Bytes wave = waveOf(100);
    const Bytes list = joined({bytesOf("LIST"), hex("04 00 00 00"), bytesOf("INFO")});
    const auto formOf = [&](std::size_t more) {
        return withWaveSizes(wave, static_cast<std::uint32_t>(wave.size() - 8 + more), 200);
    };
    const SearchedBytes whole(joined({formOf(list.size()), list, gap(9)}));
    ASSERT_THAT(whole.sounds(), SizeIs(1));
    EXPECT_TRUE(whole.sounds()[0].isWhole);
    EXPECT_EQ(whole.sounds()[0].bytes(), wave.size() + list.size());
    // The form goes on over bytes that are no chunk.
    const SearchedBytes broken(joined({formOf(list.size() + 30), list, hex("00"), gap(29)}));
    const auto sounds = broken.sounds();
    ASSERT_THAT(sounds, SizeIs(1));
    EXPECT_FALSE(sounds[0].isWhole);
    EXPECT_THAT(sounds[0].doubts, ElementsAre(Doubt::chunksMissing));
    EXPECT_EQ(broken.copyOf(sounds[0]), joined({formOf(list.size()), list}));
}

TEST(SoundSearch, FormatBehindTheSamplesIsFound) {
    // "COMM" of 18 bytes moved behind the samples of an AIFF.
    const Bytes aiff = aiffImage({.samples = patternBytes(200)});
    const Bytes common(aiff.begin() + 12, aiff.begin() + 38);
    const Bytes head(aiff.begin(), aiff.begin() + 12);
    const Bytes sound(aiff.begin() + 38, aiff.end());
    const auto whole = SearchedBytes(joined({head, sound, common})).sounds();
    ASSERT_THAT(whole, SizeIs(1));
    EXPECT_TRUE(whole[0].isWhole);
    EXPECT_THAT(whole[0].doubts, IsEmpty());
    const auto cut = SearchedBytes(joined({head, ByteView(sound).first(101)})).sounds();
    ASSERT_THAT(cut, SizeIs(1));
    EXPECT_THAT(cut[0].doubts, ElementsAre(Doubt::cutByEnd, Doubt::formatMissing));
}

TEST(SoundSearch, LargeWaveTakesItsSizesFromTheirChunk) {
    // RF64: sizes of 32 bits that say nothing, and a chunk "ds64" of 28 bytes.
    const Bytes samples = patternBytes(400);
    const auto image = [&](std::uint64_t count) {
        ByteWriter file(OMFByteOrder::little);
        file.text("RF64").u32(0xFFFFFFFF).text("WAVE").text("ds64").u32(28);
        file.u64(4 + 36 + 24 + 8 + count).u64(count).u64(count / 2).u32(0);
        file.text("fmt ").u32(16).u16(1).u16(1).u32(48'000).u32(96'000).u16(2).u16(16);
        file.text("data").u32(0xFFFFFFFF).bytes(ByteView(samples).first(count));
        return file.written();
    };
    const Bytes whole = image(400);
    ASSERT_THAT(SearchedBytes(whole).sounds(), SizeIs(1));
    EXPECT_TRUE(SearchedBytes(whole).sounds()[0].isWhole);
    EXPECT_EQ(SearchedBytes(whole).sounds()[0].kind, SoundKind::rf64);
    const SearchedBytes cut(ByteView(whole).first(whole.size() - 100));
    ASSERT_THAT(cut.sounds(), SizeIs(1));
    EXPECT_EQ(cut.copyOf(cut.sounds()[0]), image(300));
}

TEST(SoundSearch, HeaderThatLeadsNowhereHidesNothing) {
    // A chunk of the first header reaches over the second sound and ends in nonsense.
    const Bytes inner = waveOf(40);
    ByteWriter outer(OMFByteOrder::big);
    outer.text("FORM").u32(5'000).text("AIFF").text("JUNK");
    outer.u32(static_cast<std::uint32_t>(inner.size() + 10)).zeros(5).bytes(inner).zeros(60);
    const auto sounds = SearchedBytes(outer.written()).sounds();
    ASSERT_THAT(sounds, SizeIs(1));
    EXPECT_THAT(sounds[0].ranges, ElementsAre(BentoRange{25, inner.size()}));
}

TEST(SoundSearch, CompressedRestCountsFramesByItsShare) {
    // 1000 frames in 400 bytes; of 100 bytes a quarter.
    Bytes aifc =
        aiffImage({.formType = "AIFC", .compressionType = "ulaw", .samples = patternBytes(400)});
    const Bytes frames = ByteWriter(OMFByteOrder::big).u32(1'000).written();
    std::copy(frames.begin(), frames.end(), aifc.begin() + 22);
    const SearchedBytes searched(ByteView(aifc).first(aifc.size() - 300));
    const auto sounds = searched.sounds();
    ASSERT_THAT(sounds, SizeIs(1));
    const Bytes copy = searched.copyOf(sounds[0]);
    EXPECT_EQ(AudioProbe::frames(copy, copy.size()), 250U);
}

TEST(SoundSearch, AHeaderThatLeadsIntoASoundIsNotTakenForIt) {
    // The chunk of the first mark reaches over the mark of the sound, to its first chunk: both
    // headers go on as one, that of the sound.
    const Bytes sound = waveOf(20);
    const Bytes header = ByteWriter(OMFByteOrder::little)
                             .text("RIFF")
                             .u32(0x7FFFFFFF)
                             .text("WAVEJUNK")
                             .u32(12)
                             .written();
    const auto sounds = SearchedBytes(joined({header, sound})).sounds();
    ASSERT_EQ(sounds.size(), 1U);
    EXPECT_TRUE(sounds[0].isWhole);
    EXPECT_EQ(sounds[0].ranges.front(), (BentoRange{header.size(), sound.size()}));
}

}  // namespace
}  // namespace trellant::testing
