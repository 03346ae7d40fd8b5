// The worker in a control group with little memory, where asking for too much ends a process: the
// right answer, or the line that says that memory is out.
#include "bounds_fixture.h"
#include "worker_fixture.h"

#include <filesystem>
#include <fstream>
#include <optional>
#include <unistd.h>
#include <utility>

namespace trellant::testing {
namespace {

/// A group below the topmost one of the first version, or of the second, removed at the end.
class LimitedGroup {
  public:
    explicit LimitedGroup(std::uint64_t limit) {
        for (const auto& [root, file] :
             {std::pair("/sys/fs/cgroup/memory", "memory.limit_in_bytes"),
              std::pair("/sys/fs/cgroup", "memory.max")}) {
            const std::filesystem::path path =
                std::filesystem::path(root) / ("trellant-test-" + std::to_string(::getpid()));
            std::error_code failure;
            if (!std::filesystem::create_directory(path, failure)) {
                continue;
            }
            std::ofstream limitFile(path / file);
            limitFile << limit << std::flush;
            if (limitFile.good() && std::filesystem::exists(path / "cgroup.procs")) {
                path_ = path;
                return;
            }
            ::rmdir(path.c_str());
        }
    }
    LimitedGroup(const LimitedGroup&) = delete;
    LimitedGroup& operator=(const LimitedGroup&) = delete;
    LimitedGroup(LimitedGroup&&) = delete;
    LimitedGroup& operator=(LimitedGroup&&) = delete;
    ~LimitedGroup() {
        if (path_) {
            ::rmdir(path_->c_str());
        }
    }

    /// False where the test may make no groups.
    [[nodiscard]] bool exists() const noexcept { return path_.has_value(); }
    [[nodiscard]] std::string processes() const { return (*path_ / "cgroup.procs").string(); }

  private:
    std::optional<std::filesystem::path> path_;
};

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
    for (const std::uint64_t size : {20U, 32U, 64U, 100U, 128U, 200U, 256U, 300U, 400U}) {
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
