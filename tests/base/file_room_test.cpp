// SPDX-License-Identifier: Apache-2.0
#include <trellant/base/file_room.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace trellant {
namespace {

TEST(FileRoom, LeavesLengthAndContentAlone) {
    std::string name = ::testing::TempDir() + "trellant-room-XXXXXX";
    const int file = ::mkstemp(name.data());
    ASSERT_GE(file, 0);
    ::unlink(name.c_str());
    ASSERT_EQ(::pwrite(file, "text", 4, 0), 4);
    makeFileRoom(file, 2, 1'048'576);
    struct stat status {};
    ASSERT_EQ(::fstat(file, &status), 0);
    EXPECT_EQ(status.st_size, 4);
    std::string content(5, ' ');
    EXPECT_EQ(::pread(file, content.data(), 5, 0), 4);
    EXPECT_EQ(content, "text ");
    ::close(file);
}

// More than any disk has, and what is no file: the write that follows tells.
TEST(FileRoom, ThatIsNotToBeHadIsNoMatter) {
    std::string name = ::testing::TempDir() + "trellant-room-XXXXXX";
    const int file = ::mkstemp(name.data());
    ASSERT_GE(file, 0);
    ::unlink(name.c_str());
    makeFileRoom(file, 0, std::uint64_t{1} << 62U);
    makeFileRoom(file, 0, ~std::uint64_t{0});
    EXPECT_EQ(::write(file, "text", 4), 4);
    ::close(file);
    makeFileRoom(-1, 0, 1);
}

}  // namespace
}  // namespace trellant
