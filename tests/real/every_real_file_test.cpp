// SPDX-License-Identifier: Apache-2.0
// What holds for any file of a workstation, whatever is in it.
#include "real_files.h"

#include <trellant/base/url.h>
#include <trellant/omf/audio_probe.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace trellant::testing {

namespace {

/// A timeline as it is without extraction.
AAFTimeline withoutExtractedFiles(AAFTimeline timeline) {
    for (AAFSourceEssence& essence : timeline.essences) {
        if (essence.embedded) {
            essence.fileURL.reset();
        }
    }
    return timeline;
}

void expectExtracted(const AAFSourceEssence& essence) {
    SCOPED_TRACE(essence.id);
    ASSERT_TRUE(essence.fileURL.has_value());
    const auto path = pathOfFileURL(essence.fileURL->text);
    ASSERT_TRUE(path.has_value());
    const auto format = AudioProbe::probeFile(*path);
    ASSERT_TRUE(format.has_value());
    EXPECT_EQ(format->sampleRate, essence.sampleRate);
    EXPECT_EQ(format->channels, essence.channelCount);
    EXPECT_EQ(format->bitDepth, essence.bitDepth);
    EXPECT_EQ(format->codec, essence.codec);
}

class EveryRealFile : public ::testing::Test {
  protected:
    void SetUp() override {
        const auto files = realFiles();
        if (!files) {
            GTEST_SKIP() << "TRELLANT_REAL_FILES is not set";
        }
        files_ = *files;
        ASSERT_FALSE(files_.empty()) << "no .omf in the folder that TRELLANT_REAL_FILES names";
    }
    [[nodiscard]] const std::vector<std::string>& files() const { return files_; }

  private:
    std::vector<std::string> files_;
};

TEST_F(EveryRealFile, IsInspectedWithoutATrace) {
    for (const std::string& path : files()) {
        SCOPED_TRACE(path);
        const RealFileRun inspected("inspect", path);
        ASSERT_EQ(inspected.run().status, 0) << inspected.run().errors;
        const auto result = inspected.result();
        EXPECT_FALSE(result.timeline.events.empty());
        EXPECT_FALSE(result.diagnostics.empty());
        EXPECT_FALSE(inspected.workFiles().has_value());
        EXPECT_EQ(inspected.run().errors.find("trellant-omf: "), std::string::npos);
    }
}

TEST_F(EveryRealFile, GivesTheSameTimelineWithItsAudioTakenOut) {
    for (const std::string& path : files()) {
        SCOPED_TRACE(path);
        const RealFileRun inspected("inspect", path);
        const RealFileRun extracted("extractAndInspect", path);
        ASSERT_EQ(inspected.run().status, 0) << inspected.run().errors;
        ASSERT_EQ(extracted.run().status, 0) << extracted.run().errors;
        const auto result = extracted.result();
        EXPECT_TRUE(withoutExtractedFiles(result.timeline) == inspected.result().timeline);
        EXPECT_EQ(result.diagnostics, inspected.result().diagnostics);
    }
}

TEST_F(EveryRealFile, GivesAudioFilesThatAreWhatTheResultSays) {
    for (const std::string& path : files()) {
        SCOPED_TRACE(path);
        const RealFileRun extracted("extractAndInspect", path);
        ASSERT_EQ(extracted.run().status, 0) << extracted.run().errors;
        std::size_t embedded = 0;
        for (const AAFSourceEssence& essence : extracted.result().timeline.essences) {
            if (essence.embedded) {
                ++embedded;
                expectExtracted(essence);
            }
        }
        ASSERT_TRUE(extracted.workFiles().has_value());
        EXPECT_EQ(extracted.workFiles()->size(), embedded);
    }
}

TEST_F(EveryRealFile, StaysAsItIs) {
    for (const std::string& path : files()) {
        SCOPED_TRACE(path);
        const Bytes before = readFile(path);
        const auto written = std::filesystem::last_write_time(path);
        ASSERT_EQ(RealFileRun("extractAndInspect", path).run().status, 0);
        EXPECT_TRUE(readFile(path) == before);
        EXPECT_EQ(std::filesystem::last_write_time(path), written);
    }
}

TEST(RealFilesOfVersion1, AreRefusedWithoutATrace) {
    const auto files = realFilesOfVersion1();
    if (!files) {
        GTEST_SKIP() << "TRELLANT_REAL_FILES is not set";
    }
    for (const std::string& path : *files) {
        SCOPED_TRACE(path);
        const Bytes before = readFile(path);
        const RealFileRun refused("extractAndInspect", path);
        EXPECT_EQ(refused.run().status, 2);
        EXPECT_EQ(refused.run().output, "");
        EXPECT_TRUE(refused.run().errors.ends_with(
            "\ntrellant-omf: Unsupported OMF/Bento feature: not an OMF 2.x object model "
            "(OMFI:OOBJ:ObjClass registry entry missing)\n"));
        EXPECT_THAT(refused.workFiles(), ::testing::Optional(::testing::IsEmpty()));
        EXPECT_TRUE(readFile(path) == before);
    }
}

}  // namespace

}  // namespace trellant::testing
