// SPDX-License-Identifier: Apache-2.0
// Every system call of a successful request fails once, in turn.
#include "sweep.h"

#include <trellant/protocol/messages.h>

#include <gmock/gmock.h>

#include <cerrno>
#include <filesystem>
#include <trellant_testing/byte_writer.h>

namespace trellant::testing {

namespace {

using ::testing::ElementsAre;

class EveryCallFails : public TracedTest {
  protected:
    Scene scene_;
};

void makeWorkWithTheName(const Scene& scene) {
    std::filesystem::create_directory(scene.work());
    writeFile(scene.extractedFile(), bytesOf("mine"));
}

TEST_F(EveryCallFails, UndisturbedRequestFindsAllItsAudio) {
    TracedRun traced;
    const auto undisturbed = undisturbedRun(scene_, {.operation = "extractAndInspect"}, traced);
    const auto result = decodeResult(undisturbed.output);
    const auto url = [](const std::string& path) { return AAFURL{"file://" + path}; };
    ASSERT_EQ(result.timeline.essences.size(), 3U);
    EXPECT_EQ(result.timeline.essences[0].fileURL, url(scene_.extractedFile()));
    EXPECT_EQ(result.timeline.essences[1].fileURL, url(scene_.searchedFile()));
    EXPECT_EQ(result.timeline.essences[2].fileURL, url(scene_.namedFile()));
    EXPECT_EQ(undisturbed.everything.at("work/Tone.wav"), scene_.embeddedAudio());
    EXPECT_THAT(result.timeline.unsupportedFeatures, ElementsAre());
}

TEST_F(EveryCallFails, DuringInspect) {
    report(sweep(scene_, {.operation = "inspect"}));
}

TEST_F(EveryCallFails, DuringExtraction) {
    report(sweep(scene_, {.operation = "extractAndInspect"}));
}

TEST_F(EveryCallFails, DuringExtractionBesideAFileOfTheName) {
    report(sweep(scene_, {.operation = "extractAndInspect", .arrange = makeWorkWithTheName}));
}

TEST_F(EveryCallFails, DuringExtractionByTheKernel) {
    const Scene scene({.suitsKernelCopy = true});
    const auto count = sweep(scene, {.operation = "extractAndInspect"});
    EXPECT_GT(count.ofKind.count(CallKind::kernelCopy), 0U) << "the kernel copies";
    report(count);
}

TEST_F(EveryCallFails, DuringExtractionThatTheKernelRefuses) {
    const Scene scene({.suitsKernelCopy = true});
    report(
        sweep(scene, {.operation = "extractAndInspect", .always = [](const SeenCall& seen, pid_t) {
                          const bool refused = seen.kind == CallKind::kernelCopy;
                          return Intervention{.errorNumber = refused ? ENOSYS : 0};
                      }}));
}

/// Memory that runs out stays out: from each call that asks for more on, none gets it.
TEST_F(EveryCallFails, MemoryThatRunsOutIsAnAnswerOrALine) {
    for (const std::string operation : {"inspect", "extractAndInspect"}) {
        const SweepStart start{.operation = operation};
        TracedRun traced;
        const auto undisturbed = undisturbedRun(scene_, start, traced);
        for (const SeenCall& first : traced.calls) {
            if (first.kind != CallKind::memory) {
                continue;
            }
            std::filesystem::remove_all(scene_.work());
            const auto before = scene_.everything();
            const TracedRun run =
                runTraced({.input = scene_.request(operation),
                           .places = scene_.places(),
                           .director = [&](const SeenCall& seen, pid_t) {
                               const bool fails =
                                   seen.kind == CallKind::memory && seen.index >= first.index;
                               return Intervention{.errorNumber = fails ? ENOMEM : 0};
                           }});
            EXPECT_TRUE(
                judge(scene_, undisturbed, before, {.seen = first, .errorNumber = ENOMEM}, run))
                << operation << ", from call " << first.index << " on";
        }
    }
}

}  // namespace

}  // namespace trellant::testing
