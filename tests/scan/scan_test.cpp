// SPDX-License-Identifier: Apache-2.0
#include "scan_fixture.h"

#include <trellant/client/errors.h>
#include <trellant/scan/scan.h>
#include <trellant/scan/shard_file.h>

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace trellant::scan {
namespace {

namespace fs = std::filesystem;

using testing::bytesOf;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::realWorker;
using testing::shellWorker;
using ::testing::SizeIs;
using testing::smallOmf;
using testing::TemporaryDirectory;
using testing::writeFile;

class Scan : public ::testing::Test {
  protected:
    Scan() { fs::create_directory(archive_); }

    void put(const std::string& name, ByteView bytes) const {
        writeFile(archive_ + "/" + name, bytes);
    }
    [[nodiscard]] ScanTotals scan(Again again = Again::never,
                                  AAFWorkerClient::HelperURLProvider worker = realWorker()) const {
        return runScan({.places = {.paths = {archive_}},
                        .shardPath = shard_,
                        .jobs = 2,
                        .again = again,
                        .reading = {.helperURLProvider = std::move(worker)}},
                       {}, {});
    }
    /// Names and statuses of all rows, sorted.
    [[nodiscard]] std::vector<std::string> rows() const {
        std::vector<std::string> all;
        std::ifstream lines(shard_);
        for (std::string line; std::getline(lines, line);) {
            const ScanRow row = decodeRow(line);
            all.push_back(fs::path(row.path).filename().native() + " " +
                          std::string(rawValue(row.status)));
        }
        std::sort(all.begin(), all.end());
        return all;
    }

    TemporaryDirectory folder_;
    std::string archive_ = folder_.file("archive");
    std::string shard_ = folder_.file("shard.ndjson");
};

TEST_F(Scan, EveryOmfFileHasARow) {
    put("a.omf", smallOmf());
    put("b.bin", smallOmf("Snare"));
    put("c.omf", bytesOf("no container"));
    const ScanTotals totals = scan();
    EXPECT_THAT(rows(), ElementsAre("a.omf ok", "b.bin ok"));
    EXPECT_EQ(totals.added(), 2U);
    EXPECT_EQ(totals.inStatus(FileStatus::ok), 2U);
    EXPECT_EQ(totals.others, 1U);
    EXPECT_EQ(totals.bytes, smallOmf().size() + smallOmf("Snare").size());
}

TEST_F(Scan, TheSameCallAgainReadsOnlyWhatIsNew) {
    put("a.omf", smallOmf());
    EXPECT_EQ(scan().added(), 1U);
    put("b.omf", smallOmf());
    const ScanTotals again = scan();
    EXPECT_EQ(again.added(), 1U);
    EXPECT_EQ(again.known, 1U);
    EXPECT_THAT(rows(), ElementsAre("a.omf ok", "b.omf ok"));
    // Longer than it was.
    put("a.omf", smallOmf("A longer name"));
    EXPECT_EQ(scan().added(), 1U);
    EXPECT_THAT(rows(), ElementsAre("a.omf ok", "a.omf ok", "b.omf ok"));
}

TEST_F(Scan, WhatFailedIsReadAgainOnlyOnRequest) {
    put("a.omf", smallOmf());
    EXPECT_EQ(scan(Again::never, shellWorker(folder_, "exit 2")).inStatus(FileStatus::refused), 1U);
    EXPECT_EQ(scan().added(), 0U);
    EXPECT_EQ(scan(Again::failed).inStatus(FileStatus::ok), 1U);
    EXPECT_EQ(scan(Again::failed).added(), 0U);
    EXPECT_EQ(scan(Again::all).added(), 1U);
    EXPECT_THAT(rows(), ElementsAre("a.omf ok", "a.omf ok", "a.omf refused"));
}

TEST_F(Scan, ItsOwnShardIsNoFileOfIt) {
    shard_ = archive_ + "/shard.ndjson";
    put("a.omf", smallOmf());
    const ScanTotals totals = scan();
    EXPECT_EQ(totals.added(), 1U);
    EXPECT_EQ(totals.others, 0U);
}

TEST_F(Scan, AStopLeavesWhatIsDone) {
    for (int i = 0; i < 50; ++i) {
        put("f" + std::to_string(i), smallOmf());
    }
    StopSource source;
    const ScanRequest request{
        .places = {.paths = {archive_}},
        .shardPath = shard_,
        .reading = {.helperURLProvider = shellWorker(folder_, "exec sleep 60")}};
    EXPECT_THROW(static_cast<void>(runScan(
                     request, {.progress = [&source](const ScanTotals&) { source.request_stop(); }},
                     source.get_token())),
                 AAFCancellationError);
    EXPECT_THAT(rows(), IsEmpty());
    EXPECT_EQ(scan().added(), 50U);
}

TEST_F(Scan, WithoutAWorkerItEnds) {
    put("a.omf", smallOmf());
    EXPECT_THROW(static_cast<void>(scan(
                     Again::never, [](const std::string&) { return std::optional<fs::path>(); })),
                 AAFWorkerClientError);
    EXPECT_THAT(rows(), IsEmpty());
}

TEST_F(Scan, EntriesAreCountedAheadWhereThatIsWanted) {
    put("a.omf", smallOmf());
    put("b.txt", bytesOf("text"));
    const ScanTotals totals = runScan({.places = {.paths = {archive_}},
                                       .shardPath = shard_,
                                       .reading = {.helperURLProvider = realWorker()},
                                       .countsAhead = true},
                                      {}, {});
    EXPECT_EQ(totals.entries, 2U);
    EXPECT_EQ(totals.looked, 2U);
}

TEST_F(Scan, WhatCannotBeLookedIntoIsToldAndCounted) {
    std::vector<std::string> told;
    const ScanTotals totals = runScan(
        {.places = {.lists = {folder_.file("none")}}, .shardPath = shard_},
        {.failure = [&told](const std::string& path, const std::string&) { told.push_back(path); }},
        {});
    EXPECT_THAT(told, ElementsAre(folder_.file("none")));
    EXPECT_EQ(totals.failures, 1U);
}

}  // namespace
}  // namespace trellant::scan
