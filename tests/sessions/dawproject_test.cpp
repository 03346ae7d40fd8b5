// SPDX-License-Identifier: Apache-2.0
#include "dawproject_reader.h"
#include "session_samples.h"
#include "zip_reader.h"

#include <trellant/exchange/format_limits.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <pugixml.hpp>
#include <trellant_testing/comma_locale.h>
#include <trellant_testing/temporary_directory.h>

namespace trellant {

namespace {

std::string dawProjectName(std::string_view name) {
    return exchange::nameWithin(exchange::ExportFormat::dawproject, name);
}

using sessions::Session;
using testing::addClip;
using testing::addMedia;
using testing::emptySession;
using testing::planOfDawProject;
using testing::twoTracks;
using testing::zipContent;

Bytes archiveOf(const Session& session) {
    return testing::archiveOf(session, sessions::writeDawProject);
}

std::string projectOf(const Session& session) {
    return zipContent(archiveOf(session), "project.xml");
}

/// The document, with the elements in it by path: "Project/Structure/Track[2]".
class Document {
  public:
    explicit Document(const std::string& text) {
        EXPECT_TRUE(document_.load_buffer(text.data(), text.size()));
    }
    /// An attribute by path: "Project/Structure/Track/@name"; "(none)" where there is none.
    [[nodiscard]] std::string operator[](const std::string& path) const {
        const pugi::xpath_node found = document_.select_node(path.c_str());
        return found ? found.attribute().value() : "(none)";
    }
    [[nodiscard]] std::size_t count(const std::string& path) const {
        return document_.select_nodes(path.c_str()).size();
    }
    [[nodiscard]] std::string text(const std::string& path) const {
        return document_.select_node(path.c_str()).node().text().get();
    }

  private:
    pugi::xml_document document_;
};

const std::string firstClip = "//Clip[1]";

Session oneClip() {
    Session session = emptySession();
    addClip(session, "Anna take 1", addMedia(session, "Anna"), 24'000, 12'000, 2400);
    return session;
}

TEST(DawProject, PlacesClipsInSeconds) {
    const Document project(projectOf(oneClip()));
    EXPECT_EQ(project["/Project/@version"], "1.0");
    EXPECT_EQ(project["/Project/Application/@name"], "Trellant");
    EXPECT_EQ(project["/Project/Arrangement/Lanes/@timeUnit"], "seconds");
    EXPECT_EQ(project[firstClip + "/@name"], "Anna take 1");
    EXPECT_EQ(project[firstClip + "/@time"], "0.5");
    EXPECT_EQ(project[firstClip + "/@duration"], "0.25");
    EXPECT_EQ(project[firstClip + "/@contentTimeUnit"], "seconds");
    EXPECT_EQ(project[firstClip + "/@playStart"], "0.05");
    EXPECT_EQ(project[firstClip + "/@enable"], "(none)");
    EXPECT_EQ(project[firstClip + "/Audio/@channels"], "1");
    EXPECT_EQ(project[firstClip + "/Audio/@sampleRate"], "48000");
    EXPECT_EQ(project[firstClip + "/Audio/@duration"], "60");
    EXPECT_EQ(project[firstClip + "/Audio/File/@path"], "Scene 12.media/Anna.wav");
    EXPECT_EQ(project[firstClip + "/Audio/File/@external"], "true");
}

TEST(DawProject, GivesEachLaneATrackOfItsOwn) {
    Session session = twoTracks();
    session.plan.tracks[0].lanes.push_back({.name = "Dialog (2)"});
    session.plan.tracks[0].solo = true;
    session.plan.tracks[1].muted = true;
    const Document project(projectOf(session));
    EXPECT_EQ(project.count("//Structure/Track"), 4U);
    EXPECT_EQ(project["//Structure/Track[2]/@name"], "Dialog (2)");
    EXPECT_EQ(project["//Structure/Track[2]/Channel/@solo"], "true");
    EXPECT_EQ(project["//Structure/Track[3]/@name"], "Atmo");
    EXPECT_EQ(project["//Structure/Track[3]/Channel/@solo"], "false");
    EXPECT_EQ(project["//Structure/Track[3]/Channel/Mute/@value"], "true");
    EXPECT_EQ(project["//Structure/Track[3]/Channel/Pan/@value"], "0");
    EXPECT_EQ(project["//Structure/Track[3]/Channel/Pan/@unit"], "normalized");
    EXPECT_EQ(project["//Structure/Track[3]/Channel/Volume/@value"], "0.5");
    EXPECT_EQ(project["//Structure/Track[3]/Channel/Volume/@unit"], "linear");
    // Without a pan of its own in the middle.
    EXPECT_EQ(project["//Structure/Track[1]/Channel/Pan/@value"], "0.5");
    EXPECT_EQ(project["//Structure/Track[4]/Channel/@role"], "master");
    EXPECT_EQ(project["//Structure/Track[1]/Channel/@destination"],
              project["//Structure/Track[4]/Channel/@id"]);
    EXPECT_EQ(project["/Project/Arrangement/Lanes/Lanes[3]/@track"],
              project["//Structure/Track[3]/@id"]);
}

TEST(DawProject, LetsClipsOfACrossfadeOverlap) {
    const Document project(projectOf(twoTracks()));
    EXPECT_EQ(project["//Clip[1]/@time"], "0");
    EXPECT_EQ(project["//Clip[1]/@duration"], "1");
    EXPECT_EQ(project["//Clip[1]/@fadeTimeUnit"], "seconds");
    EXPECT_EQ(project["//Clip[1]/@fadeInTime"], "0");
    EXPECT_EQ(project["//Clip[1]/@fadeOutTime"], "0.1");
    EXPECT_EQ(project["//Clip[2]/@time"], "0.9");
    EXPECT_EQ(project["//Clip[2]/@fadeInTime"], "0.1");
    EXPECT_EQ(project["//Clip[2]/@fadeOutTime"], "0.01");
}

TEST(DawProject, MovesGainByPointsInTimeOfTheFile) {
    Session session = twoTracks();
    session.plan.tracks[1].lanes[0].clips[0].sourceStart = 96'000;
    const Document project(projectOf(session));
    const std::string points = "//Lanes[@track='track2']/Clips/Clip/Lanes/Points";
    EXPECT_EQ(project[points + "/@unit"], "linear");
    EXPECT_EQ(project[points + "/Target/@expression"], "gain");
    EXPECT_EQ(project.count(points + "/RealPoint"), 2U);
    // 0.75 times 0.25, and 0.75 times 1; the clip of half a second begins two seconds in.
    EXPECT_EQ(project[points + "/RealPoint[1]/@time"], "2");
    EXPECT_EQ(project[points + "/RealPoint[1]/@value"], "0.1875");
    EXPECT_EQ(project[points + "/RealPoint[1]/@interpolation"], "linear");
    EXPECT_EQ(project[points + "/RealPoint[2]/@time"], "2.25");
    EXPECT_EQ(project[points + "/RealPoint[2]/@value"], "0.75");
}

TEST(DawProject, HoldsAStillGainByOnePoint) {
    Session session = oneClip();
    session.plan.tracks[0].lanes[0].clips[0].gain = 0.5;
    const Document project(projectOf(session));
    EXPECT_EQ(project.count("//RealPoint"), 1U);
    EXPECT_EQ(project["//RealPoint/@value"], "0.5");
    EXPECT_EQ(project["//RealPoint/@interpolation"], "hold");
    EXPECT_EQ(project.count("//Clip/Lanes/Audio"), 1U);
}

TEST(DawProject, MovesVolumeAndPanOfTracks) {
    Session session = twoTracks();
    session.plan.tracks[1].gainAutomation =
        AAFAutomationEnvelope{.interpolation = AAFAutomationInterpolation::constant(),
                              .points = {{AAFRational(1, 4), 2.0}}};
    session.plan.tracks[1].panAutomation =
        AAFAutomationEnvelope{.points = {{AAFRational(1, 2), 0.25}}};
    const Document project(projectOf(session));
    const std::string points = "//Lanes[@track='track2']/Points";
    EXPECT_EQ(project[points + "[1]/Target/@parameter"],
              project["//Structure/Track[2]/Channel/Volume/@id"]);
    // The session lasts for two seconds; the track's gain is one half.
    EXPECT_EQ(project[points + "[1]/RealPoint/@time"], "0.5");
    EXPECT_EQ(project[points + "[1]/RealPoint/@value"], "1");
    EXPECT_EQ(project[points + "[1]/RealPoint/@interpolation"], "hold");
    EXPECT_EQ(project[points + "[2]/Target/@parameter"],
              project["//Structure/Track[2]/Channel/Pan/@id"]);
    EXPECT_EQ(project[points + "[2]/@unit"], "normalized");
    EXPECT_EQ(project[points + "[2]/RealPoint/@time"], "1");
    EXPECT_EQ(project[points + "[2]/RealPoint/@value"], "0.25");
}

TEST(DawProject, DisablesMutedClips) {
    Session session = oneClip();
    session.plan.tracks[0].lanes[0].clips[0].muted = true;
    EXPECT_EQ(Document(projectOf(session))[firstClip + "/@enable"], "false");
}

TEST(DawProject, MarksTheStartAndLosses) {
    const Document project(projectOf(twoTracks()));
    const std::string markers = "/Project/Arrangement/Markers/Marker";
    ASSERT_EQ(project.count(markers), 3U);
    EXPECT_EQ(project[markers + "[1]/@name"], "Start 01:00:00:00, 25 fps");
    EXPECT_EQ(project[markers + "[1]/@time"], "0");
    EXPECT_EQ(project[markers + "[2]/@name"], "Atmo: Silent.");
    EXPECT_EQ(project[markers + "[2]/@color"], "#ffff00");
    EXPECT_EQ(project[markers + "[2]/@time"], "1");
    EXPECT_EQ(project[markers + "[3]/@name"], "Left out.");
    EXPECT_EQ(project[markers + "[3]/@color"], "#ff0000");
}

TEST(DawProject, SaysTitleAndStartInItsMetadata) {
    Session session = emptySession();
    session.plan.start = AAFTimecodeAddress(1, 0, 0, 2, AAFTimecodeRate::fps2997DF());
    const Document metadata(zipContent(archiveOf(session), "metadata.xml"));
    EXPECT_EQ(metadata.text("/MetaData/Title"), "Scene 12");
    EXPECT_EQ(metadata.text("/MetaData/Comment"), "Starts at 01:00:00;02, 29.97 fps drop-frame");
}

TEST(DawProject, HoldsEmbeddedAudioAndNamesOtherFilesWhereTheyLie) {
    const testing::TemporaryDirectory folder;
    Session session = twoTracks();
    const std::string text = "RIFF, and what follows it";
    session.media[0].isEmbedded = true;
    session.media[0].wave = {
        .path = testing::writeFile(folder.file("x"), std::as_bytes(std::span(text))),
        .byteCount = text.size()};
    const Bytes archive = archiveOf(session);
    std::vector<std::string> names;
    for (const testing::ZipMember& member : testing::zipMembers(testing::zipBytes(archive))) {
        names.push_back(member.name);
    }
    EXPECT_EQ(names, (std::vector<std::string>{"project.xml", "metadata.xml", "audio/Anna.wav"}));
    EXPECT_EQ(zipContent(archive, "audio/Anna.wav"), text);
    const Document project(projectOf(session));
    EXPECT_EQ(project["//Audio[@name='Anna']/File/@path"], "audio/Anna.wav");
    EXPECT_EQ(project["//Audio[@name='Anna']/File/@external"], "(none)");
    EXPECT_EQ(project["//Audio[@name='Ben']/File/@path"], "Scene 12.media/Ben.wav");
    EXPECT_EQ(project["//Audio[@name='Rain']/File/@path"], "Atmo:Rain");
    EXPECT_EQ(project["//Audio[@name='Rain']/File/@external"], "true");
}

TEST(DawProject, HoldsNamesThatXmlCannotHold) {
    EXPECT_EQ(dawProjectName("plain <&> \"name\""), "plain <&> \"name\"");
    EXPECT_EQ(dawProjectName(std::string("a\0\x1F"
                                         "b\n",
                                         5)),
              "a b ");
    EXPECT_EQ(dawProjectName("\uFFFE and \uFFFF, \U0001F3A7"), "\uFFFD and \uFFFD, \U0001F3A7");
    EXPECT_EQ(dawProjectName("broken \xC3("), "broken \uFFFD(");
    const std::string hostile = testing::hostileName();
    Session session = oneClip();
    session.plan.name = hostile;
    session.plan.tracks[0].name = session.plan.tracks[0].lanes[0].name = hostile;
    session.plan.tracks[0].lanes[0].clips[0].name = hostile;
    session.plan.media[0].name = hostile;
    session.markers.push_back({.text = hostile});
    const Bytes archive = archiveOf(session);
    const Document project(zipContent(archive, "project.xml"));
    const std::string held = dawProjectName(hostile);
    EXPECT_EQ(project["//Structure/Track/@name"], held);
    EXPECT_EQ(project["//Clip/@name"], held);
    EXPECT_EQ(project["//Audio/@name"], held);
    EXPECT_EQ(project["//Marker[2]/@name"], held);
    EXPECT_EQ(Document(zipContent(archive, "metadata.xml")).text("/MetaData/Title"), held);
}

TEST(DawProject, ReadsBackAsThePlanItWasWrittenFrom) {
    for (std::uint32_t seed = 0; seed < 300; ++seed) {
        const Session session = testing::randomSession(seed);
        EXPECT_EQ(planOfDawProject(projectOf(session), session.plan.rate),
                  testing::asDawProjectSays(session.plan))
            << seed;
    }
}

TEST(DawProject, CountsExactlyUpToTheLastSampleOfAPlan) {
    Session session = oneClip();
    exchange::PlannedClip& clip = session.plan.tracks[0].lanes[0].clips[0];
    clip.start = exchange::mostSamples - 12'000;
    session.plan.length = exchange::mostSamples;
    session.plan.media[0].frames = exchange::mostSamples;
    clip.sourceStart = exchange::mostSamples - 12'000;
    EXPECT_EQ(planOfDawProject(projectOf(session), 48'000),
              testing::asDawProjectSays(session.plan));
}

TEST(DawProject, WritesTheSameBytesInAnyLocale) {
    const Bytes expected = archiveOf(twoTracks());
    const testing::CommaLocale comma;
    EXPECT_EQ(archiveOf(twoTracks()), expected);
}

TEST(DawProject, HoldsNoClipAndVeryManyTracks) {
    Session session = emptySession();
    EXPECT_EQ(Document(projectOf(session)).count("//Clip"), 0U);
    session.plan.tracks.resize(10'000, session.plan.tracks[0]);
    // And the master.
    EXPECT_EQ(Document(projectOf(session)).count("//Structure/Track"), 10'001U);
    session.plan.tracks.clear();
    EXPECT_EQ(Document(projectOf(session)).count("//Structure/Track"), 1U);
}

/// Whether a document of this session is valid against the format's published schema.
void expectValid(const Bytes& archive, const std::string& schemas) {
    const testing::TemporaryDirectory folder;
    for (const auto& [member, schema] :
         {std::pair("project.xml", "Project.xsd"), std::pair("metadata.xml", "MetaData.xsd")}) {
        const std::string text = zipContent(archive, member);
        const std::string path =
            testing::writeFile(folder.file(member), std::as_bytes(std::span(text)));
        const std::string command =
            "xmllint --noout --nonet --schema '" + schemas + "/" + schema + "' '" + path + "'";
        EXPECT_EQ(std::system(command.c_str()), 0) << text;
    }
}

TEST(DawProject, IsValidAgainstThePublishedSchema) {
    const char* const schemas = std::getenv("TRELLANT_DAWPROJECT_SCHEMA");
    if (schemas == nullptr) {
        GTEST_SKIP() << "TRELLANT_DAWPROJECT_SCHEMA names no folder";
    }
    expectValid(archiveOf(emptySession()), schemas);
    Session hostile = twoTracks();
    hostile.plan.name = hostile.plan.tracks[0].lanes[0].name = testing::hostileName();
    expectValid(archiveOf(hostile), schemas);
    for (std::uint32_t seed = 0; seed < 20; ++seed) {
        expectValid(archiveOf(testing::randomSession(seed)), schemas);
    }
    hostile.plan.tracks.clear();
    hostile.markers.clear();
    expectValid(archiveOf(hostile), schemas);
}

}  // namespace

}  // namespace trellant
