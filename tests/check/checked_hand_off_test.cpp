// SPDX-License-Identifier: Apache-2.0
// What rules see of a hand-off.
#include "sound_hand_off.h"

#include <gtest/gtest.h>

#include <vector>

namespace trellant::check {
namespace {

TEST(CheckedHandOff, HasClipsByTrackAndStart) {
    SoundHandOff made;
    made.addClip("Dialog", "Voice.wav", AAFRational(4), AAFRational(1));
    made.addClip("Dialog", "Voice.wav", AAFRational(20), AAFRational(1));
    const CheckedHandOff checked(made.handOff, made.file);
    std::vector<std::string> names;
    for (const CheckedClip& clip : checked.clips()) {
        names.push_back(clip.event->clipName.value());
    }
    EXPECT_EQ(names, (std::vector<std::string>{"Take 3", "Take 1", "Take 4", "Take 2"}));
    EXPECT_EQ(checked.clipsOf(checked.tracks()[0]).size(), 3U);
    EXPECT_EQ(checked.clipsOf(checked.tracks()[1]).size(), 1U);
    EXPECT_EQ(checked.sources()[0].clips, 3U);
    EXPECT_EQ(checked.sources()[0].firstClip, 0U);
    EXPECT_EQ(checked.sources()[1].firstClip, 3U);
    // From sample 480,000 on two seconds of 48,000 samples.
    EXPECT_EQ(checked.clips()[3].sourceEnd, 576'000);
    EXPECT_EQ(checked.clips()[3].end, AAFRational(12));
}

TEST(CheckedHandOff, NamesObjectsWhereTheIdsTell) {
    SoundHandOff made;
    {
        const CheckedHandOff checked(made.handOff, made.file);
        EXPECT_EQ(checked.pathOf(checked.tracks()[1]), "CMOB[9]/slot[101]");
        EXPECT_EQ(checked.pathOf(checked.clips()[1]), "CMOB[9]/slot[101]/SCLP[201]");
    }
    made.handOff.timeline.events[1].id = "event-of-another-program";
    {
        const CheckedHandOff checked(made.handOff, made.file);
        EXPECT_EQ(checked.pathOf(checked.clips()[1]), "CMOB[9]/slot[101]");
    }
    made.handOff.compositions.clear();
    const CheckedHandOff checked(made.handOff, made.file);
    EXPECT_EQ(checked.pathOf(checked.clips()[1]), std::nullopt);
}

TEST(CheckedHandOff, CountsSecondsFromTheTimelinesZero) {
    const SoundHandOff made;
    const CheckedHandOff checked(made.handOff, made.file);
    EXPECT_EQ(checked.secondsOf("01:00:10:05"), AAFRational(51, 5));
    EXPECT_EQ(checked.secondsOf("00:59:58:00"), AAFRational(-2));
    EXPECT_EQ(checked.secondsOf("soon"), std::nullopt);
}

TEST(CheckedHandOff, KnowsLengthsAndSoundsAsFarAsTheyAreTold) {
    SoundHandOff made;
    made.handOff.mediaFrames = {std::nullopt};
    made.sound = {{.channels = {{}}}, {.reason = "damaged"}};
    const CheckedHandOff checked(made.handOff, made.file, &made.sound);
    EXPECT_TRUE(checked.hasSound());
    EXPECT_EQ(checked.sources()[0].frames, std::nullopt);
    EXPECT_EQ(checked.sources()[1].frames, std::nullopt);
    EXPECT_NE(checked.sources()[0].heard, nullptr);
    EXPECT_EQ(checked.sources()[1].heard, nullptr);
    const CheckedHandOff unheard(made.handOff, made.file);
    EXPECT_FALSE(unheard.hasSound());
    EXPECT_EQ(unheard.sources()[0].heard, nullptr);
}

}  // namespace
}  // namespace trellant::check
