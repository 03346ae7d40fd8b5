// SPDX-License-Identifier: Apache-2.0
#include <trellant/base/read_files.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

namespace trellant {
namespace {

class ReadFilesTest : public ::testing::Test {
  protected:
    ReadFilesTest() {
        folder_ = ::testing::TempDir() + "read-files-" +
                  ::testing::UnitTest::GetInstance()->current_test_info()->name();
        std::filesystem::remove_all(folder_);
        std::filesystem::create_directory(folder_);
        std::ofstream(at("mix.omf")) << "x";
        std::ofstream(at("other.omf")) << "x";
    }
    ~ReadFilesTest() override { std::filesystem::remove_all(folder_); }

    [[nodiscard]] std::string at(const std::string& name) const { return folder_ + "/" + name; }

    std::string folder_;
    ReadFiles read_;
};

TEST_F(ReadFilesTest, HoldsWhatWasAddedAndNothingElse) {
    EXPECT_FALSE(read_.holds(at("mix.omf")));
    read_.add(at("mix.omf"));
    EXPECT_TRUE(read_.holds(at("mix.omf")));
    EXPECT_TRUE(read_.holds(folder_ + "/../" + std::filesystem::path(folder_).filename().native() +
                            "/mix.omf"));
    EXPECT_FALSE(read_.holds(at("other.omf")));
    EXPECT_FALSE(read_.holds(at("none")));
}

TEST_F(ReadFilesTest, KnowsAFileByEachOfItsNames) {
    std::filesystem::create_hard_link(at("mix.omf"), at("second.omf"));
    std::filesystem::create_symlink("mix.omf", at("link.omf"));
    read_.add(at("mix.omf"));
    EXPECT_TRUE(read_.holds(at("second.omf")));
    EXPECT_TRUE(read_.holds(at("link.omf")));
}

TEST_F(ReadFilesTest, HoldsTheLinkByWhichAFileWasNamed) {
    std::filesystem::create_symlink("mix.omf", at("link.omf"));
    read_.add(at("link.omf"));
    EXPECT_TRUE(read_.holds(at("link.omf")));
    EXPECT_TRUE(read_.holds(at("mix.omf")));
}

TEST_F(ReadFilesTest, AddingNothingHoldsNothing) {
    read_.add(at("none"));
    EXPECT_FALSE(read_.holds(at("none")));
}

}  // namespace
}  // namespace trellant
