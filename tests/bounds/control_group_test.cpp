// SPDX-License-Identifier: Apache-2.0
// The worker in a control group with little memory, where asking for too much ends a process: the
// right answer, or the line that says that memory is out.
#include "bounds_fixture.h"
#include "worker_fixture.h"

#include <trellant_testing/limited_group.h>

namespace trellant::testing {
namespace {

class ControlGroup : public BoundsTest {
  protected:
    void SetUp() override {
        if (sanitized) {
            GTEST_SKIP() << "sanitizers need more than a small group has";
        }
        if (!LimitedGroup(64 * mebibyte).exists()) {
            GTEST_SKIP() << "needs the right to make control groups";
        }
        constexpr MobID tone{1, 2, 3};
        OmfBuilder omf;
        omf.audioFile({.id = tone, .name = "Tone.wav", .media = toneWave(), .length = 480});
        ObjectID segment = omf.clip({.length = 480, .source = tone});
        for (int level = 0; level < 6; ++level) {
            segment = omf.sequence(std::vector<ObjectID>(10, segment));
        }
        omf.composition({.name = "Piece",
                         .slots = {omf.slot({.editRate = Ratio{48'000}, .segment = segment})}});
        writeFile(file(), omf.build());
    }
};

TEST_F(ControlGroup, WithTooLittleMemoryIsALineAndAStatus) {
    // A million clips shared from one place take more than 400 MiB.
    for (const std::uint64_t size :
         {8U, 10U, 12U, 14U, 16U, 20U, 32U, 64U, 100U, 128U, 200U, 256U, 300U, 400U}) {
        const LimitedGroup group(size * mebibyte);
        ASSERT_TRUE(group.exists());
        const auto starved = run("extractAndInspect", 0, group.processes());
        expectOutOfMemory(starved);
        EXPECT_LE(starved.peak, size * mebibyte);
    }
}

TEST_F(ControlGroup, WithEnoughMemoryGivesTheAnswer) {
    const LimitedGroup group(1024 * mebibyte);
    ASSERT_TRUE(group.exists());
    const auto whole = run("extractAndInspect", 0, group.processes());
    EXPECT_EQ(whole.status, 0) << whole.errors;
    EXPECT_EQ(whole.events, 1'000'000U);
}

TEST_F(ControlGroup, ThatIsSmallStillServesSmallFiles) {
    writeFile(file(), oneClipDocument().build());
    const LimitedGroup group(16 * mebibyte);
    ASSERT_TRUE(group.exists());
    const auto answered = run("inspect", 0, group.processes());
    EXPECT_EQ(answered.status, 0) << answered.errors;
    EXPECT_EQ(answered.output, smallAnswer());
}

}  // namespace
}  // namespace trellant::testing
