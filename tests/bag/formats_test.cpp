// SPDX-License-Identifier: Apache-2.0
#include "formats.h"

#include <gtest/gtest.h>

namespace trellant::bag {
namespace {

AudioFacts coded(const std::string& codec) {
    AudioFacts facts;
    facts.format.codec = codec;
    return facts;
}

TEST(Formats, TheObjectModelDecides) {
    EXPECT_EQ(formatOfOmf(std::nullopt).pronom, "fmt/1855");
    EXPECT_EQ(formatOfOmf(std::nullopt).version, "2.0");
    EXPECT_EQ(formatOfOmf("1.0").pronom, "fmt/1854");
    EXPECT_EQ(formatOfOmf("1.5").version, "1.5");
}

TEST(Formats, TheCodecTellsTheKindOfAudioFile) {
    for (const char* const codec : {"PCM", "IEEE Float", "WAVE format 0x0055"}) {
        EXPECT_EQ(formatOfAudio(coded(codec)).pronom, "fmt/6") << codec;
    }
    EXPECT_EQ(formatOfAudio(coded("AIFF")).pronom, "x-fmt/135");
    for (const char* const codec : {"NONE", "sowt", "ima4"}) {
        EXPECT_EQ(formatOfAudio(coded(codec)).pronom, "x-fmt/136") << codec;
    }
}

TEST(Formats, WhatIsNoAudioHasNoIdentifier) {
    EXPECT_EQ(formatOfAudio(std::nullopt), (FileFormat{.name = "unknown"}));
    EXPECT_EQ(formatOfAudio(AudioFacts{}), (FileFormat{.name = "unknown"}));
}

}  // namespace
}  // namespace trellant::bag
