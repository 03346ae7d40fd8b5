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
#include <vector>

namespace trellant::testing {
namespace {

namespace fs = std::filesystem;

/// What is made, and the words behind the two names of files.
struct Mode {
    std::string option;
    std::vector<std::string> more;
};

class InterruptedConversion : public ::testing::TestWithParam<Mode> {
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

    [[nodiscard]] std::vector<std::string> commandLine() const {
        std::vector<std::string> words{TRELLANT_WAV};
        if (!GetParam().option.empty()) {
            words.push_back(GetParam().option);
        }
        words.insert(words.end(), {source_, destination_});
        words.insert(words.end(), GetParam().more.begin(), GetParam().more.end());
        return words;
    }
    [[nodiscard]] bool isBegun() const { return fs::exists(destination_); }
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

TEST_P(InterruptedConversion, EndsWithWhoeverStartedItAndLeavesNoHalfFile) {
    KilledHost host([&](const std::function<void()>& ready) {
        std::vector<std::string> words = commandLine();
        std::vector<char*> arguments;
        for (std::string& word : words) {
            arguments.push_back(word.data());
        }
        arguments.push_back(nullptr);
        ready();
        ::execv(TRELLANT_WAV, arguments.data());
    });
    awaitHalfFile();
    host.kill();
    const int status = host.endOfWorker();
    EXPECT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 2);
    EXPECT_FALSE(fs::exists(destination_));
}

TEST_P(InterruptedConversion, SignalThatEndsItLeavesNoHalfFile) {
    const pid_t process = ProgramStart({}).start(commandLine());
    awaitHalfFile();
    ASSERT_EQ(::kill(process, SIGTERM), 0);
    int status = 0;
    ASSERT_EQ(::waitpid(process, &status, 0), process);
    EXPECT_TRUE(WIFSIGNALED(status));
    EXPECT_EQ(WTERMSIG(status), SIGTERM);
    EXPECT_FALSE(fs::exists(destination_));
}

INSTANTIATE_TEST_SUITE_P(EachMode, InterruptedConversion,
                         ::testing::Values(Mode{"", {}}, Mode{"--measure", {"8192"}},
                                           Mode{"--waveform", {"256", "16"}},
                                           Mode{"--preview", {"64000", "0", "0"}}),
                         [](const auto& mode) {
                             const std::string& option = mode.param.option;
                             return option.empty() ? "Wave" : option.substr(2);
                         });

}  // namespace
}  // namespace trellant::testing
