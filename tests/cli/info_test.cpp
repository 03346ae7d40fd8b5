// What the summary and the lists tell of odd timelines: nameless tracks, silent clips, repairs,
// sources that are not there.
#include "look/info.h"

#include "look/rows.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace trellant::cli {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

/// One muted track without a name, one clip with varying gain of a file that is not there.
Inspection odd() {
    Inspection inspection;
    const AAFTimecodeRate rate = AAFTimecodeRate::fps25();
    AAFTimeline& timeline = inspection.timeline;
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
    return inspection;
}

TEST(ListClips, TellPeopleWhatIsOddAboutAClip) {
    const Table table = tableForPeople(listClips(odd()));
    std::vector<std::string> titles;
    for (const Column& column : table.columns) {
        titles.push_back(column.title);
    }
    EXPECT_THAT(titles,
                ElementsAre("Track", "In", "Out", "Clip", "Audio file", "Ch.", "Gain dB", "Heard"));
    ASSERT_EQ(table.rows.size(), 1U);
    EXPECT_THAT(table.rows[0], ElementsAre("track 2", "01:00:00:00", "01:00:01:00", "-3",
                                           "missing: Steps.wav", "2", "0.00 ~", "no"));
}

TEST(ListClips, TellProgramsNameAndNumberApartAndEveryGainPoint) {
    EXPECT_THAT(jsonLines(listClips(odd())),
                AllOf(HasSubstr("{\"trackNumber\":2,"), HasSubstr("\"source\":\"Steps.wav\","),
                      HasSubstr("\"automationPoints\":3,\"gainPoints\":\"0:1 1\\/2:0.5 1:1\""),
                      HasSubstr("\"audible\":false")));
}

TEST(ListTracks, ATrackWithoutNameGoesByItsNumberForPeopleOnly) {
    EXPECT_THAT(tableForPeople(listTracks(odd())).rows[0],
                ElementsAre("2", "track 2", "1", "01:00:01:00", "0.00", "yes", "no", "0"));
    EXPECT_THAT(jsonLines(listTracks(odd())), Not(HasSubstr("\"name\"")));
}

TEST(ListSources, SeveralFilesOfOneNameAreAState) {
    Inspection inspection = odd();
    inspection.ambiguousEssences = {"e"};
    EXPECT_THAT(tableForPeople(listSources(inspection)).rows[0],
                ElementsAre("Steps.wav", "several candidates", "48000", "2", "1"));
    EXPECT_THAT(infoScreen("a.omf", inspection, false),
                HasSubstr("  Several files bear one name: trellant extract lists them\n"));
}

TEST(Info, CountsWhatWasSetRight) {
    Inspection inspection = odd();
    EXPECT_THAT(infoScreen("a.omf", inspection, false), Not(HasSubstr("Repaired")));
    inspection.changes = {{.code = "code",
                           .object = "event[0]",
                           .track = "Dialog",
                           .clip = "Anna",
                           .start = AAFRational(1),
                           .what = "the gain is left out"}};
    EXPECT_THAT(infoScreen("a.omf", inspection, false),
                HasSubstr("  Repaired      1 thing was odd and set right (told above)\n"));
    EXPECT_THAT(infoLine("a.omf", inspection),
                HasSubstr("\"changes\":[{\"code\":\"code\",\"object\":\"event[0]\",\"what\":"
                          "\"the gain is left out\",\"track\":\"Dialog\",\"clip\":\"Anna\","
                          "\"timecode\":\"01:00:01:00\"}]"));
}

TEST(Info, NamesCannotTurnTheDirectionOfALine) {
    Inspection inspection = odd();
    inspection.timeline.compositionName = "a\u202eb";
    inspection.compositions = {{.name = "x", .isRead = true}, {.name = "c\u2066d"}};
    EXPECT_THAT(infoScreen("a\u202e.omf", inspection, false),
                AllOf(HasSubstr("a\uFFFDb"), HasSubstr("not read: c\uFFFDd"),
                      Not(HasSubstr("\u202e")), Not(HasSubstr("\u2066"))));
}

TEST(Info, AdviceIsSafeToPaste) {
    Inspection inspection = odd();
    inspection.timeline.unsupportedFeatures = {{.description = "lost"}};
    inspection.losses = {{}};
    EXPECT_THAT(infoScreen("-$(x).omf", inspection, false),
                HasSubstr("trellant list losses './-$(x).omf'\n"));
}

TEST(Info, TellsProgramsBothRatesAndTheirDrift) {
    Inspection inspection = odd();
    EXPECT_THAT(infoLine("a.omf", inspection),
                AllOf(HasSubstr("\"editRate\":\"25\",\"timecodeRate\":\"25\",\"tracks\""),
                      Not(HasSubstr("drift"))));
    // 3600 s * (1 - 50/25) = -3600 s
    inspection.timeline.clock.editRate = AAFRational(50);
    EXPECT_THAT(infoLine("a.omf", inspection),
                HasSubstr("\"editRate\":\"50\",\"timecodeRate\":\"25\","
                          "\"driftSecondsPerHour\":-3600,"));
}

}  // namespace
}  // namespace trellant::cli
