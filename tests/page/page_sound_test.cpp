// SPDX-License-Identifier: Apache-2.0
#include "hand_offs.h"
#include "sound_data.h"

#include <gtest/gtest.h>

#include <limits>

namespace trellant::page {

namespace {

using listening::PreviewWish;

/// One track, and one source at 1,000 samples in a second.
HandOff handOffWithSource(std::int64_t channels) {
    HandOff handOff = emptyHandOff();
    addTrack(handOff, "A");
    AAFSourceEssence& source = addSource(handOff, "a.wav");
    source.sampleRate = AAFRational(1'000);
    source.channelCount = channels;
    return handOff;
}

AAFClipEvent& addPart(HandOff& handOff, std::int64_t first, const AAFRational& seconds) {
    AAFClipEvent& clip = addClip(handOff, "Take", "A", "a.wav", AAFRational(0), seconds);
    clip.sourceStartSample = first;
    return clip;
}

TEST(PlayedParts, OfOneClipAreItsFrames) {
    HandOff handOff = handOffWithSource(1);
    addPart(handOff, 500, AAFRational(2));
    EXPECT_EQ(playedParts(handOff.timeline),
              (std::vector<PreviewWish>{{.essence = 0, .firstFrame = 500, .frames = 2'000}}));
}

TEST(PlayedParts, ThatOverlapOrAreNearAreOne) {
    HandOff handOff = handOffWithSource(2);
    addPart(handOff, 3'000, AAFRational(1));
    addPart(handOff, 0, AAFRational(1));
    // A gap of 1,999 frames lies before 3,000 only when this part ends at 1,001.
    addPart(handOff, 500, AAFRational(501, 1'000));
    // 2,000 frames behind 4,000: two seconds.
    addPart(handOff, 6'000, AAFRational(1));
    EXPECT_EQ(playedParts(handOff.timeline),
              (std::vector<PreviewWish>{{.essence = 0, .firstFrame = 0, .frames = 4'000},
                                        {.essence = 0, .firstFrame = 6'000, .frames = 1'000}}));
}

TEST(PlayedParts, AreAtMostTwoMinutesLong) {
    HandOff handOff = handOffWithSource(1);
    addPart(handOff, 0, AAFRational(250));
    EXPECT_EQ(playedParts(handOff.timeline),
              (std::vector<PreviewWish>{{.essence = 0, .firstFrame = 0, .frames = 120'000},
                                        {.essence = 0, .firstFrame = 120'000, .frames = 120'000},
                                        {.essence = 0, .firstFrame = 240'000, .frames = 10'000}}));
}

TEST(PlayedParts, OfManyChannelsAreThoseThatAreHeard) {
    HandOff handOff = handOffWithSource(6);
    addPart(handOff, 0, AAFRational(1)).sourceChannel = 4;
    addPart(handOff, 0, AAFRational(1)).sourceChannel = 2;
    EXPECT_EQ(
        playedParts(handOff.timeline),
        (std::vector<PreviewWish>{{.essence = 0, .channel = 2, .firstFrame = 0, .frames = 1'000},
                                  {.essence = 0, .channel = 4, .firstFrame = 0, .frames = 1'000}}));
}

TEST(PlayedParts, WithoutANumberForTheirEndAreLeftOut) {
    HandOff handOff = handOffWithSource(1);
    addPart(handOff, std::numeric_limits<std::int64_t>::max(), AAFRational(1));
    EXPECT_EQ(playedParts(handOff.timeline), std::vector<PreviewWish>{});
}

TEST(PlayedParts, OfNoSourceAreNone) {
    HandOff handOff = handOffWithSource(1);
    addPart(handOff, 0, AAFRational(1)).essenceID = "nothing";
    EXPECT_EQ(playedParts(handOff.timeline), std::vector<PreviewWish>{});
}

TEST(SoundData, IsBase64) {
    PageSound sound;
    // "Man" is TWFu in every book; one byte of zero is AA and two signs that fill up.
    sound.waveforms = {{std::byte{'M'}, std::byte{'a'}, std::byte{'n'}}, {}};
    sound.pieces = {{.essence = 1, .channel = 3, .firstFrame = 7, .file = {std::byte{0}}},
                    {.essence = 0, .file = {}}};
    StringSink waves;
    writeWaveforms(&sound, waves);
    EXPECT_EQ(waves.text, R"(["TWFu",""])");
    StringSink previews;
    writePreviews(&sound, previews);
    EXPECT_EQ(previews.text, R"([[1,3,7,"AA=="],[0,-1,0,""]])");
}

TEST(SoundData, IsAnEmptyListWhereNobodyListened) {
    StringSink waves;
    writeWaveforms(nullptr, waves);
    StringSink previews;
    writePreviews(nullptr, previews);
    EXPECT_EQ(waves.text + previews.text, "[][]");
}

TEST(PageSound, SaysWhatWasLeftOut) {
    PageSound sound;
    sound.leftOut = 2;
    sound.failed = 1;
    const HandOff handOff = handOffWithSource(1);
    StringSink sink;
    writePage({.handOff = handOff, .sound = &sound}, sink);
    EXPECT_NE(
        sink.text.find("<dt>Playback</dt><dd>2 parts left out: the limit of this page's size, "
                       "1 parts cannot be played</dd>"),
        std::string::npos);
}

TEST(PageSound, LinksToWholeFiles) {
    const HandOff handOff = handOffWithSource(1);
    StringSink sink;
    writePage({.handOff = handOff, .fullFiles = {"audio/a%20\"1.wav"}}, sink);
    EXPECT_NE(sink.text.find("<td><a href=\"audio/a%20&quot;1.wav\">Full file</a>"),
              std::string::npos);
}

}  // namespace

}  // namespace trellant::page
