// SPDX-License-Identifier: Apache-2.0
#include <trellant/exporter/exporter.h>
#include <trellant/exporter/final_places.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <trellant_testing/byte_writer.h>
#include <trellant_testing/temporary_directory.h>

namespace trellant::testing {
namespace {

namespace fs = std::filesystem;

using ::testing::HasSubstr;

class FinalPlacesTest : public ::testing::Test {
  protected:
    FinalPlacesTest() {
        fs::create_directory(folder_.file("out"));
        fs::create_directory(folder_.file("staged.media"));
        writeFile(folder_.file("staged"), bytesOf("new"));
        writeFile(folder_.file("staged.media") + "/a.wav", bytesOf("new a"));
    }
    [[nodiscard]] FinalPlaces places(bool force) const { return {folder_.file("out"), force}; }
    [[nodiscard]] std::string out(const std::string& name) const {
        return folder_.file("out") + "/" + name;
    }
    static std::string refusal(const std::function<void()>& action) {
        try {
            action();
        } catch (const ExportTargetError& error) {
            return error.what();
        }
        return "no refusal";
    }

    TemporaryDirectory folder_;
};

TEST_F(FinalPlacesTest, FreeNamesAreTaken) {
    const FinalPlaces free = places(false);
    free.check({"mix.aaf"}, "mix.media");
    free.moveFolder(folder_.file("staged.media"), "mix.media");
    free.moveFile(folder_.file("staged"), "mix.aaf");
    EXPECT_EQ(readFile(out("mix.aaf")), bytesOf("new"));
    EXPECT_EQ(readFile(out("mix.media/a.wav")), bytesOf("new a"));
    EXPECT_FALSE(fs::exists(folder_.file("staged")));
}

TEST_F(FinalPlacesTest, AFileThatIsThereStaysUnlessForced) {
    writeFile(out("mix.aaf"), bytesOf("mine"));
    const std::string text =
        "mix.aaf is there already; --force replaces it, --name chooses another name";
    EXPECT_EQ(refusal([&] { places(false).check({"mix.aaf"}, "mix.media"); }), text);
    EXPECT_EQ(refusal([&] { places(false).moveFile(folder_.file("staged"), "mix.aaf"); }), text);
    EXPECT_EQ(readFile(out("mix.aaf")), bytesOf("mine"));
    places(true).check({"mix.aaf"}, "mix.media");
    places(true).moveFile(folder_.file("staged"), "mix.aaf");
    EXPECT_EQ(readFile(out("mix.aaf")), bytesOf("new"));
}

TEST_F(FinalPlacesTest, AFileThatIsReadIsNeverReplaced) {
    writeFile(folder_.file("hand-off.omf"), bytesOf("read"));
    fs::create_hard_link(folder_.file("hand-off.omf"), out("mix.aaf"));
    FinalPlaces forced = places(true);
    forced.protect(folder_.file("hand-off.omf"));
    EXPECT_THAT(refusal([&] { forced.check({"mix.aaf"}, "mix.media"); }),
                HasSubstr("is read by this export and is not replaced"));
    EXPECT_THAT(refusal([&] { forced.moveFile(folder_.file("staged"), "mix.aaf"); }),
                HasSubstr("is read by this export"));
    EXPECT_EQ(readFile(out("mix.aaf")), bytesOf("read"));
}

TEST_F(FinalPlacesTest, AMediaFileThatIsReadKeepsAllFilesWhereTheyAre) {
    fs::create_directory(out("mix.media"));
    writeFile(out("mix.media/a.wav"), bytesOf("read"));
    writeFile(folder_.file("staged.media") + "/0.wav", bytesOf("new 0"));
    FinalPlaces forced = places(true);
    forced.protect(out("mix.media/a.wav"));
    EXPECT_THAT(refusal([&] { forced.moveFolder(folder_.file("staged.media"), "mix.media"); }),
                HasSubstr("mix.media/a.wav is read by this export"));
    EXPECT_EQ(readFile(out("mix.media/a.wav")), bytesOf("read"));
    EXPECT_FALSE(fs::exists(out("mix.media/0.wav")));
}

TEST_F(FinalPlacesTest, AFolderOfMediaWithFilesStaysUnlessForced) {
    fs::create_directory(out("mix.media"));
    places(false).check({}, "mix.media");
    writeFile(out("mix.media/a.wav"), bytesOf("old a"));
    writeFile(out("mix.media/mine.wav"), bytesOf("mine"));
    EXPECT_THAT(refusal([&] { places(false).check({}, "mix.media"); }),
                HasSubstr("mix.media is there already"));
    EXPECT_THAT(
        refusal([&] { places(false).moveFolder(folder_.file("staged.media"), "mix.media"); }),
        HasSubstr("mix.media/a.wav is there already"));
    places(true).moveFolder(folder_.file("staged.media"), "mix.media");
    EXPECT_EQ(readFile(out("mix.media/a.wav")), bytesOf("new a"));
    EXPECT_EQ(readFile(out("mix.media/mine.wav")), bytesOf("mine"));
}

TEST_F(FinalPlacesTest, FoldersAndOtherThingsAreNeverReplaced) {
    fs::create_directory(out("mix.aaf"));
    writeFile(out("mix.media"), bytesOf("a file"));
    EXPECT_THAT(refusal([&] { places(true).check({"mix.aaf"}, "x"); }),
                HasSubstr("mix.aaf is there already and is no file"));
    EXPECT_THAT(refusal([&] { places(true).check({}, "mix.media"); }),
                HasSubstr("mix.media is there already and is no folder"));
}

TEST_F(FinalPlacesTest, ALinkIsReplacedAndNotWhatItLeadsTo) {
    writeFile(folder_.file("elsewhere"), bytesOf("mine"));
    fs::create_symlink(folder_.file("elsewhere"), out("mix.aaf"));
    places(true).moveFile(folder_.file("staged"), "mix.aaf");
    EXPECT_EQ(readFile(folder_.file("elsewhere")), bytesOf("mine"));
    EXPECT_EQ(readFile(out("mix.aaf")), bytesOf("new"));
}

}  // namespace
}  // namespace trellant::testing
