// SPDX-License-Identifier: Apache-2.0
// A conversion that is ended halfway: by the end of whoever started it, by a signal.
#include <trellant/base/program_start.h>

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <string>
#include <sys/wait.h>
#include <thread>
#include <trellant_testing/aiff_builder.h>
#include <trellant_testing/byte_writer.h>
#include <trellant_testing/killed_host.h>
#include <trellant_testing/temporary_directory.h>
#include <unistd.h>

namespace trellant::testing {
namespace {

namespace fs = std::filesystem;

class InterruptedConversion : public ::testing::Test {
  protected:
    InterruptedConversion() {
        // Seconds of work, all of it a hole in the file.
        constexpr std::uint32_t sampleBytes = 1'900'000'000;
        constexpr std::uint32_t headBytes = 46;
        ByteWriter head(OMFByteOrder::big);
        head.text("FORM").u32(headBytes + sampleBytes).text("AIFF");
        head.text("COMM").u32(18).u16(1).u32(sampleBytes / 2).u16(16);
        head.bytes(extended80Bytes(48'000));
        head.text("SSND").u32(8 + sampleBytes).u32(0).u32(0);
        writeFile(source_, head.written());
        fs::resize_file(source_, head.size() + sampleBytes);
    }

    [[nodiscard]] bool isBegun() const {
        return fs::exists(destination_) && fs::file_size(destination_) > 0;
    }
    void awaitHalfFile() const {
        constexpr std::chrono::milliseconds rest{1};
        constexpr int looks = 60'000;
        for (int look = 0; look < looks && !isBegun(); ++look) {
            std::this_thread::sleep_for(rest);
        }
        ASSERT_TRUE(isBegun());
    }

    TemporaryDirectory folder_;
    std::string source_ = folder_.file("in.aiff");
    std::string destination_ = folder_.file("out.wav");
};

TEST_F(InterruptedConversion, EndsWithWhoeverStartedItAndLeavesNoHalfFile) {
    KilledHost host([&](const std::function<void()>& ready) {
        ready();
        ::execl(TRELLANT_WAV, TRELLANT_WAV, source_.c_str(), destination_.c_str(), nullptr);
    });
    awaitHalfFile();
    host.kill();
    const int status = host.endOfWorker();
    EXPECT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 2);
    EXPECT_FALSE(fs::exists(destination_));
}

TEST_F(InterruptedConversion, SignalThatEndsItLeavesNoHalfFile) {
    const pid_t process = ProgramStart({}).start({TRELLANT_WAV, source_, destination_});
    awaitHalfFile();
    ASSERT_EQ(::kill(process, SIGTERM), 0);
    int status = 0;
    ASSERT_EQ(::waitpid(process, &status, 0), process);
    EXPECT_TRUE(WIFSIGNALED(status));
    EXPECT_EQ(WTERMSIG(status), SIGTERM);
    EXPECT_FALSE(fs::exists(destination_));
}

}  // namespace
}  // namespace trellant::testing
