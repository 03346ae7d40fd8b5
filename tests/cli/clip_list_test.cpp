// SPDX-License-Identifier: Apache-2.0
// Every column of the list of clips, for people and for programs.
#include "cell_list.h"
#include "look/lists.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <string>

namespace trellant::testing {
namespace {

using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

/// Ten seconds of a stereo file on a named track, from two seconds on the timeline, at 25 frames a
/// second from one hour.
HandOff oneClip() {
    HandOff handOff;
    const AAFTimecodeRate rate = AAFTimecodeRate::fps25();
    AAFTimeline& timeline = handOff.timeline;
    timeline.clock = {rate.exactRate, rate, AAFTimecodeAddress(1, 0, 0, 0, rate)};
    AAFTrackState track;
    track.id = "track-1";
    track.index = 2;
    track.name = "Dialog";
    track.fixedPan = 0.25;
    timeline.tracks.push_back(track);
    AAFSourceEssence essence;
    essence.id = "essence-1";
    essence.sourceName = "Voice.wav";
    essence.embedded = true;
    essence.sampleRate = AAFRational(48'000);
    essence.channelCount = 2;
    timeline.essences.push_back(essence);
    AAFClipEvent clip;
    clip.id = "clip-1";
    clip.trackID = "track-1";
    clip.essenceID = "essence-1";
    clip.clipName = "Anna";
    clip.timelineStart = AAFRational(2);
    clip.duration = AAFRational(10);
    clip.sourceStartSample = 4'800;
    clip.sourceChannel = 1;
    clip.fixedClipGain = 0.5;
    timeline.events.push_back(clip);
    return handOff;
}

std::string jsonOfClips(const HandOff& handOff) {
    return jsonOf(*cli::listOfClips(handOff));
}

/// What a person sees in the column of that title; "no column" without one.
std::string shownIn(const HandOff& handOff, const std::string& title) {
    const cli::Table table = cli::tableForPeople(*cli::listOfClips(handOff));
    for (std::size_t i = 0; i < table.columns.size(); ++i) {
        if (table.columns[i].title == title) {
            return table.rows.at(0).at(i);
        }
    }
    return "no column";
}

AAFFade fade(AAFRational duration, AAFAutomationInterpolation curve) {
    AAFFade made;
    made.duration = duration;
    made.curve = std::move(curve);
    return made;
}

TEST(ClipList, ProgramsGetEverythingThatIsKnown) {
    // In at 2 s, out at 12 s; 10 s of 48000 Hz are 480000 samples; 20 * log10(0.5) = -6.0206 dB.
    EXPECT_EQ(jsonOfClips(oneClip()),
              "{\"file\":\"a.omf\",\"track\":\"Dialog\",\"trackNumber\":3,\"in\":\"01:00:02:00\","
              "\"out\":\"01:00:12:00\",\"clip\":\"Anna\",\"source\":\"Voice.wav\","
              "\"sourceState\":\"embedded\",\"sourceIn\":4800,\"sourceLength\":480000,"
              "\"sourceRate\":48000,\"channel\":\"mono\",\"sourceChannel\":2,\"startSeconds\":2,"
              "\"startSecondsExact\":\"2\",\"durationSeconds\":10,\"durationSecondsExact\":\"10\","
              "\"length\":\"00:00:10:00\",\"gainDb\":-6.020599913279624,\"gain\":0.5,"
              "\"pan\":\"L50\",\"panPosition\":0.25,\"audible\":true,\"losses\":0,"
              "\"id\":\"clip-1\"}\n");
}

TEST(ClipList, PeopleGetWhatFitsALine) {
    EXPECT_EQ(shownIn(oneClip(), "Track"), "Dialog");
    EXPECT_EQ(shownIn(oneClip(), "In"), "01:00:02:00");
    EXPECT_EQ(shownIn(oneClip(), "Out"), "01:00:12:00");
    EXPECT_EQ(shownIn(oneClip(), "Clip"), "Anna");
    EXPECT_EQ(shownIn(oneClip(), "Audio file"), "Voice.wav");
    EXPECT_EQ(shownIn(oneClip(), "Ch."), "2");
    EXPECT_EQ(shownIn(oneClip(), "Gain dB"), "-6.02");
    EXPECT_EQ(shownIn(oneClip(), "Fade in"), "no column");
    EXPECT_EQ(shownIn(oneClip(), "Audible"), "no column");
    EXPECT_EQ(shownIn(oneClip(), "Losses"), "no column");
}

TEST(ClipList, AMonoFileNeedsNoChannelForPeople) {
    HandOff handOff = oneClip();
    handOff.timeline.essences[0].channelCount = 1;
    handOff.timeline.events[0].sourceChannel = 0;
    EXPECT_EQ(shownIn(handOff, "Ch."), "no column");
    EXPECT_THAT(jsonOfClips(handOff), HasSubstr("\"sourceChannel\":1,"));
}

TEST(ClipList, AbsentNamesAndChannelsHaveNoKeys) {
    HandOff handOff = oneClip();
    handOff.timeline.events[0].clipName.reset();
    handOff.timeline.events[0].sourceChannel.reset();
    handOff.timeline.tracks[0].name.reset();
    handOff.timeline.tracks[0].fixedPan.reset();
    EXPECT_THAT(jsonOfClips(handOff),
                AllOf(Not(HasSubstr("\"clip\":")), Not(HasSubstr("\"sourceChannel\":")),
                      Not(HasSubstr("\"track\":")), Not(HasSubstr("\"pan")),
                      HasSubstr("\"trackNumber\":3,")));
    EXPECT_EQ(shownIn(handOff, "Track"), "track 3");
}

TEST(ClipList, AClipOfNoKnownTrackOrSourceKeepsWhatIsItsOwn) {
    HandOff handOff = oneClip();
    handOff.timeline.tracks.clear();
    handOff.timeline.essences.clear();
    EXPECT_THAT(jsonOfClips(handOff),
                AllOf(HasSubstr("{\"file\":\"a.omf\",\"in\":\"01:00:02:00\""),
                      HasSubstr("\"source\":\"essence-1\",\"sourceIn\":4800,\"channel\""),
                      Not(HasSubstr("sourceState")), Not(HasSubstr("sourceLength")),
                      Not(HasSubstr("sourceRate"))));
    EXPECT_EQ(shownIn(handOff, "Audio file"), "essence-1");
}

TEST(ClipList, ALengthBeyondAllSamplesHasNoNumber) {
    HandOff handOff = oneClip();
    handOff.timeline.events[0].sourceStartSample = std::numeric_limits<std::int64_t>::max();
    EXPECT_THAT(jsonOfClips(handOff), AllOf(HasSubstr("\"sourceIn\":9223372036854775807,"),
                                            Not(HasSubstr("sourceLength"))));
}

TEST(ClipList, ExactTimesAreFractions) {
    HandOff handOff = oneClip();
    handOff.timeline.events[0].timelineStart = AAFRational(1001, 30000);
    handOff.timeline.events[0].duration = AAFRational(1, 3);
    // A third of a second at 25 frames is 8.33 frames.
    EXPECT_THAT(jsonOfClips(handOff), AllOf(HasSubstr("\"startSecondsExact\":\"1001\\/30000\""),
                                            HasSubstr("\"durationSecondsExact\":\"1\\/3\""),
                                            HasSubstr("\"length\":\"00:00:00:08\"")));
}

TEST(ClipList, MissingAudioStandsBeforeTheName) {
    HandOff handOff = oneClip();
    handOff.timeline.essences[0].embedded = false;
    EXPECT_EQ(shownIn(handOff, "Audio file"), "missing: Voice.wav");
    EXPECT_THAT(jsonOfClips(handOff), HasSubstr("\"source\":\"Voice.wav\",\"sourceState\":"
                                                "\"missing\""));
    handOff.timeline.essences[0].fileURL = AAFURL{"file:///Voice.wav"};
    EXPECT_EQ(shownIn(handOff, "Audio file"), "Voice.wav");
    EXPECT_THAT(jsonOfClips(handOff), HasSubstr("\"sourceState\":\"located\""));
}

TEST(ClipList, FadesAreFramesForPeopleAndSecondsForPrograms) {
    HandOff handOff = oneClip();
    AAFClipEvent& clip = handOff.timeline.events[0];
    clip.fadeIn = fade(AAFRational(2, 25), AAFAutomationInterpolation::power());
    clip.fadeOut = fade(AAFRational(1, 100), AAFAutomationInterpolation::logarithmic());
    EXPECT_EQ(shownIn(handOff, "Fade in"), "2f pow");
    // A quarter of a frame.
    EXPECT_EQ(shownIn(handOff, "Fade out"), "<1f log");
    EXPECT_THAT(jsonOfClips(handOff),
                AllOf(HasSubstr("\"fadeIn\":\"00:00:00:02 power\",\"fadeInSeconds\":0.08,"
                                "\"fadeInSecondsExact\":\"2\\/25\",\"fadeInCurve\":\"power\","),
                      HasSubstr("\"fadeOut\":\"00:00:00:00 logarithmic\",\"fadeOutSeconds\":0.01,"
                                "\"fadeOutSecondsExact\":\"1\\/100\","
                                "\"fadeOutCurve\":\"logarithmic\",")));
}

TEST(ClipList, CurvesOfTheFilesOwnKeepTheirNames) {
    HandOff handOff = oneClip();
    handOff.timeline.events[0].fadeIn =
        fade(AAFRational(1), AAFAutomationInterpolation::unsupported("omfi:interp:S"));
    EXPECT_EQ(shownIn(handOff, "Fade in"), "25f omf\u2026");
    EXPECT_THAT(jsonOfClips(handOff), HasSubstr("\"fadeInCurve\":\"omfi:interp:S\""));
}

TEST(ClipList, GainsOfEveryKind) {
    HandOff handOff = oneClip();
    double& gain = handOff.timeline.events[0].fixedClipGain;
    gain = 1;
    EXPECT_EQ(shownIn(handOff, "Gain dB"), "0.00");
    EXPECT_THAT(jsonOfClips(handOff), HasSubstr("\"gainDb\":0,\"gain\":1,"));
    gain = 0;
    EXPECT_EQ(shownIn(handOff, "Gain dB"), "-inf");
    EXPECT_THAT(jsonOfClips(handOff),
                AllOf(HasSubstr("\"gain\":0,"), Not(HasSubstr("\"gainDb\""))));
    gain = -1;
    EXPECT_EQ(shownIn(handOff, "Gain dB"), "0.00 inverted");
    EXPECT_THAT(jsonOfClips(handOff), HasSubstr("\"gainDb\":0,\"gain\":-1,"));
}

TEST(ClipList, GainPointsAreCountedAndListed) {
    HandOff handOff = oneClip();
    handOff.timeline.events[0].clipGainAutomation =
        AAFAutomationEnvelope{.points = {{AAFRational(0), 0.25}, {AAFRational(1, 3), 1}}};
    EXPECT_EQ(shownIn(handOff, "Gain dB"), "-6.02 ~");
    EXPECT_THAT(jsonOfClips(handOff),
                HasSubstr("\"automationPoints\":2,\"gainPoints\":[{\"place\":\"0\",\"gain\":0.25},"
                          "{\"place\":\"1\\/3\",\"gain\":1}],"));
}

TEST(ClipList, AMutedTrackIsNotAudible) {
    HandOff handOff = oneClip();
    handOff.timeline.tracks[0].muted = true;
    EXPECT_EQ(shownIn(handOff, "Audible"), "no");
    EXPECT_THAT(jsonOfClips(handOff), HasSubstr("\"audible\":false"));
}

TEST(ClipList, ManyLossesAreCountedWholeAndNamedInPart) {
    HandOff handOff = oneClip();
    for (int i = 0; i < 120; ++i) {
        handOff.losses.push_back(
            {.trackID = "track-1", .start = AAFRational(0), .duration = AAFRational(100)});
    }
    EXPECT_THAT(shownIn(handOff, "Losses"), AllOf(StartsWith("1,2,3,"), EndsWith(",99,100,...")));
    EXPECT_THAT(jsonOfClips(handOff), AllOf(HasSubstr("\"losses\":120,\"lossNumbers\":[1,2,3,"),
                                            HasSubstr(",99,100],\"id\"")));
}

TEST(ClipList, SheetsGetTwoCellsForEachExactTime) {
    HandOff handOff = oneClip();
    handOff.timeline.events[0].duration = AAFRational(1, 3);
    const std::string csv = csvOf(*cli::listOfClips(handOff));
    EXPECT_THAT(csv, HasSubstr(",Length (s),Length (exact s) numerator,Length (exact s) "
                               "denominator,Length,"));
    EXPECT_THAT(csv, HasSubstr(",0.3333333333333333,1,3,00:00:00:08,"));
    // Named by itself, and its source has no labels and no reel.
    EXPECT_THAT(csv, HasSubstr("Dialog,3,01:00:02:00,01:00:02:08,Anna,,Voice.wav,embedded,4800,"
                               "16000,48000,,,,mono,2,2,2,1,"));
}

TEST(ClipList, ClipsStandInTheOrderOfTheTimeline) {
    HandOff handOff = oneClip();
    AAFClipEvent second = handOff.timeline.events[0];
    second.id = "clip-2";
    handOff.timeline.events.push_back(second);
    const auto list = cli::listOfClips(handOff);
    EXPECT_EQ(list->rowCount(), 2U);
    const std::string json = jsonOf(*list);
    EXPECT_LT(json.find("clip-1"), json.find("clip-2"));
}

TEST(TrackList, TotalsAreThoseOfTheTracksClips) {
    HandOff handOff = oneClip();
    AAFClipEvent later = handOff.timeline.events[0];
    later.timelineStart = AAFRational(20);
    handOff.timeline.events.push_back(later);
    AAFClipEvent other = later;
    other.trackID = "track-2";
    other.timelineStart = AAFRational(100);
    handOff.timeline.events.push_back(other);
    handOff.losses = {{.trackID = "track-1"}, {.trackID = "track-2"}, {}};
    // Two clips, the later one from 20 s to 30 s.
    EXPECT_EQ(jsonOf(*cli::listOfTracks(handOff)),
              "{\"file\":\"a.omf\",\"track\":3,\"name\":\"Dialog\",\"clips\":2,"
              "\"end\":\"01:00:30:00\",\"endSeconds\":30,\"endSecondsExact\":\"30\",\"gainDb\":0,"
              "\"pan\":\"L50\",\"panPosition\":0.25,\"muted\":false,\"solo\":false,\"losses\":1,"
              "\"id\":\"track-1\"}\n");
}

TEST(TrackList, AnEmptyTrackEndsWhereTheTimelineBegins) {
    HandOff handOff = oneClip();
    handOff.timeline.events.clear();
    handOff.timeline.tracks[0].solo = true;
    handOff.timeline.tracks[0].fixedGain = 0;
    EXPECT_EQ(jsonOf(*cli::listOfTracks(handOff)),
              "{\"file\":\"a.omf\",\"track\":3,\"name\":\"Dialog\",\"clips\":0,"
              "\"end\":\"01:00:00:00\",\"endSeconds\":0,\"endSecondsExact\":\"0\",\"pan\":\"L50\","
              "\"panPosition\":0.25,\"muted\":false,\"solo\":true,\"losses\":0,"
              "\"id\":\"track-1\"}\n");
}

TEST(SourceList, ProgramsGetTheFilesFormatAndPlace) {
    HandOff handOff = oneClip();
    AAFSourceEssence& essence = handOff.timeline.essences[0];
    essence.embedded = false;
    essence.fileURL = AAFURL{"file:///Audio/Voice%201.wav"};
    essence.originalPath = "C:\\Voice.wav";
    essence.codec = "PCM";
    essence.bitDepth = 24;
    essence.sampleRate = AAFRational(48'000'000, 1001);
    EXPECT_EQ(jsonOf(*cli::listOfSources(handOff)),
              "{\"file\":\"a.omf\",\"name\":\"Voice.wav\",\"state\":\"located\","
              "\"sampleRate\":47952.04795204795,\"sampleRateExact\":\"48000000\\/1001\","
              "\"bitDepth\":24,\"channels\":2,\"codec\":\"PCM\",\"clips\":1,"
              "\"path\":\"\\/Audio\\/Voice 1.wav\",\"recordedPath\":\"C:\\\\Voice.wav\","
              "\"id\":\"essence-1\"}\n");
    const cli::Table table = cli::tableForPeople(*cli::listOfSources(handOff));
    EXPECT_THAT(table.rows.at(0), ElementsAre("Voice.wav", "located", "47952.04795204795", "24",
                                              "2", "WAVE", "1", "/Audio/Voice 1.wav"));
}

TEST(SourceList, AURLThatIsNoPathStaysAsItIs) {
    HandOff handOff = oneClip();
    handOff.timeline.essences[0].fileURL = AAFURL{"http://host/Voice.wav"};
    EXPECT_THAT(jsonOf(*cli::listOfSources(handOff)),
                HasSubstr("\"path\":\"http:\\/\\/host\\/Voice.wav\""));
}

TEST(LossList, ProgramsGetPlaceSentenceAndTechnicalText) {
    HandOff handOff = oneClip();
    handOff.timeline.unsupportedFeatures = {
        {.severity = AAFUnsupportedFeature::Severity::renderAffecting,
         .description = "effect X",
         .objectPath = "CMOB[1]/slot[2]"}};
    handOff.losses = {{.trackID = "track-1",
                       .trackName = "Dialog",
                       .trackNumber = 3,
                       .clipName = "Anna",
                       .start = AAFRational(1, 2),
                       .duration = AAFRational(1, 4),
                       .plain = "An effect was left out."}};
    // Half a second is frame 12.5, three quarters are 18.75.
    EXPECT_EQ(jsonOf(*cli::listOfLosses(handOff)),
              "{\"file\":\"a.omf\",\"loss\":1,\"effect\":\"soundsDifferent\",\"track\":\"Dialog\","
              "\"trackNumber\":3,\"clip\":\"Anna\",\"in\":\"01:00:00:13\",\"out\":\"01:00:00:19\","
              "\"startSeconds\":0.5,\"startSecondsExact\":\"1\\/2\",\"durationSeconds\":0.25,"
              "\"durationSecondsExact\":\"1\\/4\",\"sentence\":\"An effect was left out.\","
              "\"technical\":\"effect X\",\"objectPath\":\"CMOB[1]\\/slot[2]\"}\n");
}

TEST(LossList, WithoutAPlaceThereIsTheTextAlone) {
    HandOff handOff = oneClip();
    handOff.timeline.unsupportedFeatures = {
        {.severity = AAFUnsupportedFeature::Severity::informational,
         .description = "clip dropped"}};
    handOff.losses = {{}};
    EXPECT_EQ(jsonOf(*cli::listOfLosses(handOff)),
              "{\"file\":\"a.omf\",\"loss\":1,\"effect\":\"dropped\",\"sentence\":\"clip dropped\","
              "\"technical\":\"clip dropped\"}\n");
}

TEST(LossList, AStartWithoutALengthHasNoEnd) {
    HandOff handOff = oneClip();
    handOff.timeline.unsupportedFeatures = {{.description = "x"}};
    handOff.losses = {{.start = AAFRational(1)}};
    EXPECT_THAT(jsonOf(*cli::listOfLosses(handOff)),
                AllOf(HasSubstr("\"in\":\"01:00:01:00\",\"startSeconds\":1,"),
                      Not(HasSubstr("\"out\"")), Not(HasSubstr("duration"))));
}

}  // namespace
}  // namespace trellant::testing
