// SPDX-License-Identifier: Apache-2.0
// The reader of these tests finds what is wrong: files that it finds no fault in are worth
// something.
#include "written.h"

#include <trellant_testing/byte_writer.h>

namespace trellant::compound {
namespace {

using ::testing::Contains;
using ::testing::IsEmpty;
using ::testing::Not;

/// Header, FAT in sector 0, directory in 1, mini FAT in 2, mini stream in 3, stream from 4 to 6.
Bytes sound() {
    CompoundFile file = newFile();
    file.addStream(Storage::root, u"a", Bytes(10, std::byte{1}));
    file.addStream(Storage::root, u"bb", Bytes(9000, std::byte{2}));
    file.addStorage(Storage::root, u"ccc");
    Bytes bytes = Written(file).image.bytes();
    EXPECT_EQ(bytes.size(), 8 * 4096U);
    return bytes;
}

constexpr std::size_t sector = 4096;
constexpr std::size_t fat = sector;
constexpr std::size_t directory = 2 * sector;
constexpr std::size_t entry = 128;
/// Of the FAT.
constexpr std::size_t number = 4;

std::vector<std::string> problemsWith(std::size_t offset, unsigned value) {
    MemoryImage image;
    image.bytes() = sound();
    EXPECT_NE(image.bytes().at(offset), static_cast<std::byte>(value));
    image.bytes()[offset] = static_cast<std::byte>(value);
    return CompoundReader(image).problems();
}

TEST(CompoundReaderItself, SeesChainsThatAreWrong) {
    // The last sector of the stream leads to the directory.
    EXPECT_THAT(problemsWith(fat + 6 * number, 1), Not(IsEmpty()));
    // Its first one ends the chain.
    EXPECT_THAT(problemsWith(fat + 4 * number, 0xFE), Not(IsEmpty()));
    EXPECT_THAT(problemsWith(fat, 0xFE), Contains("number of sectors marked as FAT"));
    EXPECT_THAT(problemsWith(fat + 7 * number, 0),
                Contains("the FAT knows a sector behind the end, 7"));
}

TEST(CompoundReaderItself, SeesTreesThatAreWrong) {
    // The middle of the three is the second; its colour, then the name of the one left of it.
    EXPECT_THAT(problemsWith(directory + 2 * entry + 67, 0), Contains("the root of a tree is red"));
    EXPECT_THAT(problemsWith(directory + 1 * entry + 67, 0),
                Contains("more black entries on one side of entry 2"));
    EXPECT_THAT(problemsWith(directory + 1 * entry + 68, 3), Not(IsEmpty()));
    EXPECT_THAT(problemsWith(directory + 2 * entry + 72, 0xFF), Not(IsEmpty()));
}

TEST(CompoundReaderItself, SeesBytesWhereNoneBelong) {
    EXPECT_THAT(problemsWith(600, 1), Contains("bytes behind the header"));
    EXPECT_THAT(problemsWith(4 * sector + 10, 1), Contains("bytes behind stream 1"));
    EXPECT_THAT(problemsWith(8 * sector - 1, 1), Contains("bytes behind stream 2"));
    EXPECT_THAT(problemsWith(directory + 5 * entry, 1),
                Contains("something in the unused entry 5"));
    EXPECT_THAT(problemsWith(directory + 3 * entry + 100, 1),
                Contains("state or times of entry 3"));
}

TEST(CompoundReaderItself, EveryChangeOfHeaderAndTablesIsSeen) {
    const Bytes bytes = sound();
    MemoryImage image;
    image.bytes() = bytes;
    for (std::size_t offset = 0; offset < 3 * sector; offset += 7) {
        // Classes, names and the lengths of streams within a sector are free.
        const std::size_t within = offset < directory ? offset : (offset - directory) % entry;
        const bool free = offset < directory
                              ? (offset >= 8 && offset < 24)
                              : within < 64 || (within >= 80 && within < 96) || within == 120;
        if (free) {
            continue;
        }
        image.bytes()[offset] ^= std::byte{0x55};
        EXPECT_THAT(CompoundReader(image).problems(), Not(IsEmpty())) << offset;
        image.bytes()[offset] = bytes[offset];
    }
}

}  // namespace
}  // namespace trellant::compound
