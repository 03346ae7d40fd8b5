// SPDX-License-Identifier: Apache-2.0
// Final names: what is kept, what gives way, and that nothing is replaced unasked.
#include "placement.h"

#include <trellant/base/numbered_name.h>
#include <trellant/client/errors.h>
#include <trellant/extraction/staging.h>
#include <trellant/io/errors.h>

#include <gmock/gmock.h>

#include <filesystem>
#include <optional>
#include <trellant_testing/byte_writer.h>
#include <trellant_testing/temporary_directory.h>

namespace trellant::testing {
namespace {

namespace fs = std::filesystem;

/// By sha256sum, of "abc" and of "xyz".
const std::string abcDigest = "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad";
const std::string xyzDigest = "3608bca1e44ea6c4d268eb6db02260269892c0b42b86bbf1e77a6fa16c3c9282";

TEST(NumberedName, WholeNameHasNoNumber) {
    EXPECT_EQ(NumberedName::whole("Kick_2.wav"), (NumberedName{"Kick_2", "wav", 1}));
    EXPECT_EQ(NumberedName::whole("Kick"), (NumberedName{"Kick", "", 1}));
    EXPECT_EQ(NumberedName::whole(".wav"), (NumberedName{".wav", "", 1}));
}

TEST(NumberedName, NumberIsTakenOffTheEnd) {
    EXPECT_EQ(NumberedName::numbered("Kick_2.wav"), (NumberedName{"Kick", "wav", 2}));
    EXPECT_EQ(NumberedName::numbered("Kick_1000.wav"), (NumberedName{"Kick", "wav", 1'000}));
}

TEST(NumberedName, WhatIsNoNumberStaysInTheName) {
    for (const std::string stem : {"Kick_", "Kick_1", "Kick_02", "Kick_2b", "Kick_-2", "Kick 2",
                                   "Kick_99999999999999999999"}) {
        EXPECT_EQ(NumberedName::numbered(stem + ".wav"), (NumberedName{stem, "wav", 1}));
    }
}

TEST(NumberedName, FitsTheLongestNameOfAFileSystem) {
    const NumberedName name{std::string(253, 'a'), "wav", 1};
    EXPECT_EQ(name.withNumber(1), std::string(251, 'a') + ".wav");
    EXPECT_EQ(name.withNumber(1'000), std::string(246, 'a') + "_1000.wav");
}

class PlacementTest : public ::testing::Test {
  protected:
    std::string staged(const std::string& name, const std::string& text) {
        return writeFile(staging_.file(name), bytesOf(text));
    }
    void stands(const std::string& name, const std::string& text) {
        writeFile(folder_.file(name), bytesOf(text));
    }
    std::string textAt(const std::string& name) { return textOf(readFile(folder_.file(name))); }
    static NumberedName named(const std::string& name) { return NumberedName::whole(name); }

    StopSource stop_;
    TemporaryDirectory folder_;
    TemporaryDirectory staging_;
    WorkProgress progress_{stop_.get_token()};
    Placement placement_{folder_.path().string(), false, progress_};
    Placement forcing_{folder_.path().string(), true, progress_};
};

TEST_F(PlacementTest, FreeNameIsTaken) {
    const std::string from = staged("a", "abc");
    const PlacedFile placed = placement_.place(from, named("Kick.wav"));
    EXPECT_EQ(placed.path, folder_.file("Kick.wav"));
    EXPECT_EQ(placed.name, "Kick.wav");
    EXPECT_EQ(placed.sha256, abcDigest);
    EXPECT_FALSE(placed.wasThere);
    EXPECT_FALSE(placed.renumbered);
    EXPECT_EQ(textAt("Kick.wav"), "abc");
    EXPECT_FALSE(fs::exists(from));
}

TEST_F(PlacementTest, SameBytesUnderTheNameAreKept) {
    stands("Kick.wav", "abc");
    const std::string from = staged("a", "abc");
    const PlacedFile placed = placement_.place(from, named("Kick.wav"));
    EXPECT_EQ(placed.name, "Kick.wav");
    EXPECT_TRUE(placed.wasThere);
    EXPECT_FALSE(fs::exists(from));
    EXPECT_FALSE(fs::exists(folder_.file("Kick_2.wav")));
}

TEST_F(PlacementTest, OtherBytesOfTheSameLengthAreOthers) {
    stands("Kick.wav", "xyz");
    const PlacedFile placed = placement_.place(staged("a", "abc"), named("Kick.wav"));
    EXPECT_EQ(placed.name, "Kick_2.wav");
    EXPECT_TRUE(placed.renumbered);
    EXPECT_EQ(textAt("Kick.wav"), "xyz");
    EXPECT_EQ(textAt("Kick_2.wav"), "abc");
}

TEST_F(PlacementTest, NumbersGoOnFromTheOneThatIsWanted) {
    stands("Kick_2.wav", "other");
    const PlacedFile placed = placement_.place(staged("a", "abc"), {"Kick", "wav", 2});
    EXPECT_EQ(placed.name, "Kick_3.wav");
    EXPECT_TRUE(placed.renumbered);
}

TEST_F(PlacementTest, SameBytesUnderALaterNumberAreKept) {
    stands("Kick.wav", "other");
    stands("Kick_2.wav", "abc");
    const PlacedFile placed = placement_.place(staged("a", "abc"), named("Kick.wav"));
    EXPECT_EQ(placed.name, "Kick_2.wav");
    EXPECT_TRUE(placed.wasThere);
}

TEST_F(PlacementTest, EqualFilesOfOneRunDoNotShareAName) {
    stands("Kick.wav", "abc");
    EXPECT_EQ(placement_.place(staged("a", "abc"), named("Kick.wav")).name, "Kick.wav");
    EXPECT_EQ(placement_.place(staged("b", "abc"), named("Kick.wav")).name, "Kick_2.wav");
    EXPECT_EQ(textAt("Kick_2.wav"), "abc");
}

TEST_F(PlacementTest, LinkIsNeverFollowed) {
    stands("target", "abc");
    fs::create_symlink(folder_.file("target"), folder_.file("Kick.wav"));
    fs::create_symlink(folder_.file("nowhere"), folder_.file("Kick_2.wav"));
    EXPECT_EQ(placement_.place(staged("a", "abc"), named("Kick.wav")).name, "Kick_3.wav");
    EXPECT_FALSE(fs::exists(folder_.file("nowhere")));
}

TEST_F(PlacementTest, ForceReplacesFilesAndLinksThemselves) {
    stands("target", "mine");
    stands("Kick.wav", "other");
    fs::create_symlink(folder_.file("target"), folder_.file("Snare.wav"));
    EXPECT_EQ(forcing_.place(staged("a", "abc"), named("Kick.wav")).name, "Kick.wav");
    EXPECT_EQ(forcing_.place(staged("b", "xyz"), named("Snare.wav")).sha256, xyzDigest);
    EXPECT_EQ(textAt("Kick.wav"), "abc");
    EXPECT_EQ(textAt("Snare.wav"), "xyz");
    EXPECT_FALSE(fs::is_symlink(folder_.file("Snare.wav")));
    EXPECT_EQ(textAt("target"), "mine");
}

TEST_F(PlacementTest, ForceDoesNotReplaceFoldersNorFilesOfTheSameRun) {
    fs::create_directory(folder_.file("Kick.wav"));
    EXPECT_EQ(forcing_.place(staged("a", "abc"), named("Kick.wav")).name, "Kick_2.wav");
    EXPECT_EQ(forcing_.place(staged("b", "xyz"), named("Kick.wav")).name, "Kick_3.wav");
    EXPECT_EQ(textAt("Kick_2.wav"), "abc");
    EXPECT_TRUE(fs::is_directory(folder_.file("Kick.wav")));
}

TEST_F(PlacementTest, ForceKeepsAFileWithTheSameBytes) {
    stands("Kick.wav", "abc");
    const PlacedFile placed = forcing_.place(staged("a", "abc"), named("Kick.wav"));
    EXPECT_EQ(placed.name, "Kick.wav");
    EXPECT_TRUE(placed.wasThere);
    EXPECT_FALSE(fs::exists(staging_.file("a")));
}

TEST_F(PlacementTest, FilesThatAreReadGiveWayToNoForceButAreKeptAsEqual) {
    stands("Kick.wav", "abc");
    forcing_.protect(folder_.file("Kick.wav"));
    EXPECT_EQ(forcing_.place(staged("a", "xyz"), named("Kick.wav")).name, "Kick_2.wav");
    const PlacedFile same = forcing_.place(staged("b", "abc"), named("Kick.wav"));
    EXPECT_EQ(same.name, "Kick.wav");
    EXPECT_TRUE(same.wasThere);
}

TEST_F(PlacementTest, AGapComesBeforeEqualBytesBehindIt) {
    stands("Kick.wav", "other");
    stands("Kick_3.wav", "abc");
    EXPECT_EQ(placement_.place(staged("a", "xyz"), {"Kick", "wav", 3}).name, "Kick_4.wav");
    EXPECT_EQ(placement_.place(staged("b", "abc"), named("Kick.wav")).name, "Kick_2.wav");
    EXPECT_EQ(placement_.place(staged("c", "abc"), named("Kick.wav")).name, "Kick_3.wav");
}

// Nine names without a number of two digits, then one with.
TEST_F(PlacementTest, EqualBytesAreFoundBehindNumbersOfMoreDigits) {
    stands("Kick.wav", "other");
    for (int number = 2; number <= 12; ++number) {
        stands("Kick_" + std::to_string(number) + ".wav", number == 11 ? "abc" : "def");
    }
    EXPECT_EQ(placement_.place(staged("a", "abc"), named("Kick.wav")).name, "Kick_11.wav");
    EXPECT_EQ(placement_.place(staged("b", "abc"), named("Kick.wav")).name, "Kick_13.wav");
}

// Bytes that are read, of files that stand there and of new ones, are told as progress.
TEST_F(PlacementTest, EachFileThatStandsThereIsReadOnceForAllThatAreNew) {
    constexpr int count = 100;
    for (int number = 1; number <= count; ++number) {
        const std::string tail = number == 1 ? "" : "_" + std::to_string(number);
        stands("Kick" + tail + ".wav", "old" + std::to_string(1'000 + number));
    }
    for (int number = 1; number <= count; ++number) {
        const std::string name = std::to_string(number);
        placement_.place(staged(name, "new" + std::to_string(1'000 + number)), named("Kick.wav"));
    }
    EXPECT_EQ(placement_.placed().back().name, "Kick_200.wav");
    EXPECT_EQ(progress_.bytes(), 2U * count * 7U);
}

TEST_F(PlacementTest, StopLeavesWholeFilesOnly) {
    EXPECT_EQ(placement_.place(staged("a", "abc"), named("Kick.wav")).name, "Kick.wav");
    const std::string second = staged("b", "xyz");
    stop_.request_stop();
    EXPECT_THROW(placement_.place(second, named("Snare.wav")), AAFCancellationError);
    EXPECT_EQ(textAt("Kick.wav"), "abc");
    EXPECT_FALSE(fs::exists(folder_.file("Snare.wav")));
    EXPECT_EQ(placement_.placed().size(), 1U);
}

TEST_F(PlacementTest, StagedFileThatIsGoneIsTheSystemsError) {
    try {
        placement_.place(staging_.file("gone"), named("Kick.wav"));
        FAIL() << "no error";
    } catch (const FileSystemError& error) {
        EXPECT_EQ(std::string(error.what()),
                  "cannot open \"" + staging_.file("gone") + "\": No such file or directory");
    }
}

TEST(Staging, IsHiddenAndGoneAtTheEnd) {
    const TemporaryDirectory folder;
    std::string path;
    {
        const Staging staging(folder.path().string());
        path = staging.path();
        EXPECT_TRUE(fs::path(path).filename().string().starts_with(".trellant-"));
        writeFile(staging.file("a"), bytesOf("abc"));
        writeFile(staging.file("b"), bytesOf("de"));
        EXPECT_EQ(staging.bytes(), 5U);
    }
    EXPECT_FALSE(fs::exists(path));
}

TEST(Staging, HoldsRegularFilesDirectlyInItOnly) {
    const TemporaryDirectory folder;
    const Staging staging(folder.path().string());
    writeFile(staging.file("a.wav"), bytesOf("abc"));
    fs::create_directory(staging.file("sub"));
    writeFile(staging.file("sub/b.wav"), bytesOf("abc"));
    fs::create_symlink(staging.file("a.wav"), staging.file("link.wav"));
    EXPECT_TRUE(staging.holds(staging.file("a.wav")));
    EXPECT_FALSE(staging.holds(staging.file("sub")));
    EXPECT_FALSE(staging.holds(staging.file("sub/b.wav")));
    EXPECT_FALSE(staging.holds(staging.file("link.wav")));
    EXPECT_FALSE(staging.holds(
        staging.file("../" + fs::path(staging.path()).filename().string() + "/a.wav")));
    EXPECT_FALSE(staging.holds(staging.path()));
    EXPECT_FALSE(staging.holds("/etc/passwd"));
}

TEST(Staging, FreeFileCountsOnFromTheName) {
    const TemporaryDirectory folder;
    const Staging staging(folder.path().string());
    EXPECT_EQ(staging.freeFile({"Kick", "wav"}), staging.file("Kick.wav"));
    writeFile(staging.file("Kick.wav"), bytesOf("abc"));
    writeFile(staging.file("Kick_2.wav"), bytesOf("abc"));
    EXPECT_EQ(staging.freeFile({"Kick", "wav"}), staging.file("Kick_3.wav"));
}

}  // namespace
}  // namespace trellant::testing
