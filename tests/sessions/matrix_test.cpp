// SPDX-License-Identifier: Apache-2.0
// Kinds of sessions, each through every format that holds clips, and read back.
#include "dawproject_reader.h"
#include "otio_reader.h"
#include "reaper_reader.h"
#include "session_samples.h"
#include "zip_reader.h"

#include <gtest/gtest.h>

namespace trellant {

namespace {

using exchange::PlannedClip;
using exchange::PlannedFade;
using exchange::Samples;
using sessions::Session;
using testing::addClip;
using testing::addMedia;
using testing::emptySession;

void expectOtioBack(const Session& session) {
    const std::string text = testing::textOf(session, sessions::writeOtioSession);
    EXPECT_EQ(testing::planOfOtio(text), testing::withoutPositions(session.plan));
    EXPECT_EQ(testing::textOf(session, sessions::writeOtioSession), text);
}

void expectReaperBack(const Session& session) {
    const std::string text = testing::textOf(session, sessions::writeReaperSession);
    EXPECT_EQ(testing::planOfReaper(text, session.plan.media), testing::asReaperSays(session.plan));
    EXPECT_EQ(testing::textOf(session, sessions::writeReaperSession), text);
}

void expectDawProjectBack(const Session& session) {
    const Bytes archive = testing::archiveOf(session, sessions::writeDawProject);
    EXPECT_EQ(
        testing::planOfDawProject(testing::zipContent(archive, "project.xml"), session.plan.rate),
        testing::asDawProjectSays(session.plan));
    EXPECT_EQ(testing::archiveOf(session, sessions::writeDawProject), archive);
}

void expectReadBack(const Session& session) {
    expectOtioBack(session);
    expectReaperBack(session);
    expectDawProjectBack(session);
}

const std::vector<AAFAutomationInterpolation> curves{
    AAFAutomationInterpolation::linear(), AAFAutomationInterpolation::constant(),
    AAFAutomationInterpolation::power(), AAFAutomationInterpolation::logarithmic(),
    AAFAutomationInterpolation::unsupported("Fade \"Type\" 9")};

/// Three clips with nothing between the first two: at the start, after and before no gap, and at
/// the end behind a gap.
Session threeClips() {
    Session session = emptySession();
    const std::size_t anna = addMedia(session, "Anna");
    addClip(session, "A", anna, 0, 4800, 0);
    addClip(session, "B", anna, 4800, 4800, 100);
    addClip(session, "C", anna, 12'000, 4800, 7);
    return session;
}

TEST(SessionMatrix, FadesOfEveryCurveAtEveryPlace) {
    for (const AAFAutomationInterpolation& curve : curves) {
        for (std::size_t place = 0; place < 3; ++place) {
            for (const Samples length : {1, 480, 4800}) {
                Session session = threeClips();
                PlannedClip& clip = session.plan.tracks[0].lanes[0].clips[place];
                clip.fadeIn = PlannedFade{.length = length, .curve = curve};
                expectReadBack(session);
                clip.fadeOut = clip.fadeIn;
                expectReadBack(session);
                clip.fadeIn.reset();
                expectReadBack(session);
            }
        }
    }
}

TEST(SessionMatrix, CrossfadesOfEveryCurveAndLength) {
    for (const AAFAutomationInterpolation& curve : curves) {
        for (const Samples length : {1, 2, 479, 4800}) {
            Session session = emptySession();
            const std::size_t anna = addMedia(session, "Anna");
            const std::size_t rain = addMedia(session, "Rain", 11'025);
            const PlannedFade fade{.length = length, .curve = curve};
            addClip(session, "A", anna, 10, 4800, 0).fadeOut = fade;
            PlannedClip& next = addClip(session, "B", rain, 4810 - length, 9600, 5513);
            next.fadeIn = fade;
            next.crossfadesIn = true;
            expectReadBack(session);
        }
    }
}

TEST(SessionMatrix, ClipsThatCrossfadeOnBothSides) {
    Session session = emptySession();
    const std::size_t anna = addMedia(session, "Anna");
    for (Samples i = 0; i < 50; ++i) {
        PlannedClip& clip = addClip(session, "A", anna, 600 * i, 1000, i);
        clip.fadeIn = clip.fadeOut = PlannedFade{.length = 400};
        clip.crossfadesIn = i > 0;
    }
    expectReadBack(session);
}

TEST(SessionMatrix, AutomationOfEveryCurve) {
    for (const AAFAutomationInterpolation& curve : curves) {
        for (const double gain : {0.0, 0.5, 1.0, 4.5, 1e-12, 1e12}) {
            Session session = threeClips();
            PlannedClip& clip = session.plan.tracks[0].lanes[0].clips[1];
            clip.gain = gain;
            expectReadBack(session);
            clip.gainAutomation = AAFAutomationEnvelope{
                .interpolation = curve,
                .points = {
                    {AAFRational(0), 0.25}, {AAFRational(1, 3), 0.0}, {AAFRational(1), 2.0}}};
            expectReadBack(session);
        }
    }
}

TEST(SessionMatrix, NamesOfEveryLengthAndScript) {
    for (const std::string& name :
         {std::string(), std::string(32, 'n'), std::string(300, 'n'),
          std::string("Wellenr\u00E4der"), std::string("\u97F3\u58F0 \U0001F3A7"),
          std::string("  two blanks  "), std::string("C:\\Audio\\take.wav"), std::string("CON"),
          std::string("<a & b>")}) {
        Session session = threeClips();
        session.plan.tracks[0].name = session.plan.tracks[0].lanes[0].name = name;
        session.plan.tracks[0].lanes[0].clips[0].name = name;
        session.plan.media[0].name = name;
        expectReadBack(session);
    }
}

TEST(SessionMatrix, RatesOfSessionAndMedia) {
    for (const std::int64_t rate : {8000, 44'100, 48'000, 96'000, 384'000}) {
        for (const std::int64_t mediaRate : {8000, 11'025, 22'050, 44'100, 48'000, 96'000}) {
            Session session = emptySession();
            session.plan.rate = rate;
            addClip(session, "A", addMedia(session, "Anna", mediaRate), 12'345, 6789, 54'321);
            addClip(session, "B", addMedia(session, "Ben", 48'000), 30'001, 1, 1);
            expectReadBack(session);
        }
    }
}

TEST(SessionMatrix, ChannelsAndMissingMedia) {
    for (const std::int64_t channels : {1, 2, 6, 64}) {
        Session session = threeClips();
        session.plan.media[0].channelCount = channels;
        expectReadBack(session);
        session.plan.media[0].isOffline = true;
        session.plan.media[0].frames = 0;
        session.plan.media[0].fileName.clear();
        session.plan.media[0].recordedPath = "Atmo:Rain.wav";
        expectReadBack(session);
    }
}

TEST(SessionMatrix, TwentyThousandClipsOnATrack) {
    Session session = emptySession();
    const std::size_t anna = addMedia(session, "Anna");
    for (Samples i = 0; i < 20'000; ++i) {
        addClip(session, "A", anna, 2000 * i, 1000, i);
    }
    expectReaperBack(session);
    expectDawProjectBack(session);
    // Reading so much JSON would take longer than all other tests here.
    const std::string otio = testing::textOf(session, sessions::writeOtioSession);
    std::size_t clips = 0;
    for (std::size_t at = otio.find("Clip.2"); at != std::string::npos;
         at = otio.find("Clip.2", at + 1)) {
        ++clips;
    }
    EXPECT_EQ(clips, 20'000U);
}

}  // namespace

}  // namespace trellant
