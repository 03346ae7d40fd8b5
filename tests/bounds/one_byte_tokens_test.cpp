// SPDX-License-Identifier: Apache-2.0
// The largest table of contents there may be, made only of tokens of one byte.
//
// Bound: the table itself and a constant. Padding and ends of blocks make no item; of empty
// immediate values that follow one another in a value the first is kept. Room for as many items as
// tables usually have is asked for, 32 bytes for each 12 of the table, and done without where it
// cannot be had.
#include "bounds_fixture.h"
#include "growing_file.h"
#include "worker_fixture.h"

namespace trellant::testing {
namespace {

constexpr std::uint64_t tableLimit = (sanitized ? 32 : 512) * mebibyte;
constexpr unsigned char emptyImmediate = 9;
constexpr unsigned char endOfBlock = 24;
constexpr unsigned char padding = 0xFF;

class OneByteTokens : public BoundsTest {
  protected:
    void expectNoModel(std::string_view shape) const {
        const auto run = inspect(tableLimit + addressBase);
        expectFailed(run, openingLines(), noModel);
        expectPeak(run, shape, tableLimit + base);
    }
    void fillTable(unsigned char token) const {
        GrowingFile table(file());
        table.fill(token, tableLimit);
        table.finish();
    }
};

TEST_F(OneByteTokens, EmptyValuesWithoutAnObjectTakeNoMemory) {
    fillTable(emptyImmediate);
    expectNoModel("EmptyValues");
}

TEST_F(OneByteTokens, PaddingTakesNoMemory) {
    fillTable(padding);
    expectNoModel("Padding");
}

TEST_F(OneByteTokens, EndsOfBlocksTakeNoMemory) {
    fillTable(endOfBlock);
    expectNoModel("EndsOfBlocks");
}

TEST_F(OneByteTokens, EmptyValuesOfOneObjectTakeNoMemory) {
    GrowingFile table(file());
    table.object(1, 2);
    table.fill(emptyImmediate, tableLimit - table.tableBytes());
    table.finish();
    expectNoModel("EmptyValuesOfOneObject");
}

TEST_F(OneByteTokens, BehindADocumentTheyLeaveTheAnswerAsItWas) {
    GrowingFile table(file(), oneClipDocument().image());
    table.fill(emptyImmediate, tableLimit / 2);
    table.fill(padding, tableLimit / 4);
    table.fill(endOfBlock, tableLimit - table.tableBytes());
    table.finish();
    const auto run = inspect(tableLimit + addressBase);
    EXPECT_EQ(run.output, smallAnswer());
    EXPECT_EQ(run.errors, oneSlotProgress());
    expectPeak(run, "BehindADocument", tableLimit + base);
}

TEST_F(OneByteTokens, TableThatDoesNotFitIsOutOfMemory) {
    fillTable(padding);
    const auto run = inspect(tableLimit - 1);
    if (!sanitized) {
        expectFailed(run, openingLines(), outOfMemory);
    }
}

}  // namespace
}  // namespace trellant::testing
