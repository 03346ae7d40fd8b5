// SPDX-License-Identifier: Apache-2.0
#include "catalogue_fixture.h"

#include <trellant/client/errors.h>

#include <filesystem>

namespace trellant::catalogue {
namespace {

using testing::CatalogueTest;
using testing::digestOf;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::readFile;
using testing::rowOf;
using ::testing::SizeIs;
using ::testing::UnorderedElementsAre;

class CatalogueQuestions : public CatalogueTest {
  protected:
    CatalogueQuestions() {
        scan::ScanRow broken = rowOf("/d");
        broken.status = scan::FileStatus::damaged;
        broken.message = "torn";
        broken.sha256 = digestOf('d');
        broken.compositions.clear();
        broken.sources.clear();
        scan::ScanRow missing = rowOf("/c", 'c');
        missing.sources[0].state = "missing";
        missing.sources[0].name = "Rain";
        missing.sources[0].recordedPath = "Disk:Rain";
        missing.sources[0].sampleDigest.reset();
        missing.sources[0].sampleBytes.reset();
        missing.applications = {{.product = "Desk"}};
        static_cast<void>(add({rowOf("/a"), rowOf("/b"), missing, broken}));
    }
};

TEST_F(CatalogueQuestions, AreAnswered) {
    EXPECT_THAT(question("unreadable"), ElementsAre("/d|damaged|torn"));
    EXPECT_THAT(question("missing-media"), ElementsAre("/c|Rain|missing|Disk:Rain"));
    EXPECT_THAT(question("duplicate-files"), ElementsAre(digestOf('a') + "|2|1000|/a"));
    // One take of 100 bytes in two files.
    EXPECT_THAT(question("duplicate-audio"), ElementsAre(digestOf('a') + "|2|2|100|Kick Drum"));
    EXPECT_THAT(question("programs"), ElementsAre("|3", "Desk|1"));
    EXPECT_THAT(question("rates"), ElementsAre("48000.000000|24|3"));
    // Two sources, one of them once more than needed.
    EXPECT_THAT(question("saved"), ElementsAre("2|1|200|100"));
}

TEST_F(CatalogueQuestions, NamesAreFoundByTheirWords) {
    EXPECT_THAT(question("plays", "kick"),
                UnorderedElementsAre("/a|Reel 1|source|Kick Drum", "/b|Reel 1|source|Kick Drum"));
    EXPECT_THAT(question("plays", "Kick Drum"), SizeIs(2));
    EXPECT_THAT(question("plays", "Drum Kick"), IsEmpty());
    // What has a meaning in the language of searches has none in a name.
    EXPECT_THAT(question("plays", "kick\" OR \"rain"), IsEmpty());
    EXPECT_THAT(question("plays", "NOT rain*"), IsEmpty());
}

TEST_F(CatalogueQuestions, AnAnswerEndsAtItsLimit) {
    std::size_t rows = 0;
    const auto count = [&rows, this](std::uint64_t limit) {
        rows = 0;
        return ask(
            catalogue_, {.sql = "SELECT path FROM files", .limit = limit},
            [](const std::vector<std::string>&) {}, [&rows](const std::vector<Value>&) { ++rows; },
            {});
    };
    EXPECT_TRUE(count(3));
    EXPECT_EQ(rows, 3U);
    EXPECT_FALSE(count(4));
    EXPECT_EQ(rows, 4U);
    EXPECT_FALSE(count(0));
}

TEST_F(CatalogueQuestions, NothingIsWrittenWhateverIsAsked) {
    const Bytes before = readFile(catalogue_);
    const std::string other = folder_.file("other.sqlite");
    const std::vector<std::string> statements{"DELETE FROM files",
                                              "UPDATE files SET path = 'x'",
                                              "DROP TABLE files",
                                              "CREATE TABLE x(y)",
                                              "ATTACH '" + other + "' AS x",
                                              "VACUUM INTO '" + other + "'",
                                              "PRAGMA query_only = OFF",
                                              "BEGIN IMMEDIATE",
                                              "INSERT INTO names(names) VALUES ('rebuild')",
                                              "SELECT load_extension('x')",
                                              "SELECT 1; DELETE FROM files",
                                              "",
                                              "nonsense"};
    for (const std::string& sql : statements) {
        EXPECT_THROW(static_cast<void>(asked(sql)), CatalogueError) << sql;
    }
    EXPECT_FALSE(std::filesystem::exists(other));
    EXPECT_EQ(readFile(catalogue_), before);
}

TEST_F(CatalogueQuestions, AStopEndsAnAskingWithoutEnd) {
    StopSource source;
    const auto endless =
        "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n) SELECT i FROM n";
    EXPECT_THROW(
        static_cast<void>(ask(
            catalogue_, {.sql = endless}, [](const std::vector<std::string>&) {},
            [&source](const std::vector<Value>&) { source.request_stop(); }, source.get_token())),
        AAFCancellationError);
}

TEST_F(CatalogueQuestions, WhatIsNoCatalogueIsNotAsked) {
    catalogue_ = folder_.file("none.sqlite");
    EXPECT_THROW(static_cast<void>(asked("SELECT 1")), CatalogueError);
    EXPECT_FALSE(std::filesystem::exists(catalogue_));
}

}  // namespace
}  // namespace trellant::catalogue
