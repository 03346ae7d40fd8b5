// SPDX-License-Identifier: Apache-2.0
// What a search costs and finds where the bytes are against it.
#include "searched_bytes.h"

#include <gtest/gtest.h>

#include <array>
#include <random>

namespace trellant::testing {
namespace {

constexpr std::size_t windowBytes = 262'144;

/// Noise with words of headers strewn in, as often as in terabytes of plain noise.
Bytes noise(std::size_t count) {
    constexpr std::array words{"FORM", "RIFF", "RF64", "AIFC", "AIFF", "WAVE",
                               "COMM", "SSND", "fmt ", "data", "ds64"};
    // NOLINTNEXTLINE(cert-msc51-cpp): the same noise each time.
    std::mt19937_64 random(20'260'731);
    Bytes bytes;
    bytes.reserve(count + 8);
    while (bytes.size() < count) {
        const std::uint64_t number = random();
        if (number % 8 == 0) {
            const Bytes word = bytesOf(words[number / 8 % words.size()]);
            bytes.insert(bytes.end(), word.begin(), word.end());
        } else {
            for (unsigned shift = 0; shift < 64; shift += 8) {
                bytes.push_back(static_cast<std::byte>(number >> shift & 0xFFU));
            }
        }
    }
    return bytes;
}

TEST(SearchBounds, NoSoundIsFoundInNoise) {
    const SearchedBytes searched(noise(24'000'000));
    EXPECT_TRUE(searched.sounds().empty());
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
