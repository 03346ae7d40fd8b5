// SPDX-License-Identifier: Apache-2.0
// Profiles: what they say, and what is said to who writes one that makes no sense.
#include "sound_hand_off.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <string>

namespace trellant::check {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::string textOf(const std::map<std::string, std::string>& others, const std::string& name) {
    const auto found = others.find(name);
    if (found == others.end()) {
        throw ProfileError("there is no " + name);
    }
    return found->second;
}

Profile read(const std::string& text, const std::map<std::string, std::string>& others = {}) {
    return readProfile(text, "house.json",
                       [&others](const std::string& name) { return textOf(others, name); });
}

/// What is said of a text that is no profile; empty where it is one.
std::string faultOf(const std::string& text) {
    try {
        static_cast<void>(read(text));
    } catch (const ProfileError& error) {
        return error.what();
    }
    return "";
}

std::string faultOfRules(const std::string& rules) {
    return faultOf(R"({"profileVersion":1,"rules":)" + rules + "}");
}

std::string faultOfEntry(const std::string& entry) {
    return faultOf(R"({"profileVersion":1,"accept":[)" + entry + "]}");
}

const RuleSettings& settingsOf(const Profile& profile, std::string_view rule) {
    const auto rules = allRules();
    for (std::size_t i = 0; i < rules.size(); ++i) {
        if (rules[i]->id == rule) {
            return profile.settings.at(i);
        }
    }
    throw std::out_of_range("no such rule");
}

TEST(Profile, WithoutRulesHasTheDefaults) {
    const Profile profile = read(R"({"profileVersion":1})");
    EXPECT_EQ(profile.name, "house.json");
    EXPECT_FALSE(profile.audio);
    EXPECT_EQ(profile.settings.size(), allRules().size());
    EXPECT_EQ(settingsOf(profile, "handles").number("seconds"), AAFRational(5));
    EXPECT_EQ(settingsOf(profile, "handles").severity, Severity::warning);
    EXPECT_EQ(settingsOf(profile, "start-timecode").text("timecode"), "01:00:00:00");
    EXPECT_THAT(settingsOf(profile, "depth-expected").numbers("depths"),
                ElementsAre(AAFRational(16), AAFRational(24)));
    EXPECT_THAT(settingsOf(profile, "track-names").texts("patterns"), ElementsAre("*"));
    EXPECT_EQ(settingsOf(profile, "media-linked").text("media"), "any");
}

TEST(Profile, SaysWhatItChangesAndKeepsTheRest) {
    const Profile profile = read(R"({"$schema":"profile.schema.json","profileVersion":1.0,
        "name":"film 24","extends":"film","audio":true,
        "rules":{"handles":{"severity":"error","seconds":2.5},"overlap":{"severity":"off"}}})");
    EXPECT_EQ(profile.name, "film 24");
    EXPECT_TRUE(profile.audio);
    EXPECT_EQ(settingsOf(profile, "handles").number("seconds"), AAFRational(5, 2));
    EXPECT_EQ(settingsOf(profile, "handles").severity, Severity::error);
    EXPECT_FALSE(settingsOf(profile, "overlap").isOn);
    // Of the profile that it extends, and of the one that this extends.
    EXPECT_THAT(settingsOf(profile, "depth-expected").numbers("depths"),
                ElementsAre(AAFRational(24)));
    EXPECT_EQ(settingsOf(profile, "rate-expected").severity, Severity::error);
}

TEST(Profile, ExtendsOthersByNameAndKeepsWhatTheyAccept) {
    const Profile profile = read(R"({"profileVersion":1,"extends":"base.json",
                 "accept":[{"rule":"handles","reason":"mine"}]})",
                                 {{"base.json", R"({"profileVersion":1,"extends":"music",
                 "rules":{"overlap":{"severity":"info"}},
                 "accept":[{"rule":"muted","reason":"theirs"}]})"}});
    EXPECT_EQ(settingsOf(profile, "overlap").severity, Severity::info);
    EXPECT_FALSE(settingsOf(profile, "handles").isOn);
    ASSERT_EQ(profile.accept.size(), 2U);
    EXPECT_EQ(profile.accept[0].reason, "theirs");
    EXPECT_EQ(profile.accept[1].reason, "mine");
}

TEST(Profile, ThoseThatExtendEachOtherAreRefused) {
    const std::map<std::string, std::string> others{{"a", R"({"profileVersion":1,"extends":"b"})"},
                                                    {"b", R"({"profileVersion":1,"extends":"a"})"}};
    try {
        static_cast<void>(read(R"({"profileVersion":1,"extends":"a"})", others));
        FAIL() << "nothing to begin with";
    } catch (const ProfileError& error) {
        EXPECT_STREQ(error.what(),
                     "profile \"b\": more than 8 profiles extend one another; do two of them "
                     "extend each other?");
    }
}

TEST(Profile, MistypedRulesAndKeysNameTheNearestKnownOne) {
    EXPECT_EQ(faultOfRules(R"({"handels":{}})"),
              "profile \"house.json\": rules.handels: there is no such rule; did you mean "
              "\"handles\"?");
    EXPECT_EQ(
        faultOfRules(R"({"handles":{"secnds":8}})"),
        "profile \"house.json\": rules.handles.secnds: the rule has no such key; did you mean "
        "\"seconds\"?");
    EXPECT_EQ(faultOfRules(R"({"handles":{"x":8}})"),
              "profile \"house.json\": rules.handles.x: the rule has no such key; there are "
              "severity, seconds");
    EXPECT_EQ(faultOf(R"({"profileVersion":1,"rule":{}})"),
              "profile \"house.json\": rule: there is no such key; did you mean \"rules\"?");
    EXPECT_EQ(faultOfEntry(R"({"rule":"handles","reson":"r"})"),
              "profile \"house.json\": accept[0].reson: there is no such key; did you mean "
              "\"reason\"?");
    EXPECT_EQ(faultOfEntry(R"({"rule":"overlaps","reason":"r"})"),
              "profile \"house.json\": accept[0].rule: there is no such rule; did you mean "
              "\"overlap\"?");
}

TEST(Profile, ValuesOfAnotherKindAreRefused) {
    EXPECT_EQ(
        faultOfRules(R"({"handles":{"severity":"eror"}})"),
        "profile \"house.json\": rules.handles.severity: \"eror\" is no severity; did you mean "
        "\"error\"?");
    EXPECT_EQ(faultOfRules(R"({"handles":{"seconds":"8"}})"),
              "profile \"house.json\": rules.handles.seconds is a number, not a string");
    EXPECT_EQ(faultOfRules(R"({"handles":{"seconds":-1}})"),
              "profile \"house.json\": rules.handles.seconds is a number from 0 to 10 to the power "
              "of 15");
    EXPECT_EQ(faultOfRules(R"({"rate-expected":{"rates":48000}})"),
              "profile \"house.json\": rules.rate-expected.rates is a list of numbers, with one or "
              "more, not a number");
    EXPECT_EQ(faultOfRules(R"({"rate-expected":{"rates":[]}})"),
              "profile \"house.json\": rules.rate-expected.rates is a list of numbers, with one or "
              "more, not null");
    EXPECT_EQ(faultOfRules(R"({"track-names":{"patterns":[1]}})"),
              "profile \"house.json\": rules.track-names.patterns is a text, not a number");
    EXPECT_EQ(
        faultOfRules(R"({"start-timecode":{"timecode":"1:00:00:00"}})"),
        "profile \"house.json\": rules.start-timecode.timecode: \"1:00:00:00\" is no timecode; "
        "one is written as 01:00:00:00");
    EXPECT_EQ(faultOfRules(R"({"media-linked":{"media":"embeded"}})"),
              "profile \"house.json\": rules.media-linked.media: \"embeded\" is none of its words; "
              "did you mean \"embedded\"?");
    EXPECT_EQ(faultOfRules("[1]"), "profile \"house.json\": rules is an object, not an array");
    EXPECT_EQ(faultOf(R"({"profileVersion":1,"audio":1})"),
              "profile \"house.json\": audio is true or false, not a number");
}

TEST(Profile, SaysItsVersionAndReasons) {
    EXPECT_EQ(faultOf("{}"), "profile \"house.json\": profileVersion is missing; it is 1");
    EXPECT_EQ(
        faultOf(R"({"profileVersion":2})"),
        "profile \"house.json\": profileVersion is 1 in every profile that this version reads");
    EXPECT_EQ(faultOfEntry(R"({"rule":"handles"})"),
              "profile \"house.json\": accept[0].reason is missing: whoever reads the verdict asks "
              "why");
    EXPECT_EQ(faultOfEntry(R"({"reason":"r"})"),
              "profile \"house.json\": accept[0].rule is missing");
    EXPECT_EQ(faultOf("[1]"), "profile \"house.json\": the document is an object, not an array");
    EXPECT_NE(faultOf("{").find("profile \"house.json\": "), std::string::npos);
}

TEST(Profile, NoKeyStandsTwice) {
    EXPECT_EQ(faultOf(R"({"profileVersion":1,"name":"a","name":"b"})"),
              "profile \"house.json\": name stands there twice");
    EXPECT_EQ(faultOfRules(R"({"handles":{},"handles":{}})"),
              "profile \"house.json\": rules.handles stands there twice");
    EXPECT_EQ(faultOfRules(R"({"handles":{"seconds":1,"seconds":2}})"),
              "profile \"house.json\": rules.handles.seconds stands there twice");
}

TEST(Profile, ListsAreBounded) {
    std::string entries;
    for (int i = 0; i < 1'001; ++i) {
        entries += std::string(i == 0 ? "" : ",") + R"({"rule":"handles","reason":"r"})";
    }
    EXPECT_EQ(faultOfEntry(entries), "profile \"house.json\": accept has more than 1000 entries");
    EXPECT_EQ(faultOf(R"({"profileVersion":1,"name":")" + std::string(1'025, 'a') + "\"}"),
              "profile \"house.json\": name is longer than 1024 bytes");
}

TEST(Profile, AnyTextIsReadOrRefusedAndNothingElse) {
    const std::string whole =
        R"({"profileVersion":1,"name":"n","extends":"film","audio":false,"rules":{"handles":)"
        R"({"severity":"info","seconds":1.5},"rate-expected":{"rates":[1,2]},"track-names":)"
        R"({"patterns":["a*"]},"start-timecode":{"timecode":"01:00:00:00"}},)"
        R"("accept":[{"rule":"muted","track":"t","reason":"r"}]})";
    EXPECT_EQ(faultOf(whole), "");
    for (std::size_t length = 0; length < whole.size(); ++length) {
        EXPECT_NE(faultOf(whole.substr(0, length)), "") << length;
    }
    std::size_t refused = 0;
    for (std::size_t at = 0; at < whole.size(); ++at) {
        for (const char other : {'\0', '"', '{', '[', '9', '\xFF'}) {
            std::string changed = whole;
            changed[at] = other;
            refused += faultOf(changed).empty() ? 0U : 1U;
        }
    }
    // Inside of texts some changes are no faults.
    EXPECT_GT(refused, whole.size());
}

TEST(BuiltInProfiles, AreReadAndDisagree) {
    ASSERT_EQ(builtInProfiles().size(), 5U);
    EXPECT_EQ(builtInProfile("pos"), std::nullopt);
    // One hand-off: 44.1 kHz with 16 bits, from 01:00:00:00 at 25 fps, handles of 6 s and a muted
    // track.
    SoundHandOff made;
    for (AAFSourceEssence& essence : made.handOff.timeline.essences) {
        essence.sampleRate = AAFRational(44'100);
        essence.bitDepth = 16;
    }
    for (AAFClipEvent& event : made.handOff.timeline.events) {
        event.sourceStartSample = 6 * 44'100;
    }
    made.handOff.timeline.tracks[0].muted = true;
    const auto by = [&made](const char* name) { return made.broken(*builtInProfile(name)); };
    EXPECT_THAT(by("post"), ElementsAre("rate-expected 2", "muted 1"));
    EXPECT_THAT(by("film"), ElementsAre("rate-expected 2", "depth-expected 2", "handles 2",
                                        "frame-rate 1", "muted 1"));
    EXPECT_THAT(by("broadcast-25"), ElementsAre("rate-expected 2", "start-timecode 1", "muted 1"));
    EXPECT_THAT(by("music"), ElementsAre("muted 1"));
    EXPECT_THAT(by("archive"), IsEmpty());
}

}  // namespace
}  // namespace trellant::check
