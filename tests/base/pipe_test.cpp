// SPDX-License-Identifier: Apache-2.0
#include <trellant/base/file_descriptor.h>

#include <gtest/gtest.h>

#include <fcntl.h>

namespace trellant {
namespace {

constexpr int small = 65'536;

TEST(Pipe, LargeOneIsMadeToHoldLess) {
    const Pipe pipe = makePipe();
    ASSERT_EQ(::fcntl(pipe.writing.number(), F_SETPIPE_SZ, 4 * small), 4 * small);
    limitCapacity(pipe.reading, small);
    EXPECT_EQ(::fcntl(pipe.writing.number(), F_GETPIPE_SZ), small);
}

TEST(Pipe, SmallOneStaysSmall) {
    const Pipe pipe = makePipe();
    ASSERT_EQ(::fcntl(pipe.writing.number(), F_SETPIPE_SZ, small / 4), small / 4);
    limitCapacity(pipe.reading, small);
    EXPECT_EQ(::fcntl(pipe.writing.number(), F_GETPIPE_SZ), small / 4);
}

}  // namespace
}  // namespace trellant
