// SPDX-License-Identifier: Apache-2.0
// Finding equal bytes among files that stand there, and how often each of them is read for that.
#include "standing_files.h"

#include <trellant/io/errors.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <map>
#include <optional>
#include <string>

namespace trellant::testing {
namespace {

class StandingFilesTest : public ::testing::Test {
  protected:
    /// A file of four bytes whose digest is given; "" for one that cannot be read.
    void add(std::uint64_t number, const std::string& digest, const std::string& series = "Kick") {
        const std::string path = series + std::to_string(number);
        digests_[path] = digest;
        files_.add(series, number, path, 4);
    }
    std::optional<std::uint64_t> find(const std::string& digest, std::uint64_t first = 1) {
        return files_.find("Kick", first, 4, digest);
    }

    std::map<std::string, std::string> digests_;
    std::map<std::string, int> readings_;
    StandingFiles files_{[this](const std::string& path) {
        ++readings_[path];
        if (digests_[path].empty()) {
            throw FileSystemError("read", path, EACCES);
        }
        return digests_[path];
    }};
};

TEST_F(StandingFilesTest, FindTheLowestNumberOfTheSameBytesFromTheFirstOn) {
    add(3, "b");
    add(2, "a");
    add(5, "b");
    EXPECT_EQ(find("b"), 3U);
    EXPECT_EQ(find("b", 4), 5U);
    EXPECT_EQ(find("b", 6), std::nullopt);
    EXPECT_EQ(find("a"), 2U);
    EXPECT_EQ(find("c"), std::nullopt);
}

TEST_F(StandingFilesTest, AreThoseOfTheSeriesAndTheSize) {
    add(2, "a");
    add(3, "a", "Snare");
    EXPECT_EQ(files_.find("Hat", 1, 4, "a"), std::nullopt);
    EXPECT_EQ(files_.find("Kick", 1, 5, "a"), std::nullopt);
    EXPECT_EQ(files_.find("Snare", 1, 4, "a"), 3U);
    EXPECT_TRUE(readings_.find("Kick2") == readings_.end());
}

TEST_F(StandingFilesTest, ThatWereTakenAreFoundNoMore) {
    add(2, "a");
    add(3, "a");
    EXPECT_EQ(find("a"), 2U);
    files_.take("Kick", 2, 4, "a");
    EXPECT_EQ(find("a"), 3U);
    files_.take("Kick", 3, 4, "a");
    EXPECT_EQ(find("a"), std::nullopt);
}

TEST_F(StandingFilesTest, ThatCannotBeReadAreNobodysEqual) {
    add(2, "");
    add(3, "a");
    EXPECT_EQ(find("a"), 3U);
    EXPECT_EQ(find(""), std::nullopt);
    EXPECT_EQ(readings_["Kick2"], 1);
}

TEST_F(StandingFilesTest, AreReadOnlyAsFarAsTheFirstEqual) {
    for (std::uint64_t number = 2; number <= 9; ++number) {
        add(number, number == 4 ? "a" : "b");
    }
    EXPECT_EQ(find("a"), 4U);
    EXPECT_EQ(readings_.size(), 3U);
    EXPECT_EQ(find("b", 3), 3U);
    EXPECT_EQ(readings_.size(), 3U);
}

TEST_F(StandingFilesTest, AreReadOnceHoweverManyAreComparedWithThem) {
    for (std::uint64_t number = 2; number <= 999; ++number) {
        add(number, "old" + std::to_string(number));
    }
    for (int other = 0; other < 999; ++other) {
        EXPECT_EQ(find("new" + std::to_string(other)), std::nullopt);
    }
    EXPECT_EQ(readings_.size(), 998U);
    for (const auto& [path, count] : readings_) {
        EXPECT_EQ(count, 1) << path;
    }
}

}  // namespace
}  // namespace trellant::testing
