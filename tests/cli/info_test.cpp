// SPDX-License-Identifier: Apache-2.0
// What the summary and the lists tell of unusual timelines: nameless tracks, silent clips, repairs,
// sources that are not there.
#include "cell_list.h"
#include "look/info_output.h"
#include "look/lists.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace trellant::cli {
namespace {

using trellant::testing::jsonOf;

using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;

/// One muted track without a name, one clip with varying gain of a file that is not there.
HandOff unusual() {
    HandOff handOff;
    const AAFTimecodeRate rate = AAFTimecodeRate::fps25();
    AAFTimeline& timeline = handOff.timeline;
    timeline.clock = {rate.exactRate, rate, AAFTimecodeAddress(1, 0, 0, 0, rate)};
    AAFTrackState track;
    track.id = "t";
    track.index = 1;
    track.muted = true;
    timeline.tracks.push_back(track);
    AAFSourceEssence essence;
    essence.id = "e";
    essence.sourceName = "Steps.wav";
    essence.sampleRate = AAFRational(48000);
    essence.channelCount = 2;
    timeline.essences.push_back(essence);
    AAFClipEvent clip;
    clip.id = "c";
    clip.trackID = "t";
    clip.essenceID = "e";
    clip.clipName = "-3";
    clip.duration = AAFRational(1);
    clip.fixedClipGain = 1;
    clip.sourceChannel = 1;
    clip.clipGainAutomation = AAFAutomationEnvelope{
        .points = {{AAFRational(0), 1}, {AAFRational(1, 2), 0.5}, {AAFRational(1), 1}}};
    timeline.events.push_back(clip);
    return handOff;
}

TEST(ListClips, TellPeopleWhatIsUnusualAboutAClip) {
    const Table table = tableForPeople(*listOfClips(unusual()));
    std::vector<std::string> titles;
    for (const TableColumn& column : table.columns) {
        titles.push_back(column.title);
    }
    EXPECT_THAT(titles, ElementsAre("Track", "In", "Out", "Clip", "Audio file", "Ch.", "Gain dB",
                                    "Audible"));
    ASSERT_EQ(table.rows.size(), 1U);
    EXPECT_THAT(table.rows[0], ElementsAre("track 2", "01:00:00:00", "01:00:01:00", "-3",
                                           "missing: Steps.wav", "2", "0.00 ~", "no"));
}

TEST(ListClips, TellProgramsNameAndNumberApartAndEveryGainPoint) {
    EXPECT_THAT(jsonOf(*listOfClips(unusual())),
                AllOf(HasSubstr("{\"file\":\"a.omf\",\"trackNumber\":2,"),
                      HasSubstr("\"source\":\"Steps.wav\","),
                      HasSubstr("\"automationPoints\":3,\"gainPoints\":["
                                "{\"place\":\"0\",\"gain\":1},"
                                "{\"place\":\"1\\/2\",\"gain\":0.5},"
                                "{\"place\":\"1\",\"gain\":1}]"),
                      HasSubstr("\"audible\":false")));
}

TEST(ListTracks, ATrackWithoutNameGoesByItsNumberForPeopleOnly) {
    EXPECT_THAT(tableForPeople(*listOfTracks(unusual())).rows[0],
                ElementsAre("2", "track 2", "1", "01:00:01:00", "0.00", "yes", "no", "0"));
    EXPECT_THAT(jsonOf(*listOfTracks(unusual())), Not(HasSubstr("\"name\"")));
}

TEST(ListSources, SeveralFilesOfOneNameAreAState) {
    HandOff handOff = unusual();
    handOff.openChoices = {
        .bySource = {
            {"e",
             {.candidates = {{.path = "/a/Steps.wav"}, {.path = "/b/Steps.wav"}}, .files = 2}}}};
    EXPECT_THAT(tableForPeople(*listOfSources(handOff)).rows[0],
                ElementsAre("Steps.wav", "several candidates", "48000", "2", "1"));
    EXPECT_THAT(infoScreen("a.omf", handOff, false),
                HasSubstr("  Several files bear one name: trellant extract lists them\n"));
}

TEST(ListSources, FilesOfWhichNoneFitsAreAState) {
    HandOff handOff = unusual();
    handOff.openChoices = {
        .bySource = {
            {"e",
             {.candidates = {{.path = "/a/Steps.wav", .misfit = "another rate"}}, .files = 1}}}};
    EXPECT_THAT(tableForPeople(*listOfSources(handOff)).rows[0],
                ElementsAre("Steps.wav", "does not fit", "48000", "2", "1"));
    EXPECT_THAT(
        infoScreen("a.omf", handOff, false),
        HasSubstr("  Audio files do not fit what the clips need: trellant extract says why\n"));
}

TEST(ListSources, ProgramsGetOneWordAState) {
    HandOff handOff = unusual();
    EXPECT_THAT(jsonOf(*listOfSources(handOff)), HasSubstr("\"state\":\"missing\""));
    handOff.openChoices = {
        .bySource = {
            {"e",
             {.candidates = {{.path = "/a/Steps.wav"}, {.path = "/b/Steps.wav"}}, .files = 2}}}};
    EXPECT_THAT(jsonOf(*listOfSources(handOff)), HasSubstr("\"state\":\"severalCandidates\""));
    EXPECT_THAT(jsonOf(*listOfClips(handOff)), HasSubstr("\"sourceState\":\"severalCandidates\""));
    handOff.openChoices = {
        .bySource = {
            {"e",
             {.candidates = {{.path = "/a/Steps.wav", .misfit = "another rate"}}, .files = 1}}}};
    EXPECT_THAT(jsonOf(*listOfSources(handOff)), HasSubstr("\"state\":\"misfit\""));
}

TEST(ListClips, FadesHaveExactLengths) {
    HandOff handOff = unusual();
    AAFFade fade;
    fade.duration = AAFRational(1001, 30000);
    handOff.timeline.events[0].fadeOut = fade;
    EXPECT_THAT(
        jsonOf(*listOfClips(handOff)),
        AllOf(HasSubstr("\"fadeOutSecondsExact\":\"1001\\/30000\""), Not(HasSubstr("fadeIn"))));
}

TEST(ListClips, LossesAreACountAndTheirNumbers) {
    HandOff handOff = unusual();
    handOff.losses = {{.trackID = "t", .start = AAFRational(0), .duration = AAFRational(1, 2)},
                      {.trackID = "other", .start = AAFRational(0), .duration = AAFRational(1)},
                      {.trackID = "t", .start = AAFRational(1, 2), .duration = AAFRational(9)}};
    EXPECT_THAT(jsonOf(*listOfClips(handOff)), HasSubstr("\"losses\":2,\"lossNumbers\":[1,3],"));
}

TEST(Info, CountsWhatWasSetRight) {
    HandOff handOff = unusual();
    EXPECT_THAT(infoScreen("a.omf", handOff, false), Not(HasSubstr("Repaired")));
    handOff.changes = {{.code = "code",
                        .object = "event[0]",
                        .track = "Dialog",
                        .clip = "Anna",
                        .start = AAFRational(1),
                        .what = "the gain is left out"}};
    EXPECT_THAT(infoScreen("a.omf", handOff, false),
                HasSubstr("  Repaired      1 thing was set right (see above)\n"));
    EXPECT_THAT(infoLine("a.omf", handOff),
                HasSubstr("\"changes\":[{\"code\":\"code\",\"object\":\"event[0]\",\"what\":"
                          "\"the gain is left out\",\"track\":\"Dialog\",\"clip\":\"Anna\","
                          "\"timecode\":\"01:00:01:00\",\"startSeconds\":1,"
                          "\"startSecondsExact\":\"1\"}]"));
}

TEST(Info, NamesCannotTurnTheDirectionOfALine) {
    HandOff handOff = unusual();
    handOff.timeline.compositionName = "a\u202eb";
    handOff.compositions = {{.name = "x", .isRead = true}, {.name = "c\u2066d"}};
    EXPECT_THAT(infoScreen("a\u202e.omf", handOff, false),
                AllOf(HasSubstr("a\uFFFDb"), HasSubstr("not read: c\uFFFDd"),
                      Not(HasSubstr("\u202e")), Not(HasSubstr("\u2066"))));
}

TEST(Info, AdviceIsSafeToPaste) {
    HandOff handOff = unusual();
    handOff.timeline.unsupportedFeatures = {{.description = "lost"}};
    handOff.losses = {{}};
    EXPECT_THAT(infoScreen("-$(x).omf", handOff, false),
                HasSubstr("trellant list losses './-$(x).omf'\n"));
}

TEST(Info, TellsProgramsBothRatesAndTheirDrift) {
    HandOff handOff = unusual();
    EXPECT_THAT(infoLine("a.omf", handOff),
                AllOf(HasSubstr("\"editRate\":\"25\",\"timecodeRate\":\"25\",\"tracks\""),
                      Not(HasSubstr("drift"))));
    // 3600 s * (1 - 50/25) = -3600 s
    handOff.timeline.clock.editRate = AAFRational(50);
    EXPECT_THAT(infoLine("a.omf", handOff), HasSubstr("\"editRate\":\"50\",\"timecodeRate\":\"25\","
                                                      "\"driftSecondsPerHour\":-3600,"));
}

}  // namespace
}  // namespace trellant::cli
