// SPDX-License-Identifier: Apache-2.0
#include "row_parts.h"

#include <trellant/json/json_decode.h>
#include <trellant/scan/row.h>

#include <gtest/gtest.h>

namespace trellant::scan {
namespace {

ScanRow sampleRow() {
    ScanRow row;
    row.path = "/archive/mix.omf";
    row.size = 1'000;
    row.modified = "2026-11-22T22:38:42.000000001Z";
    row.program = "1.2.3";
    row.status = FileStatus::damaged;
    row.message = "Malformed";
    row.pronom = ScanRow::Pronom{"fmt/1855", "signature"};
    row.scanned = "2026-11-22T23:00:00.000000000Z";
    row.seconds = 0.5;
    return row;
}

TEST(ScanRow, IsOneLineWithItsKeysInTheDocumentedOrder) {
    EXPECT_EQ(rowLine(sampleRow()),
              R"({"row":1,"path":"\/archive\/mix.omf","size":1000,)"
              R"("modified":"2026-11-22T22:38:42.000000001Z","program":"1.2.3",)"
              R"("status":"damaged","message":"Malformed",)"
              R"("pronom":{"id":"fmt\/1855","basis":"signature"},"applications":[],)"
              R"("compositions":[],"sources":[],"clipNames":[],"losses":[],)"
              R"("scanned":"2026-11-22T23:00:00.000000000Z","seconds":0.5})"
              "\n");
}

TEST(ScanRow, IsReadBackAsItWasWritten) {
    ScanRow row = sampleRow();
    row.status = FileStatus::ok;
    row.sources = {{.id = "e",
                    .name = "Kick",
                    .mobID = "m",
                    .state = "embedded",
                    .clips = 2,
                    .sampleRate = 44'100,
                    .sampleRateExact = "44100",
                    .codec = "PCM",
                    .bitDepth = 16,
                    .channels = 1,
                    .frames = 100,
                    .sampleDigest = "ab",
                    .sampleBytes = 200,
                    .recordedPath = "C:\\Kick.wav",
                    .path = "/m/Kick.wav"}};
    row.losses = {{.kind = "fadeConflict",
                   .effect = "soundsDifferent",
                   .count = 3,
                   .sentence = "A fade differs."}};
    row.check = ScanRow::Verdict{"film", 1, 2, 3, 4, {{"handles", "warning", 2, "Too short."}}};
    row.peakMemory = 3'000'000;
    const std::string line = rowLine(row);
    EXPECT_EQ(decodeRow(line.substr(0, line.size() - 1)), row);
}

TEST(ScanRow, TheKeyIsItsHead) {
    const ScanRowKey key = decodeRowKey(rowLine(sampleRow()));
    EXPECT_EQ(key.path, "/archive/mix.omf");
    EXPECT_EQ(key.size, 1'000);
    EXPECT_EQ(key.modified, "2026-11-22T22:38:42.000000001Z");
    EXPECT_EQ(key.program, "1.2.3");
    EXPECT_EQ(key.status, FileStatus::damaged);
}

TEST(ScanRow, TornLinesAreNoRows) {
    const std::string line = rowLine(sampleRow());
    for (std::size_t length = 0; length + 1 < line.size(); ++length) {
        EXPECT_THROW(static_cast<void>(decodeRowKey(line.substr(0, length))), JsonDecodingError)
            << length;
    }
}

TEST(ScanRow, OneThatWouldBeTooLongIsToldWithoutItsSources) {
    ScanRow row = sampleRow();
    ScanRow::Source source;
    source.name = std::string(4'000, 'n');
    // 9,000 names of 4,000 bytes are more than the 33,554,432 bytes of a row.
    row.sources.assign(9'000, source);
    row.sourcesLeftOut = 5;
    const std::string line = rowLine(row);
    EXPECT_LT(line.size(), 1'000U);
    EXPECT_NE(line.find(R"("sources":[],"sourcesLeftOut":9005)"), std::string::npos);
}

TEST(ScanRow, TellsTheRateByWhichFramesAreCounted) {
    // Labels of 30 frames in a composition of 30000/1001: there is a frame for each label.
    HandOff handOff;
    AAFProgramClock& clock = handOff.timeline.clock;
    clock.editRate = AAFRational(30'000, 1'001);
    clock.timecodeRate = AAFTimecodeRate(AAFRational(30), 30, false);
    clock.timelineZero = AAFTimecodeAddress(1, 0, 0, 0, clock.timecodeRate);
    ScanRow row;
    tellHandOff(handOff, row);
    EXPECT_EQ(row.timecodeRate, "30000/1001");
    EXPECT_EQ(row.editRate, "30000/1001");
    EXPECT_EQ(row.start, "01:00:00:00");
}

}  // namespace
}  // namespace trellant::scan
