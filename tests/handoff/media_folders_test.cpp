// SPDX-License-Identifier: Apache-2.0
// Which files in folders bear a wanted name, and in which order.
#include <trellant/handoff/media_folders.h>
#include <trellant/handoff/missing_media.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <trellant_testing/byte_writer.h>
#include <trellant_testing/temporary_directory.h>
#include <vector>

namespace trellant::testing {
namespace {

namespace fs = std::filesystem;

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class MediaFoldersTest : public ::testing::Test {
  protected:
    std::string file(const std::string& place) {
        fs::create_directories(fs::path(folder_.file(place)).parent_path());
        return writeFile(folder_.file(place), bytesOf(place));
    }
    /// What is found in the folder and below, by paths alone.
    struct Read {
        MediaFolders folders;
        [[nodiscard]] std::vector<std::string> named(const std::string& wanted) const {
            std::vector<std::string> paths;
            for (const MediaFile& file : folders.named(wanted)) {
                paths.push_back(file.path);
            }
            return paths;
        }
    };
    Read read(const std::vector<std::string>& folders,
              const std::vector<std::string>& ignored = {}) {
        Read result{MediaFolders(ignored, progress_)};
        for (const std::string& folder : folders) {
            result.folders.addFolder(folder);
        }
        return result;
    }

    TemporaryDirectory folder_;
    WorkProgress progress_;
};

TEST_F(MediaFoldersTest, AudioFilesAreFoundByNameInAnyCase) {
    const std::string first = file("Kick.WAV");
    const std::string second = file("deep/er/kick.wav");
    file("kick.txt");
    file("kick");
    EXPECT_THAT(read({folder_.path().string()}).named("kick.wav"), ElementsAre(first, second));
    EXPECT_THAT(read({folder_.path().string()}).named("kick.txt"), IsEmpty());
    EXPECT_THAT(read({folder_.path().string()}).named("kick"), IsEmpty());
}

TEST_F(MediaFoldersTest, EveryAudioExtensionCounts) {
    for (const std::string extension : {"wav", "wave", "aif", "aiff", "AIFC"}) {
        const std::string path = file("a." + extension);
        EXPECT_THAT(read({folder_.path().string()}).named(wantedFileName(path)), ElementsAre(path));
    }
}

TEST_F(MediaFoldersTest, HiddenFilesAndFoldersArePassedOver) {
    file(".hidden/kick.wav");
    file(".kick.wav");
    EXPECT_THAT(read({folder_.path().string()}).named("kick.wav"), IsEmpty());
    EXPECT_THAT(read({folder_.path().string()}).named(".kick.wav"), IsEmpty());
}

TEST_F(MediaFoldersTest, AudioOfAnExportIsPassedOverUnlessItsFolderIsNamed) {
    const std::string own = file("kick.wav");
    const std::string copy = file("out/mix.media/kick.wav");
    EXPECT_THAT(read({folder_.path().string()}).named("kick.wav"), ElementsAre(own, copy));
    file("out/mix.losses.json");
    EXPECT_THAT(read({folder_.path().string()}).named("kick.wav"), ElementsAre(own));
    EXPECT_THAT(read({folder_.file("out/mix.media")}).named("kick.wav"), ElementsAre(copy));
}

TEST_F(MediaFoldersTest, FileThatTwoFoldersReachCountsOnce) {
    const std::string path = file("deep/kick.wav");
    fs::create_symlink(path, folder_.file("zzz.wav"));
    const auto found = read({folder_.path().string(), folder_.file("deep")});
    EXPECT_EQ(found.named("kick.wav").size() + found.named("zzz.wav").size(), 1U);
}

TEST_F(MediaFoldersTest, LinkToAFolderIsNotEntered) {
    const TemporaryDirectory elsewhere;
    writeFile(elsewhere.file("kick.wav"), bytesOf("a"));
    fs::create_directory_symlink(elsewhere.path(), folder_.file("link"));
    fs::create_directory_symlink(folder_.path(), folder_.file("loop"));
    EXPECT_THAT(read({folder_.path().string()}).named("kick.wav"), IsEmpty());
}

TEST_F(MediaFoldersTest, IgnoredFilesAreNoFinds) {
    const std::string ignored = file("a/kick.wav");
    const std::string other = file("b/kick.wav");
    EXPECT_THAT(read({folder_.path().string()}, {ignored}).named("kick.wav"), ElementsAre(other));
}

TEST_F(MediaFoldersTest, FolderThatIsNotThereHoldsNothing) {
    EXPECT_THAT(read({folder_.file("nowhere")}).named("kick.wav"), IsEmpty());
}

TEST_F(MediaFoldersTest, FilesBesideTheHandOffComeFirst) {
    const std::string far = file("a/kick.wav");
    const std::string beside = file("z/audio/kick.wav");
    MediaFolders folders({}, progress_);
    folders.addBeside(folder_.file("z/mix.omf"));
    folders.addFolder(folder_.path().string());
    EXPECT_THAT(folders.named("kick.wav"),
                ElementsAre(MediaFile{beside, true}, MediaFile{far, false}));
}

TEST_F(MediaFoldersTest, BesideTheHandOffTwoLevelsBelowAreRead) {
    const std::string second = file("one/two/kick.wav");
    file("one/two/three/kick.wav");
    MediaFolders folders({}, progress_);
    folders.addBeside(folder_.file("mix.omf"));
    EXPECT_THAT(folders.named("kick.wav"), ElementsAre(MediaFile{second, true}));
    EXPECT_FALSE(folders.incomplete());
}

TEST(WantedFileName, IsTheLowerCasedLastPartOfAnySystemsPath) {
    EXPECT_EQ(wantedFileName("D:\\Audio\\Kick 1.WAV"), "kick 1.wav");
    EXPECT_EQ(wantedFileName("/Volumes/Audio/Kick.wav"), "kick.wav");
    EXPECT_EQ(wantedFileName("file:///a/b/Kick.wav"), "kick.wav");
    EXPECT_EQ(wantedFileName("\xC3\x84tna.wav"), "\xC3\xA4tna.wav");
    EXPECT_EQ(wantedFileName("a/b//"), "b");
    EXPECT_EQ(wantedFileName("\\/"), "");
    EXPECT_EQ(wantedFileName(""), "");
}

TEST(Misfit, IsRateThenChannelsThenLength) {
    const SourceNeeds needs{.sampleRate = AAFRational(48'000), .channels = 2, .frames = 1'000};
    AudioFacts facts;
    facts.format.sampleRate = AAFRational(48'000);
    facts.format.channels = 2;
    facts.frames = 1'000;
    EXPECT_EQ(misfit(facts, needs), std::nullopt);
    facts.frames = 999;
    EXPECT_EQ(misfit(facts, needs), "too short, the clips need 1000 samples");
    facts.frames.reset();
    EXPECT_EQ(misfit(facts, needs), "nobody knows whether it is long enough");
    facts.frames = 1'001;
    facts.format.channels = 1;
    EXPECT_EQ(misfit(facts, needs), "too few channels, the clips need 2");
    facts.format.channels = 3;
    EXPECT_EQ(misfit(facts, needs), std::nullopt);
    facts.format.sampleRate = AAFRational(44'100);
    EXPECT_EQ(misfit(facts, needs), "another rate, the clips need 48000 Hz");
    facts.format.sampleRate.reset();
    EXPECT_EQ(misfit(facts, needs), "another rate, the clips need 48000 Hz");
}

}  // namespace
}  // namespace trellant::testing
