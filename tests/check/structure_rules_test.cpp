// SPDX-License-Identifier: Apache-2.0
// Rules about the file, its losses, its tracks and its names.
#include "sound_hand_off.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

namespace trellant::check {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Loss = AAFUnsupportedFeature::Severity;

TEST(LossRules, TellLossesBySeverityAndEffectsApart) {
    SoundHandOff dropped;
    dropped.addLoss(LossKind::clipSourceMissing, Loss::informational);
    EXPECT_THAT(dropped.broken(), ElementsAre("loss-dropped 1"));
    const Finding finding = dropped.findings("loss-dropped").at(0);
    EXPECT_EQ(finding.sentence,
              "Something is gone. Replace it by plain clips in the exporting session.");
    EXPECT_EQ(finding.track, "Dialog");
    EXPECT_EQ(finding.clip, "Take 1");
    EXPECT_EQ(finding.start, AAFRational(10));
    EXPECT_EQ(finding.objectPath, "CMOB[9]/slot[100]/SCLP[200]");
    SoundHandOff different;
    different.addLoss(LossKind::transitionAsCut, Loss::renderAffecting);
    EXPECT_THAT(different.broken(), ElementsAre("loss-sound 1"));
    for (const LossKind kind :
         {LossKind::effectNotRendered, LossKind::effectUnnamed, LossKind::effectWithoutInput}) {
        SoundHandOff effect;
        effect.addLoss(kind, Loss::renderAffecting);
        EXPECT_THAT(effect.broken(), ElementsAre("effects 1"));
    }
}

TEST(Findings, NameAClipWithoutANameByItsMasterMob) {
    SoundHandOff made;
    made.handOff.masterMobs = {{.mobID = "m", .name = "Anna"}};
    made.handOff.masterMobOfEvents = {0, -1};
    made.handOff.timeline.events[0].clipName.reset();
    made.handOff.timeline.events[0].clipMuted = true;
    const Finding finding = made.findings("muted").at(0);
    EXPECT_EQ(finding.clip, "Anna");
    EXPECT_TRUE(finding.isClipNamedByMasterMob);
    EXPECT_THAT(finding.sentence, ::testing::HasSubstr("lip \"Anna\" on track \"Dialog\""));
    // What a profile accepts is told by the name that is shown.
    const Profile accepting = readProfile(
        R"({"profileVersion":1,"extends":"post",
            "accept":[{"rule":"muted","clip":"An*","reason":"wanted"}]})",
        "house", [](const std::string&) { return std::string(); });
    EXPECT_THAT(made.broken(accepting), IsEmpty());
}

TEST(Findings, OfALossKeepTheNameThatTheLossGives) {
    SoundHandOff made;
    made.addLoss(LossKind::clipSourceMissing, Loss::informational);
    EXPECT_FALSE(made.findings("loss-dropped").at(0).isClipNamedByMasterMob);
    made.handOff.losses[0].isClipNamedByMasterMob = true;
    EXPECT_TRUE(made.findings("loss-dropped").at(0).isClipNamedByMasterMob);
}

TEST(Effects, AreTheirRenderedResultsToo) {
    SoundHandOff made;
    made.handOff.contents = AAFWorkerExtensions::Contents{.renderedEffects = 1};
    EXPECT_THAT(made.broken(), ElementsAre("effects 1"));
    EXPECT_EQ(made.findings("effects").at(0).found.text, "rendered");
}

TEST(Nesting, IsAGroupWithinATrack) {
    SoundHandOff made;
    made.handOff.contents = AAFWorkerExtensions::Contents{.nestedGroups = 2};
    EXPECT_THAT(made.broken(), ElementsAre("nesting 1"));
    EXPECT_EQ(made.findings("nesting").at(0).found.number, AAFRational(2));
}

TEST(OmfVersion, IsToldOfAFileThatWasNotRead) {
    const Verdict verdict =
        verdictOfUnread({.name = "old.omf", .bytes = 5, .objectModel = 1}, *builtInProfile("post"));
    EXPECT_EQ(verdict.count(Severity::error), 1U);
    for (const RuleVerdict& rule : verdict.rules) {
        EXPECT_EQ(rule.wasLooked, rule.rule->needs == RuleNeeds::file) << rule.rule->id;
        EXPECT_EQ(rule.count, rule.rule->id == "omf-version" ? 1U : 0U) << rule.rule->id;
    }
}

TEST(FileSize, IsFromTheLimitOn) {
    SoundHandOff made;
    made.file.bytes = 2'147'483'647;
    EXPECT_THAT(made.broken(), IsEmpty());
    made.file.bytes = 2'147'483'648;
    EXPECT_THAT(made.broken(), ElementsAre("file-size 1"));
    EXPECT_THAT(made.broken(postWith("file-size", R"({"bytes":3000000000})")), IsEmpty());
    made.file.bytes = UINT64_MAX;
    EXPECT_THAT(made.broken(), ElementsAre("file-size 1"));
}

TEST(FileSize, IsANameOfAPart) {
    for (const char* const name :
         {"mix_part2.omf", "mix part 1.omf", "PART-3.omf", "mix 2of3.omf", "mix 2 of 3.omf"}) {
        SoundHandOff made;
        made.file.name = name;
        EXPECT_THAT(made.broken(), ElementsAre("file-size 1")) << name;
    }
    for (const char* const name : {"party1.omf", "mix part.omf", "rampart 2.omf", "office 2.omf",
                                   "day of 3.omf", "2 offers.omf", "of.omf", "part"}) {
        SoundHandOff made;
        made.file.name = name;
        EXPECT_THAT(made.broken(), IsEmpty()) << name;
    }
}

TEST(Compositions, AreMoreThanOne) {
    SoundHandOff made;
    made.handOff.compositions.push_back({.object = 12, .name = "Scene 13"});
    EXPECT_THAT(made.broken(), ElementsAre("compositions 1"));
    EXPECT_EQ(
        made.findings("compositions").at(0).sentence,
        "The file holds 2 compositions, and \"Scene 12\" is the one that is read: export each "
        "sequence to a file of its own.");
}

TEST(TrackNames, AreThereAndDiffer) {
    SoundHandOff made;
    made.handOff.timeline.tracks[0].name.reset();
    EXPECT_THAT(made.broken(), ElementsAre("track-names 1"));
    EXPECT_EQ(made.findings("track-names").at(0).sentence,
              "Track 1 has no name: name it by what is on it.");
    made.handOff.timeline.tracks[0].name = "";
    EXPECT_THAT(made.broken(), ElementsAre("track-names 1"));
    made.handOff.timeline.tracks[0].name = "Effects";
    EXPECT_THAT(made.broken(), ElementsAre("track-names 1"));
    EXPECT_EQ(made.findings("track-names").at(0).trackNumber, 2);
    made.handOff.timeline.tracks[0].name = "effects";
    EXPECT_THAT(made.broken(), IsEmpty());
}

TEST(TrackNames, FitAPatternOfTheProfile) {
    const SoundHandOff made;
    EXPECT_THAT(made.broken(postWith("track-names", R"({"patterns":["Dia*","E?fects"]})")),
                IsEmpty());
    EXPECT_THAT(made.broken(postWith("track-names", R"({"patterns":["Dia*"]})")),
                ElementsAre("track-names 1"));
}

TEST(Muted, AreTracksAndClips) {
    SoundHandOff made;
    made.handOff.timeline.tracks[0].muted = true;
    made.handOff.timeline.events[1].clipMuted = true;
    EXPECT_THAT(made.broken(), ElementsAre("muted 2"));
    EXPECT_EQ(
        made.findings("muted").at(0).sentence,
        "Track \"Dialog\" is muted, which other programs may not keep: remove it, or say that "
        "it is an alternative.");
}

// Twelve decibels are a factor of 10^(12/20).
TEST(GainRange, IsAboveTheLimitOrSilentAllAlong) {
    const double limit = std::pow(10.0, 0.6);
    SoundHandOff made;
    made.handOff.timeline.events[0].fixedClipGain = limit;
    EXPECT_THAT(made.broken(), IsEmpty());
    made.handOff.timeline.events[0].fixedClipGain = limit * 1.001;
    EXPECT_THAT(made.broken(), ElementsAre("gain-range 1"));
    // An inverted signal is as loud.
    made.handOff.timeline.events[0].fixedClipGain = -limit * 1.001;
    EXPECT_THAT(made.broken(), ElementsAre("gain-range 1"));
    made.handOff.timeline.events[0].fixedClipGain = 0;
    EXPECT_THAT(made.broken(), IsEmpty());
}

TEST(GainRange, LooksAtTheLoudestPointOfAnAutomation) {
    SoundHandOff made;
    AAFAutomationEnvelope envelope;
    envelope.points = {{AAFRational(0), 0}, {AAFRational(1), 0}};
    made.handOff.timeline.events[0].clipGainAutomation = envelope;
    EXPECT_THAT(made.broken(), ElementsAre("gain-range 1"));
    envelope.points[1].value = 1;
    made.handOff.timeline.events[0].clipGainAutomation = envelope;
    EXPECT_THAT(made.broken(), IsEmpty());
    envelope.points[1].value = 5;
    made.handOff.timeline.tracks[0].gainAutomation = envelope;
    EXPECT_THAT(made.broken(), ElementsAre("gain-range 1"));
}

TEST(NamesOdd, HoldControlsWereReadWronglyOrAreLong) {
    SoundHandOff made;
    const auto named = [&made](const std::string& name) {
        made.handOff.timeline.events[0].clipName = name;
        return made.broken();
    };
    EXPECT_THAT(named(std::string(31, 'a')), IsEmpty());
    EXPECT_THAT(named(std::string(32, 'a')), ElementsAre("names-odd 1"));
    // Sixteen characters of two units each; the same in bytes is no fault by itself.
    std::string notes;
    std::string umlauts;
    for (int i = 0; i < 16; ++i) {
        notes += "\xF0\x9D\x84\x9E";
        umlauts += "\xC3\xA4";
    }
    EXPECT_THAT(named(notes), ElementsAre("names-odd 1"));
    EXPECT_THAT(named(umlauts), IsEmpty());
    EXPECT_THAT(named("a\tb"), ElementsAre("names-odd 1"));
    // "Cafe" with an accent, read as Latin 1.
    EXPECT_THAT(named("Caf\xC3\x83\xC2\xA9"), ElementsAre("names-odd 1"));
    EXPECT_THAT(named("Caf\xC3\xA9"), IsEmpty());
    EXPECT_THAT(named("Caf\xEF\xBF\xBD"), ElementsAre("names-odd 1"));
}

}  // namespace
}  // namespace trellant::check
