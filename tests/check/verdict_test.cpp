// SPDX-License-Identifier: Apache-2.0
// Verdicts: what counts, what is accepted, how much is kept.
#include "sound_hand_off.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

namespace trellant::check {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

const ProfileFinder noOther = [](const std::string& name) -> std::string {
    throw ProfileError("there is no " + name);
};

Profile accepting(const std::string& entries) {
    return readProfile(R"({"profileVersion":1,"extends":"post","accept":[)" + entries + "]}",
                       "house", noOther);
}

/// Two tracks whose clips have no handles at all.
SoundHandOff withoutHandles() {
    SoundHandOff made;
    for (AAFClipEvent& event : made.handOff.timeline.events) {
        event.sourceStartSample = 0;
    }
    return made;
}

const RuleVerdict& of(const Verdict& verdict, std::string_view rule) {
    for (const RuleVerdict& one : verdict.rules) {
        if (one.rule->id == rule) {
            return one;
        }
    }
    throw std::out_of_range("the rule is off");
}

TEST(Rules, HaveNamesOfTheirOwnAndSayEverything) {
    std::set<std::string_view> ids;
    for (const Rule* const rule : allRules()) {
        EXPECT_TRUE(ids.insert(rule->id).second) << rule->id;
        EXPECT_EQ(ruleNamed(rule->id), rule);
        for (const std::string_view text : {rule->what, rule->why, rule->source, rule->repair}) {
            EXPECT_TRUE(text.ends_with('.')) << rule->id << ": " << text;
        }
        EXPECT_FALSE(rule->title.empty());
        EXPECT_NE(rule->look, nullptr);
    }
    EXPECT_EQ(ruleNamed("handle"), nullptr);
    EXPECT_EQ(nearestRule("handle"), "handles");
    EXPECT_EQ(nearestRule("nothing-like-it"), "");
}

TEST(Verdict, CountsByWeightAndKnowsTheWorst) {
    SoundHandOff made = withoutHandles();
    made.handOff.timeline.tracks[0].muted = true;
    const Verdict verdict = made.verdict();
    EXPECT_EQ(verdict.profile, "post");
    EXPECT_EQ(verdict.count(Severity::error), 0U);
    EXPECT_EQ(verdict.count(Severity::warning), 2U);
    EXPECT_EQ(verdict.count(Severity::info), 1U);
    EXPECT_EQ(verdict.worst(), Severity::warning);
    EXPECT_EQ(SoundHandOff().verdict().worst(), std::nullopt);
}

TEST(Verdict, AcceptsWhatAProfileNamesAndSaysWhy) {
    const SoundHandOff made = withoutHandles();
    const Verdict verdict =
        made.verdict(accepting(R"({"rule":"handles","track":"Dia*","reason":"archive sound"})"));
    const RuleVerdict& handles = of(verdict, "handles");
    EXPECT_EQ(handles.count, 1U);
    EXPECT_EQ(handles.findings.at(0).track, "Effects");
    EXPECT_EQ(handles.acceptedCount, 1U);
    EXPECT_EQ(handles.accepted.at(0).track, "Dialog");
    EXPECT_EQ(handles.accepted.at(0).acceptedBecause, "archive sound");
    EXPECT_EQ(verdict.acceptedCount(), 1U);
    EXPECT_THAT(verdict.unmatched, IsEmpty());
}

TEST(Verdict, AllThatAnEntryNamesMustFit) {
    const SoundHandOff made = withoutHandles();
    for (const std::string entry :
         {R"({"rule":"handles","clip":"Take 1","reason":"r"})",
          R"({"rule":"handles","audioFile":"Voice.*","reason":"r"})",
          R"({"rule":"handles","file":"mix.*","track":"Dialog","clip":"Take ?","reason":"r"})"}) {
        EXPECT_THAT(made.broken(accepting(entry)), ElementsAre("handles 1")) << entry;
    }
    for (const std::string entry :
         {R"({"rule":"handles","track":"Dialog","clip":"Take 2","reason":"r"})",
          R"({"rule":"overlap","track":"Dialog","reason":"r"})"}) {
        const Verdict verdict = made.verdict(accepting(entry));
        EXPECT_EQ(of(verdict, "handles").count, 2U) << entry;
        EXPECT_EQ(verdict.unmatched.size(), 1U) << entry;
    }
}

TEST(Verdict, EntriesForOtherFilesAreNotToldAsUnused) {
    const SoundHandOff made = withoutHandles();
    const Verdict verdict =
        made.verdict(accepting(R"({"rule":"handles","file":"other.omf","reason":"r"})"));
    EXPECT_EQ(of(verdict, "handles").count, 2U);
    EXPECT_THAT(verdict.unmatched, IsEmpty());
}

TEST(Verdict, RulesThatAreOffSayNothing) {
    const SoundHandOff made = withoutHandles();
    const Verdict verdict = made.verdict(postWith("handles", R"({"severity":"off"})"));
    EXPECT_EQ(verdict.rules.size(), allRules().size() - 1);
    EXPECT_EQ(verdict.worst(), std::nullopt);
}

TEST(Verdict, KeepsAThousandFindingsOfARuleAndCountsAll) {
    SoundHandOff made;
    for (int i = 0; i < 1'500; ++i) {
        made.addClip("Dialog", "Voice.wav", AAFRational(100 + 4 * i), AAFRational(2))
            .sourceStartSample = 0;
    }
    const Verdict verdict = made.verdict();
    EXPECT_EQ(of(verdict, "handles").count, 1'500U);
    EXPECT_EQ(of(verdict, "handles").findings.size(), 1'000U);
}

TEST(Verdict, NamesFromStrangersCannotEndALine) {
    SoundHandOff made;
    made.handOff.timeline.events[0].clipName = "a\n\x1B[31m" + std::string(500, 'b');
    made.handOff.timeline.events[0].sourceStartSample = 0;
    const Finding finding = made.findings("handles").at(0);
    EXPECT_EQ(finding.sentence.find('\n'), std::string::npos);
    EXPECT_EQ(finding.sentence.find('\x1B'), std::string::npos);
    EXPECT_LT(finding.sentence.size(), 400U);
}

TEST(Verdict, OfAnEmptyHandOffIsNoFault) {
    const HandOff nothing;
    const CheckedHandOff checked(nothing, {.name = "empty.omf"});
    const Verdict verdict = verdictOf(checked, *builtInProfile("archive"));
    EXPECT_EQ(verdict.worst(), std::nullopt);
}

}  // namespace
}  // namespace trellant::check
