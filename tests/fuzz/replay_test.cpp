// SPDX-License-Identifier: Apache-2.0
// Inputs that fuzzing found worth keeping, and those that once broke a law, through the targets as
// the fuzzer calls them. A law that does not hold stops the process: the last name shown is that of
// the input.
#include "require.h"
#include "targets.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <iostream>
#include <string>
#include <trellant_testing/temporary_directory.h>
#include <vector>

namespace trellant::fuzzing {
namespace {

std::vector<std::filesystem::path> filesIn(const std::string& kind, const Target& target) {
    const auto folder = std::filesystem::path(TRELLANT_FUZZ_INPUTS) / kind / target.name;
    std::vector<std::filesystem::path> files;
    if (std::filesystem::exists(folder)) {
        for (const auto& entry : std::filesystem::directory_iterator(folder)) {
            files.push_back(entry.path());
        }
    }
    std::sort(files.begin(), files.end());
    return files;
}

class FuzzReplay : public ::testing::TestWithParam<Target> {
  protected:
    static void replay(const std::vector<std::filesystem::path>& files) {
        for (const auto& file : files) {
            std::cerr << file.filename().string() << '\n';
            GetParam().run(testing::readFile(file.string()));
        }
    }
};

TEST_P(FuzzReplay, CorpusKeepsTheLaws) {
    const auto files = filesIn("corpus", GetParam());
    ASSERT_FALSE(files.empty());
    replay(files);
}

TEST_P(FuzzReplay, WhatOnceBrokeALawKeepsItNow) {
    replay(filesIn("regressions", GetParam()));
}

TEST_P(FuzzReplay, CorpusIsSmall) {
    constexpr std::uintmax_t longest = 8'192;
    for (const auto& file : filesIn("corpus", GetParam())) {
        EXPECT_LE(std::filesystem::file_size(file), longest) << file;
    }
}

TEST_P(FuzzReplay, EmptyInputIsAnInput) {
    GetParam().run({});
}

std::string nameOfTarget(const ::testing::TestParamInfo<Target>& instance) {
    return std::string(instance.param.name);
}

INSTANTIATE_TEST_SUITE_P(EveryTarget, FuzzReplay, ::testing::ValuesIn(targets), nameOfTarget);

TEST(FuzzLaw, ThatHoldsIsSilent) {
    require(true, "one is one");
}

TEST(FuzzLaw, ThatDoesNotHoldStopsTheProcess) {
    EXPECT_EXIT(require(false, "one is two"), ::testing::KilledBySignal(SIGABRT),
                "^does not hold: one is two\n$");
}

TEST(FuzzTarget, IsFoundByItsName) {
    EXPECT_EQ(targetNamed("mapping").run, runMapping);
    EXPECT_EQ(targetNamed("mapping").containerOffset, 1U);
    EXPECT_EQ(targetNamed("timeline").run, runTimeline);
    EXPECT_EQ(targetNamed("timeline").containerOffset, std::nullopt);
}

TEST(FuzzTarget, WithoutANameStopsTheProcess) {
    EXPECT_EXIT(static_cast<void>(targetNamed("mappings")), ::testing::KilledBySignal(SIGABRT),
                "^does not hold: there is such a target\n$");
}

}  // namespace
}  // namespace trellant::fuzzing
