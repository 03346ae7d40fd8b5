// SPDX-License-Identifier: Apache-2.0
// Small reads out of cached blocks, of files that change under the reader's hands.
#include "bento_block_cache.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <trellant_testing/byte_writer.h>
#include <trellant_testing/temporary_directory.h>

namespace trellant {
namespace {

using testing::bytesOf;
using testing::textOf;

constexpr std::size_t blockSize = 16'384;
/// Blocks so far apart take the same slot.
constexpr std::size_t slotCount = 128;
constexpr std::size_t farBlock = slotCount * blockSize;

/// A file of `a` to the block that takes the first one's slot, and that block of `z`.
class BentoBlockCacheTest : public ::testing::Test {
  protected:
    BentoBlockCacheTest() {
        std::string text(farBlock, 'a');
        text.append(blockSize, 'z');
        testing::writeFile(path_, bytesOf(text));
    }

    void resize(std::size_t size) const { std::filesystem::resize_file(path_, size); }

    /// The bytes from `offset`; "cannot" when they are not to be had.
    [[nodiscard]] static std::string readAt(BentoBlockCache& cache, std::uint64_t offset,
                                            std::size_t count) {
        Bytes bytes(count);
        return cache.read(offset, bytes) ? textOf(bytes) : "cannot";
    }

    testing::TemporaryDirectory folder_;
    std::string path_ = folder_.file("container");
};

TEST_F(BentoBlockCacheTest, ReadsWithinABlockAndAcrossTwo) {
    const RandomAccessFile file(path_);
    BentoBlockCache cache(file);
    EXPECT_EQ(readAt(cache, farBlock - 3, 3), "aaa");
    EXPECT_EQ(readAt(cache, farBlock, 3), "zzz");
    EXPECT_EQ(readAt(cache, farBlock - 2, 5), "aazzz");
    EXPECT_EQ(readAt(cache, farBlock + blockSize - 1, 1), "z");
}

TEST_F(BentoBlockCacheTest, AsksTheFileOnceForABlockInItsSlot) {
    const RandomAccessFile file(path_);
    BentoBlockCache cache(file);
    for (std::uint64_t offset = 0; offset < blockSize; offset += 100) {
        ASSERT_EQ(readAt(cache, offset, 4), "aaaa");
    }
    EXPECT_EQ(file.readCalls(), 1U);
    EXPECT_EQ(readAt(cache, farBlock, 1), "z");
    EXPECT_EQ(readAt(cache, 0, 1), "a");
    EXPECT_EQ(file.readCalls(), 3U);
}

TEST_F(BentoBlockCacheTest, RefusesWhatLeavesTheFile) {
    const RandomAccessFile file(path_);
    BentoBlockCache cache(file);
    const std::uint64_t size = farBlock + blockSize;
    EXPECT_EQ(readAt(cache, size, 0), "");
    EXPECT_EQ(readAt(cache, size, 1), "cannot");
    EXPECT_EQ(readAt(cache, size - 1, 2), "cannot");
    EXPECT_EQ(readAt(cache, size + 1, 0), "cannot");
    EXPECT_EQ(readAt(cache, ~std::uint64_t{0}, 2), "cannot");
    EXPECT_EQ(file.readCalls(), 0U);
}

// The far block's first half comes into the slot before the file ends.
TEST_F(BentoBlockCacheTest, HalfFilledSlotServesNeitherBlock) {
    const RandomAccessFile file(path_);
    BentoBlockCache cache(file);
    ASSERT_EQ(readAt(cache, 0, 4), "aaaa");
    resize(farBlock + blockSize / 2);
    EXPECT_EQ(readAt(cache, farBlock, 4), "cannot");
    EXPECT_EQ(readAt(cache, 0, 4), "aaaa");
    EXPECT_EQ(readAt(cache, farBlock, 4), "cannot");
}

TEST_F(BentoBlockCacheTest, BlockThatFailedIsReadAgain) {
    const RandomAccessFile file(path_);
    BentoBlockCache cache(file);
    resize(farBlock + 1);
    EXPECT_EQ(readAt(cache, farBlock, 1), "cannot");
    // What the file lost comes back as zeros.
    resize(farBlock + blockSize);
    EXPECT_EQ(readAt(cache, farBlock, 4), std::string("z\0\0\0", 4));
}

TEST_F(BentoBlockCacheTest, FailureInTheSecondBlockLeavesTheFirstInItsSlot) {
    const RandomAccessFile file(path_);
    BentoBlockCache cache(file);
    resize(farBlock);
    EXPECT_EQ(readAt(cache, farBlock - 2, 4), "cannot");
    const std::uint64_t calls = file.readCalls();
    EXPECT_EQ(readAt(cache, farBlock - 2, 2), "aa");
    EXPECT_EQ(file.readCalls(), calls);
}

TEST_F(BentoBlockCacheTest, LastBlockMayBeShort) {
    resize(farBlock + 10);
    const RandomAccessFile file(path_);
    BentoBlockCache cache(file);
    EXPECT_EQ(readAt(cache, farBlock + 4, 6), "zzzzzz");
    EXPECT_EQ(readAt(cache, farBlock + 4, 7), "cannot");
}

}  // namespace
}  // namespace trellant
