// SPDX-License-Identifier: Apache-2.0
// The limit that the process sets itself.
#include "confined_child.h"

#include <trellant/confine/memory_allowance.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdint>
#include <fstream>
#include <string>
#include <sys/resource.h>
#include <sys/sysinfo.h>
#include <trellant_testing/limited_group.h>

namespace trellant::testing {
namespace {

std::string limitOfData() {
    rlimit data{};
    ::getrlimit(RLIMIT_DATA, &data);
    return std::to_string(data.rlim_cur) + " of " + std::to_string(data.rlim_max);
}

/// The limit of data in a child that kept itself within what there is, after `limit` was set and
/// the group with the list `processes` entered, if any.
std::string limitAfter(rlimit limit, const std::string& processes = {}) {
    return reportFromChild(
        [limit, processes] {
            if (!processes.empty()) {
                std::ofstream(processes) << "0" << std::flush;
            }
            if (::setrlimit(RLIMIT_DATA, &limit) != 0) {
                return EINVAL;
            }
            keepWithinMemory();
            return 0;
        },
        limitOfData);
}

class MemoryAllowance : public ::testing::Test {
  protected:
    void SetUp() override {
        if (TRELLANT_SANITIZED != 0) {
            GTEST_SKIP() << "sanitizers need more than the machine has";
        }
        ASSERT_EQ(::getrlimit(RLIMIT_DATA, &own_), 0);
    }

    rlimit own_{};
};

TEST_F(MemoryAllowance, IsNoMoreThanTheMachineHas) {
    struct sysinfo machine {};
    ASSERT_EQ(::sysinfo(&machine), 0);
    const auto bytes = (std::uint64_t{machine.totalram} + machine.totalswap) * machine.mem_unit;
    const std::string limit = limitAfter(own_);
    EXPECT_LE(std::stoull(limit), bytes);
    EXPECT_GE(std::stoull(limit), 1'048'576U);
    EXPECT_TRUE(limit.ends_with(" of " + std::to_string(own_.rlim_max))) << limit;
}

TEST_F(MemoryAllowance, IsSevenEighthsOfWhatTheGroupHasLeft) {
    constexpr std::uint64_t mebibyte = 1'048'576;
    const LimitedGroup group(64 * mebibyte);
    if (!group.exists()) {
        GTEST_SKIP() << "needs the right to make control groups";
    }
    const auto limit = std::stoull(limitAfter(own_, group.processes()));
    // The child itself takes some of it, pages that it shares with nobody.
    EXPECT_LE(limit, 56 * mebibyte);
    EXPECT_GE(limit, 48 * mebibyte);
}

TEST_F(MemoryAllowance, IsNeverTooLittleForAWord) {
    const LimitedGroup group(4 * 1'048'576);
    if (!group.exists()) {
        GTEST_SKIP() << "needs the right to make control groups";
    }
    EXPECT_GE(std::stoull(limitAfter(own_, group.processes())), 1'048'576U);
}

TEST_F(MemoryAllowance, LeavesASmallerLimitAlone) {
    const rlimit small{.rlim_cur = 12'345'678, .rlim_max = own_.rlim_max};
    EXPECT_EQ(limitAfter(small), "12345678 of " + std::to_string(own_.rlim_max));
}

}  // namespace
}  // namespace trellant::testing
