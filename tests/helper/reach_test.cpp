// SPDX-License-Identifier: Apache-2.0
// What a worker can still read while it maps: tried from inside, by a request whose progress opens
// what it should not, and from outside, by media that lie in odd places.
#include "confined_child.h"
#include "confined_reach.h"
#include "environment_variable.h"
#include "worker_fixture.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <trellant_testing/tone.h>
#include <trellant_testing/wave_builder.h>
#include <vector>

namespace trellant::testing {

namespace {

using Operation = AAFWorkerProtocol::Request::Operation;

constexpr const char* variable = "TRELLANT_SANDBOX";

/// A composition like the one-clip one, its audio outside: where `locators` say, or by its name.
Bytes externalDocument(const std::vector<std::string>& locators) {
    constexpr MobID tone{1, 2, 3};
    OmfBuilder omf;
    std::vector<ObjectID> objects;
    for (const std::string& path : locators) {
        objects.push_back(omf.unixLocator(path));
    }
    omf.audioFile({.id = tone, .name = "Tone.wav", .length = 480, .locators = objects});
    const ObjectID clip = omf.clip({.length = 480, .source = tone});
    const ObjectID slot = omf.slot({.editRate = Ratio{48'000},
                                    .segment = omf.sequence({clip}),
                                    .track = omf.track({.name = "A"})});
    omf.composition({.name = "Piece", .slots = {slot}});
    return omf.build();
}

class HelperReach : public WorkerTest {
  protected:
    void SetUp() override {
        if (landlockGeneration() == 0) {
            GTEST_SKIP() << "this kernel has no Landlock";
        }
        for (const char* const folder : {"search", "elsewhere"}) {
            std::filesystem::create_directory(path(folder));
        }
        writeFile(path("elsewhere/secret"), bytesOf("secret"));
    }

    /// What opening each of `paths` comes to once the file is open, and once more while its only
    /// slot is mapped, a line each.
    [[nodiscard]] std::string triedWhileMapping(Operation operation,
                                                const std::optional<std::string>& searched,
                                                const std::vector<std::string>& paths) const {
        AAFWorkerProtocol::Request request;
        request.operation = operation;
        request.aafPath = path("piece.omf");
        request.workDirectory = path("work");
        request.mediaSearchDirectory = searched;
        return reportFromChild([] { return 0; },
                               [&] {
                                   std::string report;
                                   const auto attempt = [&](double) {
                                       for (const std::string& each : paths) {
                                           report += outcome(::open(each.c_str(), O_RDONLY)) + " ";
                                       }
                                       report.back() = '\n';
                                   };
                                   const auto result =
                                       OMFReader::process(request, attempt, confineTo);
                                   return result.timeline.events.size() == 1 ? report : "";
                               });
    }
    /// The worker's answer when it must confine itself and when it must not.
    void expectTheSameConfined(const RequestText& request, std::string_view mediaPath) const {
        WorkerRun confined;
        {
            const EnvironmentVariable wish(variable, "require");
            confined = run(request);
        }
        const EnvironmentVariable wish(variable, "off");
        const WorkerRun free = run(request);
        EXPECT_EQ(confined.output, free.output);
        EXPECT_EQ(confined.errors, free.errors);
        EXPECT_EQ(confined.status, 0);
        EXPECT_NE(free.output.find("\"fileURL\":\"" + jsonFileURL(mediaPath) + "\""),
                  std::string::npos);
        EXPECT_NE(free.output.find("\"bitDepth\":16"), std::string::npos);
    }
};

TEST_F(HelperReach, OpensNoOtherFileOnceItMapsAndNoFolderFromTheStart) {
    oneClipFile();
    EXPECT_EQ(triedWhileMapping(
                  Operation::inspect, std::nullopt,
                  {path("elsewhere/secret"), path("elsewhere"), "/etc/passwd", path("piece.omf")}),
              "works EACCES works works\n"
              "EACCES EACCES EACCES EACCES\n");
}

TEST_F(HelperReach, OpensTheMediaThatTheFileNamesAndNoNeighbourOfThem) {
    const std::string media = writeFile(path("elsewhere/Tone.wav"), toneWave());
    writeFile(path("piece.omf"), externalDocument({path("missing.wav"), media}));
    EXPECT_EQ(triedWhileMapping(Operation::inspect, std::nullopt,
                                {media, path("elsewhere/secret"), path("elsewhere")}),
              "works works EACCES\n"
              "works EACCES EACCES\n");
}

TEST_F(HelperReach, OpensWhatItFoundInTheSearchedFolder) {
    const std::string media = writeFile(path("search/Tone.wav"), toneWave());
    const std::string other = writeFile(path("search/Other.wav"), toneWave());
    writeFile(path("piece.omf"), externalDocument({}));
    EXPECT_EQ(triedWhileMapping(Operation::inspect, path("search"),
                                {media, other, path("search"), path("elsewhere")}),
              "works works works EACCES\n"
              "works EACCES EACCES EACCES\n");
}

TEST_F(HelperReach, OpensWhatItHasWritten) {
    oneClipFile();
    std::filesystem::create_directory(path("work"));
    const std::string old = writeFile(path("work/old"), bytesOf("old"));
    EXPECT_EQ(triedWhileMapping(Operation::extractAndInspect, std::nullopt,
                                {old, path("elsewhere/secret")}),
              "works works\n"
              "works EACCES\n");
}

TEST_F(HelperReach, TakesMediaWhereverTheFileSaysTheyLie) {
    const std::string media = writeFile(path("elsewhere/Tone.wav"), toneWave());
    writeFile(path("piece.omf"), externalDocument({media}));
    expectTheSameConfined(requestFor("inspect", path("piece.omf"), path("work")), media);
    expectTheSameConfined(requestFor("extractAndInspect", path("piece.omf"), path("work")), media);
}

TEST_F(HelperReach, TakesMediaBehindALink) {
    writeFile(path("elsewhere/Tone.wav"), toneWave());
    std::filesystem::create_symlink(path("elsewhere/Tone.wav"), path("link.wav"));
    writeFile(path("piece.omf"), externalDocument({path("link.wav")}));
    expectTheSameConfined(requestFor("inspect", path("piece.omf"), ""), path("link.wav"));
}

TEST_F(HelperReach, TakesMediaBehindALinkInTheSearchedFolder) {
    writeFile(path("elsewhere/Sound.wav"), toneWave());
    std::filesystem::create_symlink(path("elsewhere/Sound.wav"), path("search/Tone.wav"));
    writeFile(path("piece.omf"), externalDocument({"D:\\Audio\\Tone.wav"}));
    expectTheSameConfined(requestFor("inspect", path("piece.omf"), "", path("search")),
                          path("search/Tone.wav"));
}

TEST_F(HelperReach, TakesMediaOfASearchedFolderThatIsALink) {
    writeFile(path("elsewhere/Tone.wav"), toneWave());
    std::filesystem::create_directory_symlink(path("elsewhere"), path("media"));
    writeFile(path("piece.omf"), externalDocument({}));
    expectTheSameConfined(requestFor("inspect", path("piece.omf"), "", path("media")),
                          path("media/Tone.wav"));
}

}  // namespace

}  // namespace trellant::testing
