// SPDX-License-Identifier: Apache-2.0
// Where a stranger's locators lead, and what a search directory may hold.
#include "places_fixture.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sys/stat.h>

namespace trellant::testing {

namespace {

namespace fs = std::filesystem;

constexpr int quickEntries = 20'000;
constexpr int entriesOfAFolder = 1'000;

class ExternalPlaces : public PlacesTest {
  protected:
    /// The locator names nothing that counts as a file, and the worker neither waits for it nor
    /// reads it.
    void expectNotTaken(const std::string& locator) {
        addExternal(locator);
        const auto result = inspect();
        EXPECT_EQ(notLocated(result), locator);
        EXPECT_EQ(result.timeline.essences.at(0).fileURL, std::nullopt);
        EXPECT_EQ(result.timeline.essences.at(0).codec, "WAVD");
    }
    void makePipe(const std::string& where) { ASSERT_EQ(::mkfifo(where.c_str(), 0600), 0); }
};

TEST_F(ExternalPlaces, PipeIsNotWaitedFor) {
    makePipe(path("pipe.wav"));
    expectNotTaken(path("pipe.wav"));
}

TEST_F(ExternalPlaces, LinkToAPipeIsNotWaitedFor) {
    makePipe(path("pipe"));
    fs::create_symlink(path("pipe"), path("link.wav"));
    expectNotTaken(path("link.wav"));
}

TEST_F(ExternalPlaces, DeviceWithoutEndIsNotRead) {
    expectNotTaken("/dev/zero");
}

TEST_F(ExternalPlaces, OwnStandardInputIsNotRead) {
    expectNotTaken("/dev/stdin");
}

TEST_F(ExternalPlaces, FolderIsNoFile) {
    expectNotTaken(search());
}

TEST_F(ExternalPlaces, LinkToItselfIsNoFile) {
    fs::create_symlink("loop.wav", path("loop.wav"));
    expectNotTaken(path("loop.wav"));
}

TEST_F(ExternalPlaces, PathBeyondTheSystemsLengthIsNoFile) {
    expectNotTaken("/" + std::string(100'000, 'a') + ".wav");
}

TEST_F(ExternalPlaces, FileThatGivesNoBytesIsAFileWithoutAFormat) {
    fs::create_directories(search("a"));
    const std::string empty = writeFile(search("a/Rain.wav"), Bytes{});
    addExternal(empty);
    const auto result = inspect();
    EXPECT_EQ(result.timeline.essences.at(0).fileURL, AAFURL{"file://" + empty});
    EXPECT_EQ(result.timeline.essences.at(0).codec, "WAVD");
}

TEST_F(ExternalPlaces, FileOfTheSystemIsNoMedia) {
    addExternal("/proc/self/environ");
    const auto result = inspect();
    EXPECT_EQ(result.timeline.essences.at(0).fileURL, std::nullopt);
    EXPECT_EQ(result.timeline.essences.at(0).codec, "WAVD");
}

TEST_F(ExternalPlaces, SearchEndsInSpiteOfLinksThatLeadBack) {
    fs::create_directories(search("a/b"));
    fs::create_symlink(search(), search("a/b/top"));
    fs::create_symlink(".", search("a/self"));
    fs::create_symlink(search("a"), search("b"));
    fs::create_symlink("y", search("x"));
    fs::create_symlink("x", search("y"));
    writeFile(search("a/b/Rain.wav"), audioOf(1));
    addExternal("D:\\Rain.wav");
    const auto result = inspect();
    EXPECT_EQ(result.timeline.essences.at(0).fileURL, AAFURL{"file://" + search("a/b/Rain.wav")});
    EXPECT_EQ(notLocated(result), "");
}

TEST_F(ExternalPlaces, SearchPassesOverWhatIsNoFile) {
    fs::create_directories(search("folder/Rain.wav"));
    makePipe(search("Rain.wav"));
    fs::create_directory(search("device"));
    fs::create_symlink("/dev/zero", search("device/Rain.wav"));
    expectNotTaken("D:\\Rain.wav");
}

TEST_F(ExternalPlaces, SearchGoesThroughFoldersOfAnyName) {
    const std::string folder = "\xFF\n\u202E";
    fs::create_directory(search(folder));
    writeFile(search(folder + "/Rain.wav"), audioOf(1));
    addExternal("D:\\Rain.wav");
    EXPECT_EQ(inspect().timeline.essences.at(0).fileURL,
              AAFURL{"file://" + search("%FF%0A%E2%80%AE/Rain.wav")});
}

TEST_F(ExternalPlaces, SearchFindsOneFileAmongManyThousands) {
    const char* const wish = std::getenv("TRELLANT_SEARCHED_ENTRIES");
    const int entries = wish == nullptr ? quickEntries : std::atoi(wish);
    ASSERT_GE(entries, entriesOfAFolder);
    for (int entry = 0; entry < entries; ++entry) {
        const auto folder = search(std::to_string(entry / entriesOfAFolder));
        if (entry % entriesOfAFolder == 0) {
            fs::create_directory(folder);
        }
        std::ofstream(folder + "/" + std::to_string(entry) + ".wav");
    }
    writeFile(search("0/Rain.wav"), audioOf(1));
    addExternal("D:\\Rain.wav");
    addExternal("D:\\" + std::to_string(entries - 1) + ".wav");
    const auto result = inspect();
    ASSERT_EQ(result.timeline.essences.size(), 2U);
    EXPECT_EQ(result.timeline.essences[0].fileURL, AAFURL{"file://" + search("0/Rain.wav")});
    EXPECT_NE(result.timeline.essences[1].fileURL, std::nullopt);
}

}  // namespace

}  // namespace trellant::testing
