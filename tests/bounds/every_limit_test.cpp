// SPDX-License-Identifier: Apache-2.0
// One composition under every limit of memory from almost none to enough: the right answer, or the
// line that says that memory is out, never anything else. So the memory ends once in every stage:
// the table, its index, the names, the walk, the events, the copy, the answer.
#include "bounds_fixture.h"
#include "worker_fixture.h"

#include <filesystem>

namespace trellant::testing {
namespace {

class EveryLimit : public BoundsTest {
  protected:
    /// Enough for the program itself; the libraries of one that brings its own are in its image.
    static constexpr std::uint64_t first_ = (TRELLANT_WORKER_IS_STATIC ? 4 : 32) * mebibyte;
    static constexpr std::uint64_t step_ = 128 * kibibyte;
    static constexpr std::uint32_t clips_ = 6'000;

    EveryLimit() {
        constexpr MobID tone{1, 2, 3};
        OmfBuilder omf;
        omf.audioFile({.id = tone, .name = "Tone.wav", .media = toneWave(), .length = 480});
        const ObjectID half = omf.constantValue({1, 2});
        std::vector<ObjectID> components;
        for (std::uint32_t i = 0; i < clips_; i += 3) {
            components.push_back(omf.clip({.length = 480, .source = tone, .name = "Again"}));
            components.push_back(omf.transition({.length = 20, .cutPoint = 10}));
            components.push_back(
                omf.clip({.length = 480, .source = tone, .fadeIn = FadeSpec{10, 2}}));
            components.push_back(
                omf.gain(omf.clip({.length = 480, .source = tone, .start = 1}), half));
        }
        omf.composition({.name = "Piece",
                         .slots = {omf.slot(
                             {.editRate = Ratio{48'000}, .segment = omf.sequence(components)})}});
        writeFile(file(), omf.build());
    }

    void expectAnswerOrOutOfMemory(std::string_view operation) const {
        const auto whole = run(operation, 0);
        ASSERT_EQ(whole.status, 0) << whole.errors;
        ASSERT_EQ(whole.events, clips_);
        std::uint64_t limit = first_;
        int failures = 0;
        // On after the first answer: more memory is never worse.
        for (int answers = 0; answers < 8; limit += step_) {
            std::filesystem::remove_all(work());
            const auto starved = run(operation, limit);
            if (starved.status == 0) {
                ++answers;
                EXPECT_TRUE(starved.output == whole.output) << limit;
                EXPECT_EQ(starved.errors, whole.errors);
                continue;
            }
            EXPECT_EQ(answers, 0) << limit;
            ++failures;
            expectOutOfMemory(starved);
            EXPECT_TRUE(whole.errors.starts_with(
                starved.errors.substr(0, starved.errors.rfind("trellant-omf: "))))
                << starved.errors;
            ASSERT_LT(limit, 256 * mebibyte);
        }
        EXPECT_GE(failures, 16);
        RecordProperty(std::string(operation),
                       std::to_string(failures) + " limits out of memory, then enough at " +
                           std::to_string((limit - 8 * step_) / kibibyte) + " KiB");
    }
};

TEST_F(EveryLimit, OfInspectionIsAnAnswerOrOutOfMemory) {
    if (sanitized) {
        GTEST_SKIP() << "needs a limit of memory";
    }
    expectAnswerOrOutOfMemory("inspect");
}

TEST_F(EveryLimit, OfExtractionIsAnAnswerOrOutOfMemory) {
    if (sanitized) {
        GTEST_SKIP() << "needs a limit of memory";
    }
    expectAnswerOrOutOfMemory("extractAndInspect");
}

}  // namespace
}  // namespace trellant::testing
