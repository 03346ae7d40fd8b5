// SPDX-License-Identifier: Apache-2.0
// What control groups leave a process, from files as the kernel writes them.
#include "memory_room.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>
#include <trellant_testing/temporary_directory.h>

namespace trellant::testing {
namespace {

class ControlGroups : public ::testing::Test {
  protected:
    /// Writes a file of the groups, "memory.max" of the group "/a/b" at "a/b/memory.max".
    void write(std::string_view name, std::string_view text) const {
        const auto path = folder_.path() / "groups" / name;
        std::filesystem::create_directories(path.parent_path());
        std::ofstream(path, std::ios::binary) << text;
    }
    /// What is left to a process with these lines in its list.
    [[nodiscard]] std::optional<std::uint64_t> room(std::string_view membership) const {
        std::ofstream(folder_.path() / "membership", std::ios::binary) << membership;
        return controlGroupRoom(folder_.file("membership"), folder_.file("groups"));
    }

  private:
    TemporaryDirectory folder_;
};

TEST_F(ControlGroups, LeaveTheLimitLessWhatIsUsed) {
    write("a/memory.max", "1000000\n");
    write("a/memory.current", "300000\n");
    write("a/memory.stat", "anon 300000\nfile 0\n");
    EXPECT_EQ(room("0::/a\n"), 700'000U);
}

TEST_F(ControlGroups, CountPagesThatAreGivenBackAsFree) {
    // 600000 used, of which 200000 + 50000 + 10000 can be given back: 340000 stay.
    write("a/memory.max", "1000000\n");
    write("a/memory.current", "600000\n");
    write("a/memory.stat",
          "anon 300000\nfile 290000\nshmem 40000\ninactive_anon 1\ninactive_file 200000\n"
          "active_file 50000\nslab_reclaimable 10000\nslab_unreclaimable 5\n");
    EXPECT_EQ(room("0::/a\n"), 660'000U);
}

TEST_F(ControlGroups, OfAllLevelsLeaveTheFewest) {
    write("memory.max", "5000\n");
    write("memory.current", "4000\n");
    write("a/memory.max", "max\n");
    write("a/memory.current", "4000\n");
    write("a/b/memory.max", "3000\n");
    write("a/b/memory.current", "500\n");
    EXPECT_EQ(room("0::/a/b\n"), 1'000U);
    EXPECT_EQ(room("0::/a\n"), 1'000U);
    write("memory.max", "9000\n");
    EXPECT_EQ(room("0::/a/b\n"), 2'500U);
    EXPECT_EQ(room("0::/a\n"), 5'000U);
}

TEST_F(ControlGroups, OfTheFirstVersionLeaveTheirLimitToo) {
    // 4096 used, of which 1024 + 512 can be given back: 2560 stay.
    write("memory/a/memory.limit_in_bytes", "10240\n");
    write("memory/a/memory.usage_in_bytes", "4096\n");
    write("memory/a/memory.stat",
          "active_file 1\ninactive_file 1\ntotal_inactive_file 1024\ntotal_active_file 512\n");
    EXPECT_EQ(room("5:cpu,cpuacct:/x\n4:memory:/a\n"), 7'680U);
    EXPECT_EQ(room("4:cpu,memory:/a\n"), 7'680U);
}

TEST_F(ControlGroups, OfTheFirstVersionSayNoLimitWithANumber) {
    write("memory/a/memory.limit_in_bytes", "9223372036854771712\n");
    write("memory/a/memory.usage_in_bytes", "4096\n");
    EXPECT_EQ(room("4:memory:/a\n"), std::nullopt);
}

TEST_F(ControlGroups, OfBothVersionsAreAskedWhereMemoryIsNamed) {
    write("memory/a/memory.limit_in_bytes", "8192\n");
    write("b/memory.max", "100\n");
    EXPECT_EQ(room("4:memory:/a\n0::/b\n"), 8'192U);
    EXPECT_EQ(room("0::/b\n4:memory:/a\n"), 8'192U);
    EXPECT_EQ(room("4:memory_of_another:/a\n0::/b\n"), 100U);
}

TEST_F(ControlGroups, ThatAreNotMountedLeaveWhatTheTopmostLeaves) {
    // In a container the list names the path outside of it.
    write("memory.max", "700\n");
    EXPECT_EQ(room("0::/containers/1234\n"), 700U);
    EXPECT_EQ(room("0::/\n"), 700U);
    EXPECT_EQ(room("0::/../other\n"), 700U);
    EXPECT_EQ(room("0::\n"), 700U);
}

TEST_F(ControlGroups, ThatAreFullLeaveNothing) {
    write("a/memory.max", "1000\n");
    write("a/memory.current", "1200\n");
    EXPECT_EQ(room("0::/a\n"), 0U);
}

TEST_F(ControlGroups, WithoutLimitsLimitNothing) {
    EXPECT_EQ(room("0::/a\n"), std::nullopt);
    write("a/memory.max", "max\n");
    EXPECT_EQ(room("0::/a\n"), std::nullopt);
}

TEST_F(ControlGroups, InDamagedListsLimitNothing) {
    write("a/memory.max", "100\n");
    EXPECT_EQ(room(""), std::nullopt);
    EXPECT_EQ(room("\n\n"), std::nullopt);
    EXPECT_EQ(room("0:/a\n"), std::nullopt);
    EXPECT_EQ(room("1:name=x:/a\n"), std::nullopt);
    EXPECT_EQ(controlGroupRoom("/nowhere", "/nowhere"), std::nullopt);
}

TEST_F(ControlGroups, WithDamagedNumbersLimitNothing) {
    write("a/memory.max", "-5\n");
    EXPECT_EQ(room("0::/a\n"), std::nullopt);
    write("a/memory.max", "99999999999999999999999\n");
    EXPECT_EQ(room("0::/a\n"), std::nullopt);
    write("a/memory.max", "");
    EXPECT_EQ(room("0::/a\n"), std::nullopt);
    write("a/memory.max", "1000");
    write("a/memory.current", "many");
    EXPECT_EQ(room("0::/a"), 1'000U);
    // Statistics that say more than there is, or nothing.
    write("a/memory.current", "400");
    write("a/memory.stat",
          "inactive_file 18446744073709551615\nactive_file 18446744073709551615\nfile\n 5\n\n");
    EXPECT_EQ(room("0::/a"), 1'000U);
}

class Machine : public ::testing::Test {
  protected:
    [[nodiscard]] std::optional<std::uint64_t> room(std::string_view statistics) const {
        std::ofstream(folder_.path() / "statistics", std::ios::binary) << statistics;
        return machineRoom(folder_.file("statistics"));
    }

  private:
    TemporaryDirectory folder_;
};

TEST_F(Machine, HasWhatIsAvailableAndSwap) {
    EXPECT_EQ(room("MemTotal:        8000000 kB\nMemFree:          100000 kB\n"
                   "MemAvailable:    3000000 kB\nBuffers:           5 kB\nSwapTotal:   2000 kB\n"
                   "SwapFree:           1000 kB\n"),
              3'001'000U * 1024U);
    EXPECT_EQ(room("MemAvailable: 7 kB"), 7U * 1024U);
}

TEST_F(Machine, ThatDoesNotSayLimitsNothing) {
    EXPECT_EQ(room("MemTotal: 8000000 kB\nSwapFree: 1000 kB\n"), std::nullopt);
    EXPECT_EQ(room("MemAvailable: many kB\n"), std::nullopt);
    EXPECT_EQ(room("MemAvailable:\n"), std::nullopt);
    EXPECT_EQ(room("MemAvailable: 18446744073709551615 kB\n"), std::nullopt);
    EXPECT_EQ(room(""), std::nullopt);
    EXPECT_EQ(machineRoom("/nowhere"), std::nullopt);
}

}  // namespace
}  // namespace trellant::testing
