// SPDX-License-Identifier: Apache-2.0
#include "catalogue_fixture.h"

#include <trellant/client/errors.h>

#include <filesystem>
#include <sys/stat.h>

namespace trellant::catalogue {
namespace {

using testing::bytesOf;
using testing::CatalogueTest;
using ::testing::ElementsAre;
using testing::readFile;
using testing::rowOf;
using ::testing::SizeIs;
using testing::writeFile;

using CatalogueBuild = CatalogueTest;

TEST_F(CatalogueBuild, TakesEveryRowWithItsParts) {
    scan::ScanRow row = rowOf("/a/mix.omf");
    row.applications = {{.product = "First"}, {.company = "House", .product = "Desk"}};
    row.losses = {{"fadeConflict", "soundsDifferent", 3, "A fade differs."}};
    row.check = scan::ScanRow::Verdict{"film", 1, 0, 0, 0, {{"handles", "error", 2, "Short."}}};
    row.clipNames = {"Boom"};
    const BuildTotals totals = add({row});
    EXPECT_EQ(totals.rows, 1U);
    EXPECT_EQ(totals.changed, 1U);
    EXPECT_THAT(asked("SELECT path, size, status, application FROM files"),
                ElementsAre("/a/mix.omf|1000|ok|Desk"));
    EXPECT_THAT(asked("SELECT name, is_read FROM compositions"), ElementsAre("Reel 1|1"));
    EXPECT_THAT(asked("SELECT name, state, bit_depth, sample_bytes FROM sources"),
                ElementsAre("Kick Drum|embedded|24|100"));
    EXPECT_THAT(asked("SELECT kind, effect, count FROM losses"),
                ElementsAre("fadeConflict|soundsDifferent|3"));
    EXPECT_THAT(asked("SELECT profile, rule, severity, count FROM findings"),
                ElementsAre("film|handles|error|2"));
    EXPECT_THAT(asked("SELECT kind, name FROM named ORDER BY id"),
                ElementsAre("file|mix.omf", "composition|Reel 1", "source|Kick Drum", "clip|Boom"));
}

TEST_F(CatalogueBuild, TheSameShardAgainChangesNothing) {
    const std::vector<scan::ScanRow> rows{rowOf("/a"), rowOf("/b")};
    EXPECT_EQ(add(rows).changed, 2U);
    const Bytes before = readFile(catalogue_);
    const BuildTotals again = add(rows);
    EXPECT_EQ(again.rows, 2U);
    EXPECT_EQ(again.changed, 0U);
    EXPECT_EQ(readFile(catalogue_), before);
}

TEST_F(CatalogueBuild, OfOnePathTheYoungestRowCountsInWhateverOrder) {
    scan::ScanRow older = rowOf("/a", 'a');
    scan::ScanRow younger = rowOf("/a", 'b');
    younger.scanned = "2026-01-03T00:00:00.000000000Z";
    younger.sources[0].name = "Snare";
    for (const auto& rows : {std::vector{older, younger}, std::vector{younger, older}}) {
        static_cast<void>(add(rows));
        EXPECT_THAT(asked("SELECT count(*) FROM files"), ElementsAre("1"));
        EXPECT_THAT(asked("SELECT name FROM sources"), ElementsAre("Snare"));
        // What the older row was called is found no more.
        EXPECT_THAT(question("plays", "Kick"), SizeIs(0));
        EXPECT_THAT(question("plays", "Snare"), SizeIs(1));
    }
}

TEST_F(CatalogueBuild, ALineThatIsNoRowLeavesTheCatalogueAsItWas) {
    static_cast<void>(add({rowOf("/a")}));
    const std::string shard =
        writeFile(folder_.file("bad"), bytesOf(rowLine(rowOf("/b")) + "rubbish\n"));
    EXPECT_THROW(static_cast<void>(addShard(catalogue_, shard, {})), CatalogueError);
    EXPECT_THAT(asked("SELECT path FROM files"), ElementsAre("/a"));
}

TEST_F(CatalogueBuild, IndexesOfValuesMayComeLater) {
    const std::string values =
        "SELECT name FROM sqlite_schema WHERE type = 'index' AND name IN ('files_status', "
        "'files_sha256', 'files_application', 'sources_away', 'sources_rate', 'sources_digest', "
        "'sources_mob') ORDER BY name";
    static_cast<void>(addShard(catalogue_, shard({rowOf("/a")}), {}, Indexes::later));
    EXPECT_THAT(asked(values), SizeIs(0));
    EXPECT_THAT(question("plays", "Kick"), SizeIs(1));
    EXPECT_THAT(question("rates"), ElementsAre("48000.000000|24|1"));
    makeIndexes(catalogue_, {});
    EXPECT_THAT(asked(values), SizeIs(7));
    const Bytes before = readFile(catalogue_);
    makeIndexes(catalogue_, {});
    EXPECT_EQ(readFile(catalogue_), before);
}

TEST_F(CatalogueBuild, ARowOfAnotherShardReplacesWhatTheSearchKnows) {
    scan::ScanRow younger = rowOf("/a");
    younger.scanned = "2026-01-03T00:00:00.000000000Z";
    younger.sources[0].name = "Snare";
    static_cast<void>(add({rowOf("/a"), rowOf("/b")}));
    static_cast<void>(add({younger}));
    EXPECT_THAT(question("plays", "Kick"), ElementsAre("/b|Reel 1|source|Kick Drum"));
    EXPECT_THAT(question("plays", "Snare"), ElementsAre("/a|Reel 1|source|Snare"));
}

TEST_F(CatalogueBuild, ATornLastLineIsPassedOver) {
    const std::string line = rowLine(rowOf("/b"));
    const std::string shard = writeFile(
        folder_.file("torn"), bytesOf(rowLine(rowOf("/a")) + line.substr(0, line.size() / 2)));
    EXPECT_EQ(addShard(catalogue_, shard, {}).rows, 1U);
}

TEST_F(CatalogueBuild, ShardsAndCataloguesAreRegularFiles) {
    const std::string pipe = folder_.file("pipe");
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    for (const std::string& given : {pipe, folder_.file(""), folder_.file("none")}) {
        EXPECT_THROW(static_cast<void>(addShard(catalogue_, given, {})), CatalogueError) << given;
    }
    EXPECT_FALSE(std::filesystem::exists(catalogue_));
    EXPECT_THROW(static_cast<void>(addShard(pipe, shard({rowOf("/a")}), {})), CatalogueError);
}

TEST_F(CatalogueBuild, AStopLeavesTheCatalogueAsItWas) {
    static_cast<void>(add({rowOf("/a")}));
    StopSource source;
    source.request_stop();
    EXPECT_THROW(static_cast<void>(addShard(catalogue_, shard({rowOf("/b")}), source.get_token())),
                 AAFCancellationError);
    EXPECT_THAT(asked("SELECT path FROM files"), ElementsAre("/a"));
}

TEST_F(CatalogueBuild, WhatIsNoCatalogueIsRefusedAndStaysAsItIs) {
    writeFile(catalogue_, bytesOf("my notes, longer than a database needs to be told from"));
    const Bytes before = readFile(catalogue_);
    EXPECT_THROW(static_cast<void>(add({rowOf("/a")})), CatalogueError);
    EXPECT_THROW(makeIndexes(catalogue_, {}), CatalogueError);
    EXPECT_EQ(readFile(catalogue_), before);
}

}  // namespace
}  // namespace trellant::catalogue
