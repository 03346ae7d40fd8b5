// SPDX-License-Identifier: Apache-2.0
// What a search costs and finds where the bytes are against it.
#include "searched_bytes.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <cstring>

namespace trellant::testing {
namespace {

constexpr std::size_t windowBytes = 262'144;

/// Noise with words of headers strewn in, as often as in terabytes of plain noise; another for each
/// seed. Numbers of SplitMix64.
Bytes noise(std::size_t count, std::uint64_t seed) {
    constexpr std::array<const char*, 11> words{"FORM", "RIFF", "RF64", "AIFC", "AIFF", "WAVE",
                                                "COMM", "SSND", "fmt ", "data", "ds64"};
    Bytes bytes(count);
    std::uint64_t state = seed;
    for (std::size_t at = 0; at + 8 <= count; at += 8) {
        state += 0x9E3779B97F4A7C15U;
        std::uint64_t number = (state ^ state >> 30U) * 0xBF58476D1CE4E5B9U;
        number = (number ^ number >> 27U) * 0x94D049BB133111EBU;
        number ^= number >> 31U;
        std::memcpy(bytes.data() + at, &number, sizeof number);
        if (number % 8 == 0) {
            std::memcpy(bytes.data() + at, words[number / 8 % words.size()], 4);
        }
    }
    return bytes;
}

TEST(SearchBounds, NoSoundIsFoundInAGibibyteOfNoise) {
    constexpr std::size_t piece = 67'108'864;
    for (std::uint64_t seed = 0; seed < 16; ++seed) {
        const SearchedBytes searched(noise(piece, seed));
        EXPECT_TRUE(searched.sounds(true).empty()) << seed;
    }
}

TEST(SearchBounds, EachByteIsReadOnce) {
    // Marks every 20 bytes whose chunks lead from one into the middle of the next ones.
    ByteWriter bytes(OMFByteOrder::big);
    while (bytes.size() < 2'000'000) {
        bytes.text("FORM").u32(0x7FFFFFFF).text("AIFF").text("JUNK").u32(12);
    }
    const SearchedBytes searched(bytes.written());
    const std::uint64_t before = searched.file().readCalls();
    EXPECT_TRUE(searched.sounds().empty());
    // A call for each window, of which a few bytes stay, and some at the end.
    const std::uint64_t calls = searched.file().readCalls() - before;
    EXPECT_LE(calls, bytes.size() / (windowBytes - 64) + 4);
}

TEST(SearchBounds, AMarkThatWasSeenBeforeAChunkIsNotForgotten) {
    // A header whose chunk reaches over the mark of a sound and ends at nonsense.
    const Bytes sound = waveOf(20);
    const Bytes header =
        ByteWriter(OMFByteOrder::big).text("FORM").u32(0x7FFFFFFF).text("AIFF").written();
    for (const std::uint32_t reach : {0U, 8U, 100U, 63U, 64U, 200U}) {
        ByteWriter chunk(OMFByteOrder::big);
        chunk.text("JUNK").u32(reach);
        const Bytes between(40, std::byte{0});
        const Bytes all = joined({header, chunk.written(), between, sound, Bytes(300)});
        const auto sounds = SearchedBytes(all).sounds();
        ASSERT_EQ(sounds.size(), 1U) << reach;
        EXPECT_EQ(sounds[0].ranges.front(),
                  (BentoRange{header.size() + 8 + between.size(), sound.size()}));
    }
}

TEST(SearchBounds, MoreHeadersThanAreFollowedHideNoSound) {
    // Twenty headers that all lead far on, then a sound in their midst.
    ByteWriter headers(OMFByteOrder::big);
    for (std::uint32_t i = 0; i < 20; ++i) {
        headers.text("FORM").u32(0x7FFFFFFF).text("AIFF").text("JUNK").u32(5'000 + 2 * i);
    }
    const Bytes sound = aifcOf(40);
    const auto sounds =
        SearchedBytes(joined({headers.written(), sound, Bytes(10'000, std::byte{1})})).sounds();
    ASSERT_EQ(sounds.size(), 1U);
    EXPECT_EQ(sounds[0].ranges.front(), (BentoRange{headers.size(), sound.size()}));
}

TEST(SearchBounds, SamplesAreSkipped) {
    const SearchedBytes searched(joined({waveOf(2'000'000), waveOf(2'000'000)}));
    const std::uint64_t before = searched.file().readCalls();
    EXPECT_EQ(searched.sounds().size(), 2U);
    // A window at each header, and one that the file's end cuts short.
    EXPECT_LE(searched.file().readCalls() - before, 4U);
}

TEST(SearchBounds, MarksAcrossWindowsAreFound) {
    const Bytes wave = waveOf(20);
    for (std::size_t shift = 0; shift < 80; ++shift) {
        const Bytes before(windowBytes - 60 + shift, std::byte{0x11});
        const auto sounds = SearchedBytes(joined({before, wave, before})).sounds();
        ASSERT_EQ(sounds.size(), 1U) << shift;
        EXPECT_EQ(sounds[0].ranges.front(), (BentoRange{before.size(), wave.size()}));
        EXPECT_TRUE(sounds[0].isWhole);
    }
}

TEST(SearchBounds, SoundsInARowAreAllFound) {
    // 46 bytes each, so that headers lie across the ends of windows in every way.
    const Bytes one = waveOf(1);
    Bytes many;
    constexpr std::size_t count = 15'000;
    for (std::size_t i = 0; i < count; ++i) {
        many.insert(many.end(), one.begin(), one.end());
    }
    const auto sounds = SearchedBytes(many).sounds();
    ASSERT_EQ(sounds.size(), count);
    for (std::size_t i = 0; i < count; ++i) {
        EXPECT_EQ(sounds[i].ranges.front(), (BentoRange{i * one.size(), one.size()}));
    }
}

TEST(SearchBounds, EveryCutAndEveryByteChangedGivesDisjointSounds) {
    const Bytes whole = joined({aifcOf(12), waveOf(9), aifcOf(3)});
    const auto judge = [](ByteView bytes) {
        const SearchedBytes searched(bytes);
        std::uint64_t end = 0;
        for (const auto& sound : searched.sounds()) {
            ASSERT_EQ(sound.ranges.size(), 1U);
            ASSERT_GE(sound.ranges.front().offset, end);
            end = sound.ranges.front().offset + sound.ranges.front().length;
            ASSERT_LE(end, bytes.size());
            const Bytes copy = searched.copyOf(sound);
            ASSERT_EQ(copy.size(), sound.bytes() + (sound.isPadded ? 1 : 0));
        }
    };
    for (std::size_t length = 0; length <= whole.size(); ++length) {
        SCOPED_TRACE(length);
        judge(ByteView(whole).first(length));
    }
    for (std::size_t at = 0; at < whole.size(); ++at) {
        for (const std::uint8_t flip : {std::uint8_t{0x80}, std::uint8_t{0xFF}}) {
            SCOPED_TRACE(std::to_string(at) + " " + std::to_string(flip));
            Bytes changed = whole;
            changed[at] ^= std::byte{flip};
            judge(changed);
        }
    }
}

}  // namespace
}  // namespace trellant::testing
