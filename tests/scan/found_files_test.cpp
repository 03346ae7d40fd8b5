// SPDX-License-Identifier: Apache-2.0
#include <trellant/scan/found_files.h>

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <set>
#include <string>
#include <trellant_testing/byte_writer.h>
#include <trellant_testing/temporary_directory.h>
#include <utility>
#include <vector>

namespace trellant::scan {
namespace {

namespace fs = std::filesystem;

using testing::bytesOf;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using testing::TemporaryDirectory;
using ::testing::UnorderedElementsAre;
using testing::writeFile;

struct Found {
    std::vector<FoundFile> files{};
    std::vector<std::pair<std::string, std::string>> failures{};
    std::size_t looked = 0;

    [[nodiscard]] std::vector<std::string> paths() const {
        std::vector<std::string> all;
        for (const FoundFile& file : files) {
            all.push_back(file.path);
        }
        return all;
    }
};

Found search(const FindingPlaces& places) {
    Found found;
    findFiles(places,
              {.file = [&](FoundFile file) { found.files.push_back(std::move(file)); },
               .failure = [&](const std::string& path,
                              const std::string& why) { found.failures.emplace_back(path, why); },
               .looked = [&] { ++found.looked; }});
    return found;
}

class FoundFiles : public ::testing::Test {
  protected:
    [[nodiscard]] std::string make(const std::string& name) const {
        const std::string path = folder_.file(name);
        fs::create_directories(fs::path(path).parent_path());
        return writeFile(path, bytesOf("abc"));
    }

    TemporaryDirectory folder_;
};

TEST_F(FoundFiles, AreAllFilesBelowAFolderWithoutLinks) {
    const std::string first = make("a");
    const std::string second = make("b/c/d.omf");
    fs::create_symlink(first, folder_.file("link"));
    fs::create_directory_symlink(folder_.file("b"), folder_.file("circle"));
    const Found found = search({.paths = {folder_.path().native() + "/"}});
    EXPECT_THAT(found.paths(), UnorderedElementsAre(first, second));
    EXPECT_EQ(found.files.front().size, 3U);
    EXPECT_GT(found.files.front().modified, 0);
    // a, b, c, d.omf, link and circle.
    EXPECT_EQ(found.looked, 6U);
    EXPECT_EQ(countEntries({.paths = {folder_.path().native()}}, [] {}), 6U);
}

TEST_F(FoundFiles, NamedOnesMayBeLinksAndAreTakenByTheirAbsoluteNames) {
    static_cast<void>(make("x/a"));
    fs::create_symlink(folder_.file("x/a"), folder_.file("link"));
    const Found found = search({.paths = {folder_.path().native() + "/x/../link"}});
    EXPECT_THAT(found.paths(), ElementsAre(folder_.file("link")));
    EXPECT_EQ(found.files.front().size, 3U);
}

TEST_F(FoundFiles, OneThatIsNotThereIsToldWithTheReason) {
    const Found found = search({.paths = {folder_.file("none")}});
    ASSERT_THAT(found.files, SizeIs(1));
    EXPECT_EQ(found.files[0].failure, "No such file or directory");
}

TEST_F(FoundFiles, AListHasAPathOnEachLine) {
    const std::string first = make("a b");
    const std::string second = make("c");
    std::ofstream(folder_.file("list")) << first << "\n\n" << second;
    const FindingPlaces places{.lists = {folder_.file("list")}};
    const Found found = search(places);
    EXPECT_THAT(found.paths(), ElementsAre(first, second));
    EXPECT_EQ(found.looked, 2U);
    EXPECT_EQ(countEntries(places, [] {}), 2U);
}

TEST_F(FoundFiles, AListThatIsNoListIsAFailure) {
    std::ofstream(folder_.file("list")) << std::string(200'000, 'x');
    EXPECT_THAT(search({.lists = {folder_.file("list")}}).failures,
                ElementsAre(std::pair(folder_.file("list"),
                                      std::string("a line is longer than any path"))));
    EXPECT_THAT(
        search({.lists = {folder_.file("none")}}).failures,
        ElementsAre(std::pair(folder_.file("none"), std::string("No such file or directory"))));
}

TEST_F(FoundFiles, ShardsHoldEachFileOnce) {
    std::set<std::string> all;
    for (int i = 0; i < 100; ++i) {
        all.insert(make("f" + std::to_string(i)));
    }
    std::set<std::string> together;
    std::size_t sum = 0;
    for (std::uint64_t number = 1; number <= 4; ++number) {
        const Found found =
            search({.paths = {folder_.path().native()}, .shard = {.number = number, .count = 4}});
        // A quarter of a hundred, give or take what no fair hash exceeds.
        EXPECT_GT(found.files.size(), 8U);
        EXPECT_LT(found.files.size(), 45U);
        sum += found.files.size();
        for (const std::string& path : found.paths()) {
            together.insert(path);
        }
    }
    EXPECT_EQ(sum, 100U);
    EXPECT_EQ(together, all);
}

TEST(ScanShard, IsThatOfThePathAloneSoThatAllRunsAgree) {
    const auto shardOf = [](const char* path) {
        std::uint64_t number = 1;
        while (!Shard{.number = number, .count = 1'000}.holds(path)) {
            ++number;
        }
        return number;
    };
    EXPECT_EQ(shardOf("/archive/a.omf"), shardOf("/archive/a.omf"));
    EXPECT_NE(shardOf("/archive/a.omf"), shardOf("/archive/b.omf"));
    EXPECT_TRUE(Shard().holds("/archive/a.omf"));
}

}  // namespace
}  // namespace trellant::scan
