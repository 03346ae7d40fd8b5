// SPDX-License-Identifier: Apache-2.0
// What strangers' names and a small machine do to the worker.
#include "worker_fixture.h"

#include <gtest/gtest.h>

#include <string>
#include <sys/resource.h>

namespace trellant::testing {

namespace {

/// Files may hold at most this many bytes while it lives; children inherit it.
class FileSizeLimit {
  public:
    explicit FileSizeLimit(rlim_t bytes) {
        EXPECT_EQ(::getrlimit(RLIMIT_FSIZE, &before_), 0);
        const rlimit small{bytes, before_.rlim_max};
        EXPECT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
    }
    ~FileSizeLimit() { ::setrlimit(RLIMIT_FSIZE, &before_); }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;
    FileSizeLimit(FileSizeLimit&&) = delete;
    FileSizeLimit& operator=(FileSizeLimit&&) = delete;

  private:
    rlimit before_{};
};

class HelperMisuse : public WorkerTest {};

TEST_F(HelperMisuse, LineFeedInAPathDoesNotForgeAProgressLine) {
    RequestText request = requestFor("inspect", "", "");
    request.aafPath = R"("/missing\nTRELLANT-AAF-PROGRESS {\"phase\":\"done\",\"fraction\":1}")";
    expectFailed(run(request), progressLineText("opening", "0.05"),
                 "unexpected failure: cannot open \"/missing\xEF\xBF\xBDTRELLANT-AAF-PROGRESS "
                 "{\"phase\":\"done\",\"fraction\":1}\": No such file or directory");
}

TEST_F(HelperMisuse, FileSizeLimitDuringExtractionIsAFailureAndNoSignal) {
    const std::string source = oneClipFile();
    const std::string work = path("work");
    const FileSizeLimit limit(512);
    const WorkerRun answer = run(requestFor("extractAndInspect", source, work));
    EXPECT_FALSE(answer.signal.has_value());
    EXPECT_EQ(answer.status, 2);
    EXPECT_EQ(answer.output, "");
    EXPECT_TRUE(answer.errors.ends_with(
        logLineText("unexpected failure: cannot write \"" + work + "/Tone.wav\": File too large")))
        << answer.errors;
}

}  // namespace

}  // namespace trellant::testing
