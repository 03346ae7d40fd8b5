// SPDX-License-Identifier: Apache-2.0
// A source that changes while it is read: the worker stands still at a call, the file is changed,
// the worker goes on.
#include "sweep.h"

#include <trellant/protocol/messages.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <sys/stat.h>
#include <trellant_testing/byte_writer.h>
#include <trellant_testing/requests.h>

namespace trellant::testing {

namespace {

const std::string opening = progressLineText("opening", "0.05");
const std::string openingAndMapping = opening + progressLineText("reconstructing", "0.15") +
                                      progressLineText("reconstructing", "0.15");

class ChangingFile : public TracedTest {
  protected:
    /// Does something before a call of this kind is made for the first time.
    TracedRun runWhere(CallKind kind, const std::function<void()>& change) {
        return runTraced({.input = scene_.request("extractAndInspect"),
                          .places = scene_.places(),
                          .director = [&, kind](const SeenCall& seen, pid_t) {
                              if (seen.kind == kind && seen.ordinal == 0) {
                                  change();
                              }
                              return Intervention{};
                          }});
    }
    void truncate(std::uintmax_t size) { std::filesystem::resize_file(scene_.source(), size); }

    /// Where the embedded audio begins in the source.
    std::uintmax_t audioOffset() const {
        return textOf(readFile(scene_.source())).find(scene_.embeddedAudio());
    }

    void expectSame(const TracedRun& traced, const Undisturbed& undisturbed) {
        EXPECT_EQ(traced.run.status, 0);
        EXPECT_EQ(traced.run.output, undisturbed.output);
        EXPECT_EQ(traced.run.errors, undisturbed.errors);
        EXPECT_EQ(readFile(scene_.extractedFile()), bytesOf(scene_.embeddedAudio()));
    }
    Undisturbed undisturbed() {
        TracedRun traced;
        auto result = undisturbedRun(scene_, {.operation = "extractAndInspect"}, traced);
        std::filesystem::remove_all(scene_.work());
        return result;
    }
    static void expectFailed(const TracedRun& traced, const std::string& progress,
                             const std::string& message) {
        EXPECT_EQ(traced.run.errors, progress + logLineText(message));
        EXPECT_EQ(traced.run.output, "");
        EXPECT_EQ(traced.run.status, 2);
    }

    Scene scene_;
};

TEST_F(ChangingFile, GoneBeforeItsFirstByteIsAShortRead) {
    const auto run = runWhere(CallKind::sourceRead, [&] { truncate(0); });
    // The standard footer of 24 bytes and, before it, the place of an extended one.
    expectFailed(run, opening, "Short read (expected 48 bytes, got 0).");
}

TEST_F(ChangingFile, ThatShrinksBeforeItsAudioIsCopiedIsAShortRead) {
    constexpr std::uintmax_t kept = 100;
    const auto run = runWhere(CallKind::fileCreation, [&] { truncate(audioOffset() + kept); });
    expectFailed(run, openingAndMapping,
                 "Short read (expected " + std::to_string(scene_.embeddedAudio().size()) +
                     " bytes, got 100).");
    EXPECT_EQ(readFile(scene_.extractedFile()), bytesOf(scene_.embeddedAudio().substr(0, kept)));
}

TEST_F(ChangingFile, ThatGrowsIsJudgedByItsSizeWhenOpened) {
    const auto before = undisturbed();
    const auto run = runWhere(CallKind::sourceRead, [&] {
        std::ofstream(scene_.source(), std::ios::app | std::ios::binary) << "grown";
    });
    expectSame(run, before);
}

TEST_F(ChangingFile, ThatIsReplacedIsReadAsItWas) {
    const auto before = undisturbed();
    const auto run = runWhere(CallKind::sourceRead, [&] {
        const auto other = scene_.folder() / "other.omf";
        writeFile(other.string(), bytesOf("another file"));
        std::filesystem::rename(other, scene_.source());
    });
    expectSame(run, before);
}

TEST_F(ChangingFile, ThatIsRemovedIsReadAsItWas) {
    const auto before = undisturbed();
    const auto run =
        runWhere(CallKind::sourceRead, [&] { std::filesystem::remove(scene_.source()); });
    expectSame(run, before);
}

TEST_F(ChangingFile, ThatIsAudioAndBecomesAPipeIsNotWaitedFor) {
    auto expected = decodeResult(undisturbed().output);
    const auto run =
        runTraced({.input = scene_.request("extractAndInspect"),
                   .places = scene_.places(),
                   .director = [&](const SeenCall& seen, pid_t) {
                       if (seen.kind == CallKind::probeOpen && seen.path == scene_.searchedFile()) {
                           std::filesystem::remove(scene_.searchedFile());
                           EXPECT_EQ(::mkfifo(scene_.searchedFile().c_str(), 0600), 0);
                       }
                       return Intervention{};
                   }});
    auto& searched = expected.timeline.essences.at(1);
    searched.bitDepth.reset();
    searched.codec = "WAVD";
    EXPECT_EQ(run.run.status, 0) << run.run.errors;
    EXPECT_EQ(decodeResult(run.run.output), expected);
}

TEST_F(ChangingFile, WhoseMiddleCannotBeReadFailsAndLeavesWhatCameOut) {
    constexpr std::uint64_t kept = 100;
    const Scene scene({.suitsKernelCopy = true});
    const auto run = runTraced({.input = scene.request("extractAndInspect"),
                                .places = scene.places(),
                                .director = [&](const SeenCall& seen, pid_t) -> Intervention {
                                    if (seen.kind == CallKind::kernelCopy && seen.ordinal == 0) {
                                        return {.byteLimit = kept};
                                    }
                                    const bool fails =
                                        seen.kind == CallKind::kernelCopy ||
                                        (seen.kind == CallKind::sourceRead && seen.isWithinCopy);
                                    return {.errorNumber = fails ? EIO : 0};
                                }});
    EXPECT_EQ(run.run.errors, openingAndMapping + refusal("read", scene.source(), EIO));
    EXPECT_EQ(run.run.output, "");
    EXPECT_EQ(run.run.status, 2);
    EXPECT_EQ(readFile(scene.extractedFile()), bytesOf(scene.embeddedAudio().substr(0, kept)));
}

}  // namespace

}  // namespace trellant::testing
