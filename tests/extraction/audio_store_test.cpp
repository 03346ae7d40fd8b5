// SPDX-License-Identifier: Apache-2.0
// The store of audio: equal files once, nothing replaced, and what is left where they were.
#include <trellant/client/errors.h>
#include <trellant/extraction/audio_store.h>
#include <trellant/io/errors.h>

#include <gmock/gmock.h>

#include <filesystem>
#include <sys/stat.h>
#include <trellant_testing/byte_writer.h>
#include <trellant_testing/temporary_directory.h>
#include <unistd.h>

namespace trellant::testing {
namespace {

namespace fs = std::filesystem;
using Leaving = AudioStore::Leaving;

/// By sha256sum, of "abc" and of "xyz".
const std::string abcDigest = "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad";
const std::string abcName = "ba/78/" + abcDigest + ".wav";
const std::string xyzDigest = "3608bca1e44ea6c4d268eb6db02260269892c0b42b86bbf1e77a6fa16c3c9282";

ino_t numberOf(const std::string& path) {
    struct stat status {};
    return ::lstat(path.c_str(), &status) == 0 ? status.st_ino : 0;
}

class AudioStoring : public ::testing::Test {
  protected:
    AudioStoring() {
        fs::create_directory(store());
        fs::create_directory(folder_.file("scratch"));
    }
    [[nodiscard]] std::string store(const std::string& name = "") const {
        return folder_.file("store") + (name.empty() ? "" : "/" + name);
    }
    [[nodiscard]] std::string made(const std::string& name, const std::string& text) const {
        return writeFile(folder_.file(name), bytesOf(text));
    }
    StoredFile keep(const std::string& path, const std::string& digest,
                    Leaving leaving = Leaving::link) {
        WorkProgress progress;
        return AudioStore(store(), leaving, progress).keep(path, digest, folder_.file("scratch"));
    }

    TemporaryDirectory folder_;
};

TEST_F(AudioStoring, ANewFileIsLinkedUnderItsDigestAndCanBeReadOnly) {
    const std::string path = made("Kick.WAV", "abc");
    EXPECT_EQ(
        keep(path, abcDigest),
        (StoredFile{.name = abcName, .path = store(abcName), .wasThere = false, .isLinked = true}));
    EXPECT_EQ(textOf(readFile(store(abcName))), "abc");
    EXPECT_EQ(numberOf(store(abcName)), numberOf(path));
    struct stat status {};
    ASSERT_EQ(::stat(path.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0444U);
}

TEST_F(AudioStoring, EqualFilesBecomeOne) {
    const std::string first = made("Kick.wav", "abc");
    const std::string second = made("Other.wav", "abc");
    keep(first, abcDigest);
    const StoredFile file = keep(second, abcDigest);
    EXPECT_TRUE(file.wasThere);
    EXPECT_TRUE(file.isLinked);
    EXPECT_EQ(numberOf(second), numberOf(first));
    EXPECT_EQ(textOf(readFile(second)), "abc");
    EXPECT_TRUE(fs::is_empty(folder_.file("scratch")));
}

TEST_F(AudioStoring, TheSameFileAgainChangesNothing) {
    const std::string path = made("Kick.wav", "abc");
    keep(path, abcDigest);
    const ino_t number = numberOf(path);
    EXPECT_TRUE(keep(path, abcDigest).wasThere);
    EXPECT_EQ(numberOf(path), number);
}

TEST_F(AudioStoring, WithoutLinksTheStoreAloneHasTheFile) {
    const std::string path = made("Kick.wav", "abc");
    const StoredFile file = keep(path, abcDigest, Leaving::nothing);
    EXPECT_FALSE(file.isLinked);
    EXPECT_FALSE(fs::exists(path));
    EXPECT_EQ(textOf(readFile(file.path)), "abc");
    const StoredFile again = keep(made("Kick.wav", "abc"), abcDigest, Leaving::nothing);
    EXPECT_TRUE(again.wasThere);
    EXPECT_FALSE(fs::exists(path));
    EXPECT_EQ(again.path, file.path);
}

TEST_F(AudioStoring, AStoreOnAnotherFileSystemGetsACopy) {
    struct stat here {};
    struct stat there {};
    if (::stat("/dev/shm", &there) != 0 || ::stat(folder_.file("").c_str(), &here) != 0 ||
        here.st_dev == there.st_dev || ::access("/dev/shm", W_OK) != 0) {
        GTEST_SKIP() << "there is no second file system";
    }
    std::string other = "/dev/shm/trellant-store-XXXXXX";
    ASSERT_NE(::mkdtemp(other.data()), nullptr);
    const std::string path = made("Kick.wav", "abc");
    WorkProgress progress;
    const StoredFile file =
        AudioStore(other, Leaving::link, progress).keep(path, abcDigest, folder_.file("scratch"));
    EXPECT_FALSE(file.isLinked);
    EXPECT_FALSE(fs::exists(path));
    EXPECT_EQ(textOf(readFile(other + "/" + abcName)), "abc");
    EXPECT_EQ(std::distance(fs::directory_iterator(other), fs::directory_iterator()), 1);
    fs::remove_all(other);
}

TEST_F(AudioStoring, ADamagedFileOfTheStoreIsNoticedAndBothStay) {
    keep(made("Kick.wav", "abc"), abcDigest);
    fs::permissions(store(abcName), fs::perms::owner_write, fs::perm_options::add);
    fs::remove(store(abcName));
    writeFile(store(abcName), bytesOf("abd"));
    const std::string path = made("Again.wav", "abc");
    try {
        keep(path, abcDigest);
        FAIL() << "it was relied on";
    } catch (const AudioStoreError& error) {
        EXPECT_EQ(std::string(error.what()), "the store cannot be relied on: " + store(abcName) +
                                                 " does not hold what its name says");
    }
    EXPECT_EQ(textOf(readFile(path)), "abc");
    EXPECT_EQ(textOf(readFile(store(abcName))), "abd");
}

TEST_F(AudioStoring, WhatIsNoFileInTheStoreIsNotFollowed) {
    const std::string path = made("Kick.wav", "abc");
    fs::create_directories(store("ba/78"));
    fs::create_symlink(path, store(abcName));
    EXPECT_THROW(keep(path, abcDigest), AudioStoreError);
    EXPECT_TRUE(fs::is_symlink(store(abcName)));
    EXPECT_EQ(textOf(readFile(path)), "abc");
}

TEST_F(AudioStoring, OnlyPlainExtensionsBecomePartOfAName) {
    for (const std::string name : {"Kick", "Kick.w v", "Kick.verylongone", "Kick.wäv"}) {
        const StoredFile file = keep(made(name, "xyz"), xyzDigest);
        EXPECT_EQ(file.name, "36/08/" + xyzDigest) << name;
    }
}

TEST_F(AudioStoring, AStopEndsTheReadingOfWhatIsThere) {
    keep(made("Kick.wav", "abc"), abcDigest);
    StopSource stop;
    stop.request_stop();
    WorkProgress progress(stop.get_token());
    EXPECT_THROW(AudioStore(store(), Leaving::link, progress)
                     .keep(made("Other.wav", "abc"), abcDigest, folder_.file("scratch")),
                 AAFCancellationError);
    EXPECT_EQ(textOf(readFile(folder_.file("Other.wav"))), "abc");
}

}  // namespace
}  // namespace trellant::testing
