// SPDX-License-Identifier: Apache-2.0
// The committed examples, byte for byte: the files are what the generator makes, the results are
// the accepted ones, the extracted files are the media that went in.
#include "example_run.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <spawn.h>
#include <sys/wait.h>
#include <trellant_testing/byte_writer.h>
#include <unistd.h>

namespace trellant::testing {

namespace {

std::vector<std::string> filesBelow(const std::filesystem::path& folder,
                                    const std::vector<std::string>& extensions) {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
        const auto extension = entry.path().extension().string();
        if (std::find(extensions.begin(), extensions.end(), extension) != extensions.end()) {
            names.push_back(entry.path().lexically_relative(folder).string());
        }
    }
    std::sort(names.begin(), names.end());
    return names;
}

/// The exit status of the generator, writing into `folder`.
int generateInto(std::string folder) {
    std::string program = TRELLANT_EXAMPLES_GENERATOR;
    std::array<char*, 3> arguments{program.data(), folder.data(), nullptr};
    pid_t child = 0;
    if (::posix_spawn(&child, program.c_str(), nullptr, nullptr, arguments.data(), environ) != 0) {
        return -1;
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST(ExampleFiles, CommittedFilesAreWhatTheGeneratorMakes) {
    const TemporaryDirectory made;
    ASSERT_EQ(generateInto(made.path().string()), 0);
    const std::vector<std::string> names{"archive.omf", "external.omf", "media/Door.wav",
                                         "session.omf"};
    EXPECT_EQ(filesBelow(made.path(), {".omf", ".wav"}), names);
    EXPECT_EQ(filesBelow(examplesFolder(), {".omf", ".wav"}), names);
    for (const std::string& name : names) {
        EXPECT_TRUE(readFile(made.file(name)) == readFile(examplesFolder() + "/" + name)) << name;
    }
}

TEST(ExampleFiles, AreSmall) {
    std::uintmax_t bytes = 0;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(examplesFolder())) {
        bytes += entry.is_regular_file() ? entry.file_size() : 0;
    }
    EXPECT_LT(bytes, 600U * 1024U);
}

class ExampleResults : public ::testing::TestWithParam<std::string> {
  protected:
    static examples::Example example() {
        const auto all = examples::allExamples();
        return *std::find_if(all.begin(), all.end(), [](const examples::Example& candidate) {
            return candidate.name == GetParam();
        });
    }
};

TEST_P(ExampleResults, IsTheAcceptedOne) {
    const ExampleRun run(example());
    ASSERT_EQ(run.run().status, 0) << run.run().errors;
    const std::string received = run.portableOutput();
    const std::string accepted = examplesFolder() + "/" + GetParam() + ".accepted.json";
    if (!std::filesystem::exists(accepted) || received != textOf(readFile(accepted))) {
        const std::string place =
            std::string(TRELLANT_RECEIVED) + "/" + GetParam() + ".received.json";
        writeFile(place, bytesOf(received));
        FAIL() << "differs from the accepted result; what came is in " << place;
    }
}

TEST_P(ExampleResults, ExtractedFilesAreTheEmbeddedMedia) {
    const ExampleRun run(example());
    std::vector<std::string> names;
    for (const examples::NamedFile& file : example().extracted) {
        names.push_back(file.name);
        EXPECT_TRUE(readFile(run.workFile(file.name)) == file.bytes) << file.name;
    }
    std::sort(names.begin(), names.end());
    EXPECT_EQ(run.workFiles(), names);
}

TEST_P(ExampleResults, PassesValidation) {
    const ExampleRun run(example());
    EXPECT_NO_THROW(static_cast<void>(run.timeline()));
}

INSTANTIATE_TEST_SUITE_P(Examples, ExampleResults,
                         ::testing::Values("session", "external", "archive"),
                         [](const auto& example) { return example.param; });

}  // namespace

}  // namespace trellant::testing
