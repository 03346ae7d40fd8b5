// SPDX-License-Identifier: Apache-2.0
// A quota of open files.
#include "sweep.h"

#include <trellant/protocol/messages.h>

#include <cerrno>
#include <sys/resource.h>
#include <trellant_testing/requests.h>

namespace trellant::testing {

namespace {

const std::string opening = progressLineText("opening", "0.05");
const std::string openingAndMapping = opening + progressLineText("reconstructing", "0.15") +
                                      progressLineText("reconstructing", "0.15");

class FewFiles : public TracedTest {
  protected:
    /// So many files may be open at once, the three streams among them, once the program's own
    /// code runs.
    WorkerRun runWith(rlim_t files, std::string_view operation) {
        return runTraced({.input = scene_.request(operation),
                          .places = scene_.places(),
                          .director =
                              [files](const SeenCall& seen, pid_t process) {
                                  if (seen.kind == CallKind::signals && seen.ordinal == 0) {
                                      const rlimit limit{files, files};
                                      EXPECT_EQ(::prlimit(process, RLIMIT_NOFILE, &limit, nullptr),
                                                0);
                                  }
                                  return Intervention{};
                              }})
            .run;
    }
    static void expectFailed(const WorkerRun& run, const std::string& errors) {
        EXPECT_EQ(run.errors, errors);
        EXPECT_EQ(run.output, "");
        EXPECT_EQ(run.status, 2);
    }

    Scene scene_;
};

TEST_F(FewFiles, NoneBesideTheStreamsLeavesTheSourceClosed) {
    for (const std::string_view operation : {"inspect", "extractAndInspect"}) {
        expectFailed(runWith(3, operation), opening + refusal("open", scene_.source(), EMFILE));
    }
}

TEST_F(FewFiles, TheSourceAloneLeavesNoneToExtractTo) {
    expectFailed(runWith(4, "extractAndInspect"),
                 openingAndMapping + refusal("create", scene_.extractedFile(), EMFILE));
}

TEST_F(FewFiles, TheSourceAloneLeavesExternalAudioUnread) {
    const auto run = runWith(4, "inspect");
    EXPECT_EQ(run.status, 0) << run.errors;
    const auto result = decodeResult(run.output);
    const auto& essences = result.timeline.essences;
    ASSERT_EQ(essences.size(), 3U);
    EXPECT_EQ(essences[0].codec, "PCM");
    EXPECT_EQ(essences[1].fileURL, std::nullopt) << "the search directory cannot be opened";
    EXPECT_EQ(essences[2].fileURL, AAFURL{"file://" + scene_.namedFile()}) << "looked at only";
    EXPECT_EQ(essences[2].codec, "WAVD") << "not opened";
}

TEST_F(FewFiles, SixAreEnoughForEverything) {
    TracedRun traced;
    const auto undisturbed = undisturbedRun(scene_, {.operation = "extractAndInspect"}, traced);
    std::filesystem::remove_all(scene_.work());
    const auto run = runWith(6, "extractAndInspect");
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.output, undisturbed.output);
    EXPECT_EQ(run.errors, undisturbed.errors);
}

}  // namespace

}  // namespace trellant::testing
