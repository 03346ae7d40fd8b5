// SPDX-License-Identifier: Apache-2.0
#include "said.h"
#include "scan/scan.h"
#include "terminal/counted_text.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <trellant_testing/byte_writer.h>
#include <trellant_testing/temporary_directory.h>

namespace trellant::testing {
namespace {

using cli::bytesText;
using cli::countedText;
using cli::ScanCall;
using ::testing::HasSubstr;

TEST(CountedText, HasACommaAtEveryThirdDigit) {
    EXPECT_EQ(countedText(0), "0");
    EXPECT_EQ(countedText(999), "999");
    EXPECT_EQ(countedText(1'000), "1,000");
    EXPECT_EQ(countedText(18'446'744'073'709'551'615U), "18,446,744,073,709,551,615");
}

TEST(BytesText, CutsToATenthOfItsUnit) {
    EXPECT_EQ(bytesText(1), "1 byte");
    EXPECT_EQ(bytesText(999), "999 bytes");
    EXPECT_EQ(bytesText(1'000), "1.0 kB");
    EXPECT_EQ(bytesText(1'999'999), "1.9 MB");
    EXPECT_EQ(bytesText(18'446'744'073'709'551'615U), "18.4 EB");
}

TEST(ScanShardText, IsAPartOfAll) {
    const auto shard = cli::shardOf("3/8");
    ASSERT_TRUE(shard);
    EXPECT_EQ(shard->number, 3U);
    EXPECT_EQ(shard->count, 8U);
    for (const char* text :
         {"", "3", "0/8", "9/8", "3/0", "3/", "/8", "-1/8", "3/8 ", "3/1000001"}) {
        EXPECT_FALSE(cli::shardOf(text)) << text;
    }
}

scan::ScanTotals sampleTotals() {
    scan::ScanTotals totals;
    totals.rows = {1'200, 3, 2, 0, 1, 0};
    totals.bytes = 1'500'000'000;
    totals.time = std::chrono::seconds(10);
    return totals;
}

// 1,206 rows in ten seconds.
TEST(ScanSummary, CountsByStatus) {
    scan::ScanTotals totals = sampleTotals();
    totals.known = 1;
    totals.others = 5;
    EXPECT_EQ(cli::summaryOf(totals),
              "1,206 files in 10.0 s (120 a second, 1.5 GB): 1,200 read, 3 damaged, 2 OMF 1, "
              "1 beyond the time limit; 1 file had a row already; 5 files without OMF in them");
}

TEST(ScanProgressLine, TellsWhatIsLeftOnceItIsKnown) {
    scan::ScanTotals totals = sampleTotals();
    EXPECT_EQ(cli::progressLineOf(totals).text, "1,206 files, 1.5 GB, 120 a second");
    totals.looked = 500;
    totals.entries = 2'000;
    // A quarter took ten seconds, so three quarters take thirty.
    EXPECT_EQ(cli::progressLineOf(totals).fraction, 0.25);
    EXPECT_EQ(cli::progressLineOf(totals).text, "1,206 files, 1.5 GB, 120 a second, 30 s left");
    totals.entries = 20'000;
    // 390 seconds.
    EXPECT_THAT(cli::progressLineOf(totals).text, HasSubstr(", 6 minutes left"));
    totals.entries = 2'000'000;
    // 39,990 seconds.
    EXPECT_THAT(cli::progressLineOf(totals).text, HasSubstr(", 11 hours left"));
}

class ScanCommand : public ::testing::Test {
  protected:
    [[nodiscard]] Said run(const ScanCall& call) const {
        return saidWithStatus({}, [&call](cli::Console& console) {
            return static_cast<int>(cli::runScanCall(call, console, {}));
        });
    }
    [[nodiscard]] ScanCall call() const {
        ScanCall made;
        made.paths = {folder_.path().native()};
        made.output = folder_.file("shard.ndjson");
        return made;
    }

    TemporaryDirectory folder_;
};

TEST_F(ScanCommand, SaysWhatCannotBeMeant) {
    ScanCall nothing = call();
    nothing.paths.clear();
    EXPECT_EQ(run(nothing).status, 1);
    ScanCall shard = call();
    shard.shard = "9/8";
    EXPECT_EQ(run(shard).errors,
              "trellant: --shard takes I/N, part I of N parts, such as 3/8, not \"9/8\"\n");
    ScanCall both = call();
    both.refresh = true;
    both.again = scan::Again::failed;
    EXPECT_EQ(run(both).status, 1);
    ScanCall twice = call();
    twice.lists = {"-", "-"};
    EXPECT_EQ(run(twice).status, 1);
    ScanCall profile = call();
    profile.profile = "none";
    EXPECT_EQ(run(profile).status, 1);
    EXPECT_FALSE(std::filesystem::exists(call().output));
}

TEST_F(ScanCommand, AFileThatCouldNotBeReadCountsOnlyWhereThatIsWanted) {
    ScanCall missing = call();
    missing.paths = {folder_.file("none.omf")};
    EXPECT_EQ(run(missing).status, 0);
    missing.refresh = true;
    missing.strict = true;
    EXPECT_EQ(run(missing).status, 2);
}

TEST_F(ScanCommand, AShardOfSomebodyElseIsLeftAlone) {
    writeFile(call().output, bytesOf("my notes\n"));
    const Said said = run(call());
    EXPECT_EQ(said.status, 2);
    EXPECT_EQ(said.errors, "trellant: " + call().output +
                               ": the shard holds something else than rows of a scan\n");
    EXPECT_EQ(readFile(call().output), bytesOf("my notes\n"));
}

TEST_F(ScanCommand, AListThatIsNotThereIsAFailure) {
    ScanCall list = call();
    list.paths.clear();
    list.lists = {folder_.file("none.txt")};
    const Said said = run(list);
    EXPECT_EQ(said.status, 2);
    EXPECT_THAT(said.errors, HasSubstr("none.txt: No such file or directory\n"));
}

}  // namespace
}  // namespace trellant::testing
