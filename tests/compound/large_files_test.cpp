// SPDX-License-Identifier: Apache-2.0
// Files around each size where their tables take another form. Long streams are given in pieces of
// one pattern whose length shares no factor with that of a sector, so that a sector in a wrong
// place shows.
#include "written.h"

#include <algorithm>
#include <limits>
#include <trellant_testing/byte_writer.h>

namespace trellant::compound {
namespace {

using Fault = CompoundError::Fault;

constexpr std::uint64_t sector = 4096;

const Bytes& pattern() {
    static const Bytes bytes = testing::patternBytes(1'000'003);
    return bytes;
}

ByteSource patternSource(std::uint64_t byteCount) {
    return [byteCount](const ByteSink& sink) {
        for (std::uint64_t left = byteCount; left > 0;) {
            const auto piece =
                static_cast<std::size_t>(std::min<std::uint64_t>(left, pattern().size()));
            sink(ByteView(pattern()).first(piece));
            left -= piece;
        }
    };
}

/// What stands at a place of such a stream.
Bytes patternAt(std::uint64_t offset, std::size_t count) {
    Bytes bytes;
    for (std::size_t index = 0; index < count; ++index) {
        bytes.push_back(pattern()[static_cast<std::size_t>((offset + index) % pattern().size())]);
    }
    return bytes;
}

struct LargeFile {
    SparseImage image{pattern()};
    std::optional<CompoundReader> reader;

    explicit LargeFile(std::initializer_list<std::uint64_t> streams) {
        CompoundFile file = newFile();
        char16_t name = u'a';
        for (const std::uint64_t byteCount : streams) {
            file.addStream(Storage::root, std::u16string(1, name++), byteCount,
                           patternSource(byteCount));
        }
        file.write([this](ByteView bytes) { image.append(bytes); });
        reader.emplace(image);
        EXPECT_THAT(reader->problems(), ::testing::IsEmpty());
    }

    void expectPattern(std::uint32_t stream, std::uint64_t offset, std::size_t count) const {
        EXPECT_EQ(reader->content(stream, offset, count), patternAt(offset, count));
    }
};

TEST(CompoundLargeFiles, FATSectorMayBeFullToTheLastEntry) {
    // FAT, directory and 1022 sectors of stream are 1024.
    const LargeFile file({1022 * sector});
    EXPECT_EQ(file.image.size(), 1025 * sector);
    EXPECT_EQ(file.reader->fatSectors(), 1U);
    file.expectPattern(1, 1021 * sector, sector);
}

TEST(CompoundLargeFiles, OneByteMoreThanAFATSectorTakesAnother) {
    const LargeFile file({1022 * sector + 1});
    EXPECT_EQ(file.image.size(), 1027 * sector);
    EXPECT_EQ(file.reader->fatSectors(), 2U);
    file.expectPattern(1, 1022 * sector, 1);
}

TEST(CompoundLargeFiles, HeaderNamesAHundredAndNineFATSectors) {
    // 109 of FAT and one of directory leave 111506 of 109 * 1024.
    const LargeFile file({111'506 * sector});
    EXPECT_EQ(file.reader->fatSectors(), 109U);
    EXPECT_EQ(file.reader->difatSectors(), 0U);
    EXPECT_EQ(file.image.size(), 111'617 * sector);
    EXPECT_LT(file.image.heldBytes(), 1'000'000U);
}

TEST(CompoundLargeFiles, OneFATSectorMoreTakesADIFATSector) {
    const LargeFile file({111'506 * sector + 1});
    EXPECT_EQ(file.reader->fatSectors(), 110U);
    EXPECT_EQ(file.reader->difatSectors(), 1U);
    file.expectPattern(1, 111'506 * sector - 10, 11);
}

TEST(CompoundLargeFiles, FileUpToTheLockedSectorHasNone) {
    // 512 of FAT, one of DIFAT and of directory leave 523772 of the 524286 before it.
    const LargeFile file({523'772 * sector});
    EXPECT_EQ(file.image.size(), 0x7FFFF000U);
    file.expectPattern(1, 523'772 * sector - 10, 10);
}

TEST(CompoundLargeFiles, StreamGoesOnBehindTheLockedSector) {
    const LargeFile file({523'772 * sector + 1});
    EXPECT_EQ(file.image.size(), 0x80001000U);
    EXPECT_EQ(file.reader->fatSectors(), 512U);
    file.expectPattern(1, 523'772 * sector - 10, 11);
}

TEST(CompoundLargeFiles, StreamsBehindTheLockedSectorKeepTheirBytes) {
    const std::uint64_t first = 523'772 * sector - 100 * sector;
    const LargeFile file({first, 200 * sector, 10'000, 63});
    file.expectPattern(1, first - sector, sector);
    file.expectPattern(2, 0, 200 * sector);
    file.expectPattern(3, 0, 10'000);
    file.expectPattern(4, 0, 63);
}

TEST(CompoundLargeFiles, StreamBeyondFourGibibytesKeepsItsLength) {
    const std::uint64_t length = (std::uint64_t{1} << 32U) + 5;
    const LargeFile file({length, 5000});
    EXPECT_EQ(file.reader->entries().at(1).size, length);
    file.expectPattern(1, 0x7FFFF000 - 600 * sector, 1200 * sector);
    file.expectPattern(1, length - 5000, 5000);
    file.expectPattern(2, 0, 5000);
    EXPECT_LT(file.image.heldBytes(), 10'000'000U);
}

TEST(CompoundLargeFiles, FullDIFATSectorIsFollowedByAnother) {
    // 109 + 1023 FAT sectors know 1159168; FAT, DIFAT, directory and the locked one take 1135.
    const LargeFile full({1'158'033 * sector});
    EXPECT_EQ(full.reader->fatSectors(), 1132U);
    EXPECT_EQ(full.reader->difatSectors(), 1U);
    const LargeFile more({1'158'033 * sector + 1});
    EXPECT_EQ(more.reader->fatSectors(), 1133U);
    EXPECT_EQ(more.reader->difatSectors(), 2U);
    more.expectPattern(1, 1'158'033 * sector, 1);
}

Fault faultOfLengths(std::initializer_list<std::uint64_t> streams) {
    CompoundFile file = newFile();
    char16_t name = u'a';
    for (const std::uint64_t byteCount : streams) {
        file.addStream(Storage::root, std::u16string(1, name++), byteCount,
                       [](const ByteSink&) { ADD_FAILURE() << "asked for its bytes"; });
    }
    return faultOf([&] { file.write([](ByteView) { ADD_FAILURE() << "wrote"; }); });
}

TEST(CompoundLargeFiles, MoreSectorsThanCanBeNumberedAreAnError) {
    const Fault tooMany = CompoundError::TooLarge{CompoundError::Bound::sectors};
    constexpr std::uint64_t most = std::numeric_limits<std::uint64_t>::max();
    EXPECT_EQ(faultOfLengths({most}), tooMany);
    EXPECT_EQ(faultOfLengths({most, most, most}), tooMany);
    EXPECT_EQ(faultOfLengths({0xFFFFFFFC * sector}), tooMany);
    // The stream alone could be numbered, its FAT no more.
    EXPECT_EQ(faultOfLengths({0xFFFFFFF0 * sector}), tooMany);
    EXPECT_STREQ(CompoundError(tooMany).what(),
                 "compound file: more sectors than the format can number");
}

TEST(CompoundLargeFiles, OtherBoundsAreNamedToo) {
    EXPECT_STREQ(CompoundError(CompoundError::TooLarge{CompoundError::Bound::entries}).what(),
                 "compound file: more storages and streams than the format can number");
    EXPECT_STREQ(CompoundError(CompoundError::TooLarge{CompoundError::Bound::miniSectors}).what(),
                 "compound file: more mini sectors than the format can number");
}

}  // namespace
}  // namespace trellant::compound
