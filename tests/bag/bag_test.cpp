// SPDX-License-Identifier: Apache-2.0
// Whole bags of documents that a test makes, by the real worker.
#include <trellant/bag/bag.h>
#include <trellant/client/errors.h>
#include <trellant/extraction/sha256.h>

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <trellant_testing/byte_writer.h>
#include <trellant_testing/omf_builder.h>
#include <trellant_testing/temporary_directory.h>
#include <trellant_testing/wave_builder.h>
#include <trellant_testing/worker_process.h>

namespace trellant::bag {
namespace {

namespace fs = std::filesystem;
using namespace trellant::testing;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

class Bags : public ::testing::Test {
  protected:
    /// One track that plays an embedded WAVE file and, when it has a name, one that lies outside.
    std::string writeDocument(const std::string& name, const std::string& outside = "",
                              const std::string& embedded = "Kick.wav") {
        OmfBuilder omf;
        omf.audioFile({.id = {1, 0, 1},
                       .name = embedded,
                       .media = waveImage({.samples = Bytes(960)}),
                       .length = 480});
        std::vector<ObjectID> slots{
            omf.slot({.editRate = Ratio{48'000},
                      .segment = omf.clip({.length = 480, .source = {1, 0, 1}})})};
        if (!outside.empty()) {
            omf.audioFile({.id = {1, 0, 2}, .name = outside, .length = 480});
            slots.push_back(omf.slot({.editRate = Ratio{48'000},
                                      .segment = omf.clip({.length = 480, .source = {1, 0, 2}})}));
        }
        omf.composition({.name = "Song", .slots = slots});
        return writeFile(folder_.file(name), omf.build());
    }
    [[nodiscard]] BagRequest request(const std::string& file) const {
        BagRequest made;
        made.extraction.file = file;
        made.extraction.directory = "the bag";
        made.extraction.directoryPath = bag();
        made.extraction.helperURLProvider = [](const std::string&) -> std::optional<fs::path> {
            return workerPath();
        };
        return made;
    }
    static BagReport run(const BagRequest& request) {
        WorkProgress progress;
        return Bagging(request, progress).run();
    }
    [[nodiscard]] std::string bag(const std::string& name = "") const {
        return folder_.file("bag") + (name.empty() ? "" : "/" + name);
    }
    [[nodiscard]] std::string textIn(const std::string& name) const {
        return textOf(readFile(bag(name)));
    }
    [[nodiscard]] std::vector<std::string> filesIn(const std::string& folder) const {
        std::vector<std::string> names;
        for (const auto& entry : fs::recursive_directory_iterator(folder)) {
            if (!entry.is_directory()) {
                names.push_back(entry.path().lexically_relative(folder).string());
            }
        }
        std::sort(names.begin(), names.end());
        return names;
    }
    /// What is said of a place that is taken.
    [[nodiscard]] static std::string refusal(const BagRequest& request) {
        try {
            static_cast<void>(run(request));
        } catch (const BagError& error) {
            return error.what();
        }
        return "none";
    }

    TemporaryDirectory folder_;
};

TEST_F(Bags, HoldTheFileItsAudioItsTimelineAndTheirManifests) {
    const std::string file = writeDocument("mix.omf");
    const BagReport report = run(request(file));
    EXPECT_THAT(filesIn(bag()),
                ElementsAre("bag-info.txt", "bagit.txt", "data/Kick.wav", "data/mix.omf",
                            "data/timeline.json", "manifest-sha256.txt", "metadata/premis.xml",
                            "tagmanifest-sha256.txt"));
    EXPECT_EQ(readFile(bag("data/mix.omf")), readFile(file));
    EXPECT_EQ(readFile(bag("data/Kick.wav")), waveImage({.samples = Bytes(960)}));
    EXPECT_EQ(textIn("bagit.txt"), "BagIt-Version: 1.0\nTag-File-Character-Encoding: UTF-8\n");
    std::string manifest;
    std::string tags;
    std::uint64_t bytes = 0;
    for (const char* const name : {"data/Kick.wav", "data/mix.omf", "data/timeline.json"}) {
        manifest += fileDigest(bag(name), [](std::uint64_t) {}) + "  " + name + "\n";
        bytes += fs::file_size(bag(name));
    }
    EXPECT_EQ(textIn("manifest-sha256.txt"), manifest);
    for (const char* const name :
         {"bag-info.txt", "bagit.txt", "manifest-sha256.txt", "metadata/premis.xml"}) {
        tags += fileDigest(bag(name), [](std::uint64_t) {}) + "  " + name + "\n";
    }
    EXPECT_EQ(textIn("tagmanifest-sha256.txt"), tags);
    EXPECT_THAT(textIn("bag-info.txt"),
                HasSubstr("Payload-Oxum: " + std::to_string(bytes) + ".3\n"));
    EXPECT_EQ(report.payloadFiles, 3U);
    EXPECT_EQ(report.payloadBytes, bytes);
    EXPECT_FALSE(report.wasThere);
    EXPECT_EQ(report.extraction.audio.at(0).path, bag("data/Kick.wav"));
    EXPECT_EQ(report.extraction.audio.at(0).placed->name, "data/Kick.wav");
}

TEST_F(Bags, LeaveNothingBesideThem) {
    run(request(writeDocument("mix.omf")));
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder_.file(""))) {
        names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    EXPECT_THAT(names, ElementsAre("bag", "mix.omf"));
}

TEST_F(Bags, TakeInAudioThatLiesBesideTheFile) {
    writeFile(folder_.file("Door.wav"), waveImage({.samples = Bytes(960)}));
    const BagReport report = run(request(writeDocument("mix.omf", "Door.wav")));
    EXPECT_EQ(readFile(bag("data/Door.wav")), waveImage({.samples = Bytes(960)}));
    EXPECT_EQ(report.payloadFiles, 4U);
    EXPECT_THAT(textIn("data/timeline.json"), HasSubstr("\"fileURL\":\"Door.wav\""));
    EXPECT_THAT(textIn("metadata/premis.xml"), HasSubstr(">replication<"));
}

TEST_F(Bags, TellWhatIsMissing) {
    run(request(writeDocument("mix.omf", "Door.wav")));
    EXPECT_THAT(textIn("metadata/premis.xml"), HasSubstr(">Door.wav was not found<"));
}

TEST_F(Bags, TheSameFileGivesTheSameBytes) {
    BagRequest wanted = request(writeDocument("mix.omf"));
    run(wanted);
    std::vector<Bytes> first;
    for (const std::string& name : filesIn(bag())) {
        first.push_back(readFile(bag(name)));
    }
    fs::rename(bag(), folder_.file("elsewhere"));
    fs::create_directories(folder_.file("deeper/still"));
    wanted.extraction.directoryPath = folder_.file("deeper/still/bag");
    run(wanted);
    std::vector<Bytes> second;
    for (const std::string& name : filesIn(wanted.extraction.directoryPath)) {
        second.push_back(readFile(wanted.extraction.directoryPath + "/" + name));
    }
    EXPECT_EQ(first, second);
}

TEST_F(Bags, AreNotMadeTwice) {
    BagRequest wanted = request(writeDocument("mix.omf"));
    run(wanted);
    const std::string info = textIn("bag-info.txt");
    wanted.date = 86'400;
    EXPECT_TRUE(run(wanted).wasThere);
    EXPECT_EQ(textIn("bag-info.txt"), info);
}

TEST_F(Bags, AnEmptyFolderGivesWay) {
    fs::create_directory(bag());
    EXPECT_FALSE(run(request(writeDocument("mix.omf"))).wasThere);
    EXPECT_TRUE(fs::exists(bag("bagit.txt")));
}

TEST_F(Bags, NothingElseGivesWay) {
    const std::string file = writeDocument("mix.omf");
    writeFile(bag(), bytesOf("a file"));
    EXPECT_EQ(refusal(request(file)),
              "the bag is there already and is no bag; name another folder");
    EXPECT_EQ(textIn(""), "a file");
    fs::remove(bag());
    fs::create_directory(bag());
    writeFile(bag("mine"), bytesOf("mine"));
    EXPECT_EQ(refusal(request(file)),
              "the bag is there already and is no bag; name another folder");
    fs::remove_all(bag());
    run(request(file));
    EXPECT_EQ(refusal(request(writeDocument("other.omf"))),
              "the bag is there already with other files; name another folder");
    fs::resize_file(bag("data/Kick.wav"), 20);
    EXPECT_EQ(refusal(request(file)),
              "the bag is there already with other files; name another folder");
}

TEST_F(Bags, NamesThatWouldBreakAManifestAreEscapedThere) {
    run(request(writeDocument("50%\nmix\xff.omf")));
    EXPECT_TRUE(fs::exists(bag("data/50%\nmix\xEF\xBF\xBD.omf")));
    EXPECT_THAT(textIn("manifest-sha256.txt"), HasSubstr("  data/50%25%0Amix\xEF\xBF\xBD.omf\n"));
    EXPECT_THAT(textIn("metadata/premis.xml"),
                HasSubstr("<originalName>50% mix\\xff.omf</originalName>"));
    EXPECT_THAT(textIn("metadata/premis.xml"),
                HasSubstr("<objectIdentifierValue>data/50%25%0Amix\xEF\xBF\xBD.omf<"));
}

TEST_F(Bags, AFileThatIsCalledAsTheTimelineKeepsItsName) {
    const std::string file = writeDocument("timeline.json");
    const BagReport report = run(request(file));
    EXPECT_EQ(readFile(bag("data/timeline.json")), readFile(file));
    EXPECT_EQ(report.extraction.timeline.name, "data/timeline_2.json");
}

TEST_F(Bags, AStopLeavesNothing) {
    StopSource stop;
    stop.request_stop();
    WorkProgress progress(stop.get_token());
    const BagRequest wanted = request(writeDocument("mix.omf"));
    EXPECT_THROW(static_cast<void>(Bagging(wanted, progress).run()), AAFCancellationError);
    EXPECT_FALSE(fs::exists(bag()));
    EXPECT_EQ(std::distance(fs::directory_iterator(folder_.file("")), fs::directory_iterator()), 1);
}

}  // namespace
}  // namespace trellant::bag
