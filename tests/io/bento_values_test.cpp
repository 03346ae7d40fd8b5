// SPDX-License-Identifier: Apache-2.0
#include "expect_throw.h"

#include <trellant/io/bento_container.h>

#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <limits>
#include <thread>
#include <trellant_testing/byte_writer.h>
#include <trellant_testing/container_builder.h>
#include <trellant_testing/temporary_directory.h>
#include <utility>
#include <vector>

namespace trellant {
namespace {

namespace fs = std::filesystem;
using testing::bytesOf;
using testing::ContainerBuilder;
using testing::faultOf;
using testing::hex;
using testing::patternBytes;
using testing::readFile;
using testing::TemporaryDirectory;
using testing::textOf;
using testing::writeFile;

constexpr std::uint64_t largest = std::numeric_limits<std::uint64_t>::max();

BentoImmediate immediate(std::string_view text) {
    BentoImmediate value{.count = static_cast<std::uint8_t>(text.size())};
    std::copy(text.begin(), text.end(), value.bytes.begin());
    return value;
}

class BentoValues : public ::testing::Test {
  protected:
    /// The container as built so far, opened.
    const BentoContainer& open() {
        path_ = writeFile(folder_.file("container"), builder_.build());
        container_.emplace(path_);
        return *container_;
    }

    /// What the fast path gives into a buffer of `capacity` bytes.
    std::optional<Bytes> small(const BentoContainer& container, std::uint32_t object,
                               std::string_view property, std::size_t capacity) {
        Bytes buffer(capacity);
        const auto value =
            container.smallValue(object, container.propertyID(property).value_or(0), buffer);
        return value ? std::optional(Bytes(value->begin(), value->end())) : std::nullopt;
    }

    TemporaryDirectory folder_;
    ContainerBuilder builder_;
    std::string path_;
    std::optional<BentoContainer> container_;
};

TEST_F(BentoValues, PiecesAreJoinedInTableOrder) {
    // The name of the first property is what lies first in the file.
    builder_.addItem(1, "OMFI:xyz", immediate("AB"));
    builder_.addItem(1, "OMFI:xyz", BentoRange{5, 3});
    const BentoContainer& container = open();
    EXPECT_EQ(textOf(container.valueData(1, "OMFI:xyz").value()), "ABxyz");
    EXPECT_EQ(textOf(small(container, 1, "OMFI:xyz", 5).value()), "ABxyz");
}

TEST_F(BentoValues, ReferenceListsAddNoBytes) {
    builder_.addItem(1, "OMFI:A", BentoReferenceList{99});
    builder_.addItem(1, "OMFI:A", immediate("AB"));
    const BentoContainer& container = open();
    EXPECT_EQ(textOf(container.valueData(1, "OMFI:A").value()), "AB");
    EXPECT_EQ(textOf(small(container, 1, "OMFI:A", 2).value()), "AB");
    EXPECT_EQ(textOf(container.valuePrefix(1, "OMFI:A", 9).value()), "AB");
}

TEST_F(BentoValues, GenerationsAreNotCompared) {
    builder_.addItem({1, builder_.propertyID("OMFI:A"), 0, 2, {immediate("A"), false}});
    builder_.addItem({1, builder_.propertyID("OMFI:A"), 0, 1, {immediate("B"), false}});
    EXPECT_EQ(textOf(open().valueData(1, "OMFI:A").value()), "AB");
}

TEST_F(BentoValues, EmptyValuesAreThereAndEmpty) {
    builder_.set(1, "OMFI:A", {});
    const BentoContainer& container = open();
    EXPECT_EQ(container.valueData(1, "OMFI:A"), Bytes{});
    EXPECT_EQ(small(container, 1, "OMFI:A", 4), Bytes{});
    EXPECT_EQ(small(container, 1, "OMFI:A", 0), Bytes{});
}

TEST_F(BentoValues, UnknownNamesAndObjectsAreAbsent) {
    builder_.set(1, "OMFI:A", hex("01"));
    const BentoContainer& container = open();
    const std::string destination = folder_.file("copy");
    EXPECT_EQ(container.valueData(1, "OMFI:B"), std::nullopt);
    EXPECT_EQ(container.valueData(2, "OMFI:A"), std::nullopt);
    EXPECT_EQ(container.valuePrefix(1, "OMFI:B", 4), std::nullopt);
    EXPECT_EQ(container.valuePrefix(2, "OMFI:A", 4), std::nullopt);
    EXPECT_TRUE(container.valueSegments(1, "OMFI:B").empty());
    EXPECT_TRUE(container.valueSegments(2, "OMFI:A").empty());
    EXPECT_TRUE(container.items(1, "OMFI:B").empty());
    EXPECT_FALSE(container.copyValue(1, "OMFI:B", destination));
    EXPECT_FALSE(container.copyValue(2, "OMFI:A", destination));
    EXPECT_FALSE(fs::exists(destination));
    EXPECT_EQ(small(container, 2, "OMFI:A", 4), std::nullopt);
}

TEST_F(BentoValues, WholeValuesEndAtTheirCap) {
    builder_.set(1, "OMFI:A", patternBytes(8'388'608));
    builder_.set(1, "OMFI:B", patternBytes(8'388'609));
    const BentoContainer& container = open();
    EXPECT_TRUE(container.valueData(1, "OMFI:A") == patternBytes(8'388'608));
    EXPECT_EQ(faultOf([&] { return container.valueData(1, "OMFI:B"); }),
              "Unsupported OMF/Bento feature: property value larger than in-memory limit");
    EXPECT_TRUE(container.valueData(1, "OMFI:B", 8'388'609) == patternBytes(8'388'609));
}

TEST_F(BentoValues, CapsCountAllPieces) {
    builder_.setPieces(1, "OMFI:A", {bytesOf("abc"), bytesOf("de")});
    const BentoContainer& container = open();
    EXPECT_EQ(textOf(container.valueData(1, "OMFI:A", 5).value()), "abcde");
    EXPECT_EQ(faultOf([&] { return container.valueData(1, "OMFI:A", 4); }),
              "Unsupported OMF/Bento feature: property value larger than in-memory limit");
    EXPECT_EQ(small(container, 1, "OMFI:A", 4), std::nullopt);
}

TEST_F(BentoValues, NegativeCapsFitNoValue) {
    builder_.set(1, "OMFI:A", {});
    EXPECT_EQ(faultOf([&] { return open().valueData(1, "OMFI:A", -1); }),
              "Unsupported OMF/Bento feature: property value larger than in-memory limit");
}

TEST_F(BentoValues, SumsOfLengthsNeverWrap) {
    builder_.addItem(1, "OMFI:A", BentoRange{0, largest});
    builder_.addItem(1, "OMFI:A", BentoRange{0, 9});
    const BentoContainer& container = open();
    EXPECT_EQ(faultOf([&] { return container.valueData(1, "OMFI:A"); }),
              "Unsupported OMF/Bento feature: property value larger than in-memory limit");
    EXPECT_EQ(faultOf([&] {
                  return container.valueData(1, "OMFI:A", std::numeric_limits<std::int64_t>::max());
              }),
              "Unsupported OMF/Bento feature: property value larger than in-memory limit");
    EXPECT_EQ(small(container, 1, "OMFI:A", 64), std::nullopt);
}

TEST_F(BentoValues, RangesBeyondTheFileAreOutOfBounds) {
    builder_.addItem(1, "OMFI:A", BentoRange{1'000'000, 4});
    builder_.addItem(1, "OMFI:B", BentoRange{largest, 4});
    builder_.addItem(1, "OMFI:C", BentoRange{1'000'000, 0});
    const BentoContainer& container = open();
    const std::string size = std::to_string(fs::file_size(path_));
    const std::string expected =
        "Read out of bounds (offset=1000000, length=4, fileSize=" + size + ").";
    EXPECT_EQ(faultOf([&] { return container.valueData(1, "OMFI:A"); }), expected);
    EXPECT_EQ(faultOf([&] { return container.valuePrefix(1, "OMFI:A", 9); }), expected);
    EXPECT_EQ(faultOf([&] { return container.copyValue(1, "OMFI:A", folder_.file("copy")); }),
              expected);
    EXPECT_EQ(faultOf([&] { return container.valueData(1, "OMFI:B"); }),
              "Read out of bounds (offset=18446744073709551615, length=4, fileSize=" + size + ").");
    EXPECT_EQ(faultOf([&] { return container.valueData(1, "OMFI:C"); }),
              "Read out of bounds (offset=1000000, length=0, fileSize=" + size + ").");
    for (const std::string_view property : {"OMFI:A", "OMFI:B", "OMFI:C"}) {
        EXPECT_EQ(small(container, 1, property, 64), std::nullopt) << property;
    }
}

TEST_F(BentoValues, OverlappingRangesAreReadOftenButNotReservedAtOnce) {
    builder_.set(2, "OMFI:Source", patternBytes(1'000'000));
    for (int count = 0; count < 8; ++count) {
        builder_.addItem(1, "OMFI:A", BentoRange{0, 1'000'000});
    }
    EXPECT_EQ(open().valueData(1, "OMFI:A").value().size(), 8'000'000U);
}

TEST_F(BentoValues, AFileTruncatedAfterOpeningGivesShortReadOfThePiece) {
    builder_.set(1, "OMFI:A", patternBytes(10'000));
    const BentoContainer& container = open();
    const auto range = std::get<BentoRange>(container.items(1, "OMFI:A").front().segment.storage);
    fs::resize_file(path_, range.offset + 77);
    EXPECT_EQ(faultOf([&] { return container.valueData(1, "OMFI:A"); }),
              "Short read (expected 10000 bytes, got 77).");
    EXPECT_EQ(faultOf([&] { return container.copyValue(1, "OMFI:A", folder_.file("copy")); }),
              "Short read (expected 10000 bytes, got 77).");
    fs::resize_file(path_, 0);
    EXPECT_EQ(faultOf([&] { return container.valueData(1, "OMFI:A"); }),
              "Short read (expected 10000 bytes, got 0).");
}

TEST_F(BentoValues, SmallReadsOfATruncatedFileReportThePieceNotTheBlock) {
    // A long way behind the names, so that opening caches no block of it.
    builder_.propertyID("OMFI:A");
    builder_.set(2, "OMFI:Gap", patternBytes(100'000));
    builder_.set(1, "OMFI:A", patternBytes(100));
    const BentoContainer& container = open();
    const auto range = std::get<BentoRange>(container.items(1, "OMFI:A").front().segment.storage);
    fs::resize_file(path_, range.offset + 42);
    EXPECT_EQ(small(container, 1, "OMFI:A", 100), std::nullopt);
    EXPECT_EQ(faultOf([&] { return container.valueData(1, "OMFI:A"); }),
              "Short read (expected 100 bytes, got 42).");
}

TEST_F(BentoValues, PrefixesOfNoBytesAreEmptyForAnExistingValueOnly) {
    builder_.set(1, "OMFI:A", bytesOf("0123456789"));
    const BentoContainer& container = open();
    EXPECT_EQ(container.valuePrefix(1, "OMFI:A", 0), Bytes{});
    EXPECT_EQ(container.valuePrefix(1, "OMFI:B", 0), std::nullopt);
}

TEST_F(BentoValues, NegativePrefixesAreMalformed) {
    builder_.set(1, "OMFI:A", {});
    const BentoContainer& container = open();
    EXPECT_EQ(faultOf([&] { return container.valuePrefix(1, "OMFI:Missing", -1); }),
              "Malformed OMF/Bento file: negative prefix length");
}

TEST_F(BentoValues, PrefixesTakeTheHeadOfAllPieces) {
    builder_.addItem(1, "OMFI:A", immediate("AB"));
    builder_.addItem(1, "OMFI:A", BentoReferenceList{1});
    builder_.addItem(1, "OMFI:A", immediate("CDE"));
    const BentoContainer& container = open();
    EXPECT_EQ(textOf(container.valuePrefix(1, "OMFI:A", 1).value()), "A");
    EXPECT_EQ(textOf(container.valuePrefix(1, "OMFI:A", 4).value()), "ABCD");
    EXPECT_EQ(textOf(container.valuePrefix(1, "OMFI:A", 99).value()), "ABCDE");
}

TEST_F(BentoValues, PrefixesReadOnlyTheBytesWanted) {
    builder_.set(1, "OMFI:A", bytesOf("0123456789"));
    const BentoContainer& container = open();
    const auto range = std::get<BentoRange>(container.items(1, "OMFI:A").front().segment.storage);
    // A read of more than these four bytes would come up short.
    fs::resize_file(path_, range.offset + 4);
    const std::uint64_t calls = container.file().readCalls();
    EXPECT_EQ(textOf(container.valuePrefix(1, "OMFI:A", 4).value()), "0123");
    EXPECT_EQ(container.file().readCalls(), calls + 1);
    EXPECT_EQ(faultOf([&] { return container.valuePrefix(1, "OMFI:A", 5); }),
              "Short read (expected 5 bytes, got 4).");
}

TEST_F(BentoValues, PrefixesStopBeforePiecesThatAreNotWanted) {
    builder_.addItem(1, "OMFI:A", immediate("AB"));
    builder_.addItem(1, "OMFI:A", BentoRange{largest, 4});
    EXPECT_EQ(textOf(open().valuePrefix(1, "OMFI:A", 2).value()), "AB");
}

TEST_F(BentoValues, PrefixesOfValuesBeyondEveryCapAreRead) {
    builder_.set(1, "OMFI:A", patternBytes(9'000'000));
    EXPECT_TRUE(open().valuePrefix(1, "OMFI:A", 8'500'000) == Bytes(patternBytes(8'500'000)));
}

TEST_F(BentoValues, SegmentsLeaveReferenceListsOut) {
    builder_.addItem(1, "OMFI:A", BentoReferenceList{7});
    builder_.addItem(1, "OMFI:A", immediate("AB"));
    builder_.addItem(1, "OMFI:A", BentoRange{5, 6});
    EXPECT_EQ(
        open().valueSegments(1, "OMFI:A"),
        (std::vector<BentoValueSegment>{{immediate("AB"), false}, {BentoRange{5, 6}, false}}));
}

TEST_F(BentoValues, AValueOfJustAReferenceListHasNothingToCopy) {
    builder_.addItem(1, "OMFI:A", BentoReferenceList{7});
    const BentoContainer& container = open();
    EXPECT_TRUE(container.valueSegments(1, "OMFI:A").empty());
    EXPECT_FALSE(container.copyValue(1, "OMFI:A", folder_.file("copy")));
    EXPECT_FALSE(fs::exists(folder_.file("copy")));
}

TEST_F(BentoValues, LongReadsAreCounted) {
    builder_.setInFile(1, "OMFI:A", patternBytes(64));
    builder_.setInFile(2, "OMFI:A", patternBytes(65));
    for (int piece = 0; piece < 9; ++piece) {
        builder_.addItem(3, "OMFI:A", BentoRange{0, 0});
    }
    const BentoContainer& container = open();
    std::uint64_t before = container.longReads();
    const auto counted = [&] {
        const std::uint64_t after = container.longReads();
        return after - std::exchange(before, after);
    };
    ASSERT_TRUE(container.valueData(1, "OMFI:A").has_value());
    EXPECT_EQ(small(container, 1, "OMFI:A", 64), patternBytes(64));
    EXPECT_EQ(counted(), 0U);
    ASSERT_TRUE(container.valueData(2, "OMFI:A").has_value());
    EXPECT_EQ(counted(), 65U);
    ASSERT_TRUE(container.valuePrefix(2, "OMFI:A", 65).has_value());
    EXPECT_EQ(counted(), 65U);
    EXPECT_EQ(small(container, 2, "OMFI:A", 65), patternBytes(65));
    EXPECT_EQ(counted(), 65U);
    EXPECT_EQ(small(container, 2, "OMFI:A", 64), std::nullopt);
    EXPECT_EQ(counted(), 0U);
    EXPECT_EQ(small(container, 3, "OMFI:A", 4), Bytes{});
    EXPECT_EQ(counted(), 144U);
    EXPECT_EQ(container.valueData(3, "OMFI:A"), Bytes{});
    EXPECT_EQ(counted(), 144U);
}

TEST_F(BentoValues, BytesToCopyAreThoseOfAllPieces) {
    builder_.addItem(1, "OMFI:A", immediate("ABC"));
    builder_.addItem(1, "OMFI:A", BentoReferenceList{7});
    builder_.addItem(1, "OMFI:A", BentoRange{0, 20});
    builder_.addItem(1, "OMFI:A", BentoRange{10, 20});
    builder_.addItem(1, "OMFI:B", BentoReferenceList{7});
    const BentoContainer& container = open();
    EXPECT_EQ(container.copiedBytes(1, "OMFI:A"), 43U);
    EXPECT_EQ(container.copiedBytes(1, "OMFI:B"), 0U);
    EXPECT_EQ(container.copiedBytes(1, "OMFI:C"), 0U);
    EXPECT_EQ(container.copiedBytes(2, "OMFI:A"), 0U);
}

TEST_F(BentoValues, BytesToCopyOfAPieceAreNoMoreThanTheFileHas) {
    builder_.addItem(1, "OMFI:A", BentoRange{1'000'000, largest});
    builder_.addItem(1, "OMFI:A", BentoRange{0, largest});
    builder_.addItem(1, "OMFI:A", BentoRange{0, 4});
    const BentoContainer& container = open();
    EXPECT_EQ(container.copiedBytes(1, "OMFI:A"), 2 * fs::file_size(path_) + 4);
}

TEST_F(BentoValues, CopiesAreTheWholeValue) {
    builder_.setPieces(1, "OMFI:A", {patternBytes(5'000'001), bytesOf("tail")});
    EXPECT_TRUE(open().copyValue(1, "OMFI:A", folder_.file("copy")));
    EXPECT_TRUE(readFile(folder_.file("copy")) ==
                testing::joined({patternBytes(5'000'001), bytesOf("tail")}));
}

TEST_F(BentoValues, SmallValuesComeFromCachedBlocks) {
    for (std::uint32_t object = 1; object <= 500; ++object) {
        builder_.setInFile(object, "OMFI:A", patternBytes(object % 60));
    }
    const BentoContainer& container = open();
    const std::uint64_t before = container.file().readCalls();
    for (int round = 0; round < 3; ++round) {
        for (std::uint32_t object = 1; object <= 500; ++object) {
            ASSERT_EQ(small(container, object, "OMFI:A", 64), patternBytes(object % 60));
        }
    }
    // The values together are less than 16 KiB, so they touch two blocks at most.
    EXPECT_LE(container.file().readCalls() - before, 2U);
}

TEST_F(BentoValues, SmallValuesMayCrossBlocksAndBeLargerThanOne) {
    builder_.set(1, "OMFI:A", patternBytes(16'380));
    builder_.setInFile(1, "OMFI:B", patternBytes(40));
    builder_.set(1, "OMFI:C", patternBytes(50'000));
    const BentoContainer& container = open();
    EXPECT_EQ(small(container, 1, "OMFI:B", 40), patternBytes(40));
    EXPECT_TRUE(small(container, 1, "OMFI:C", 50'000) == patternBytes(50'000));
}

TEST_F(BentoValues, EveryBlockOfALargeFileComesBackRightAfterEviction) {
    // More blocks than the cache has places.
    builder_.set(1, "OMFI:A", patternBytes(4'000'000));
    for (std::uint64_t offset = 0; offset < 4'000'000; offset += 10'007) {
        builder_.addItem(2 + static_cast<std::uint32_t>(offset), "OMFI:B", BentoRange{offset, 30});
    }
    const BentoContainer& container = open();
    const auto base =
        std::get<BentoRange>(container.items(1, "OMFI:A").front().segment.storage).offset;
    const Bytes file = readFile(path_);
    ASSERT_LT(base, 100U);
    for (int round = 0; round < 2; ++round) {
        for (std::uint64_t offset = 0; offset < 4'000'000; offset += 10'007) {
            const ByteView expected = ByteView(file).subspan(offset, 30);
            ASSERT_EQ(small(container, 2 + static_cast<std::uint32_t>(offset), "OMFI:B", 30),
                      Bytes(expected.begin(), expected.end()));
        }
    }
}

TEST_F(BentoValues, OneContainerServesSeveralThreads) {
    for (std::uint32_t object = 1; object <= 300; ++object) {
        builder_.setInFile(object, "OMFI:A", patternBytes(object));
        builder_.set(object, "OMFI:B", patternBytes(5'000 + object));
    }
    const BentoContainer& container = open();
    std::atomic<int> wrong{0};
    std::vector<std::thread> threads;
    for (std::uint32_t start = 0; start < 4; ++start) {
        threads.emplace_back([&, start] {
            for (std::uint32_t step = 0; step < 300; ++step) {
                const std::uint32_t object = 1 + (start * 75 + step * 7) % 300;
                const bool right =
                    small(container, object, "OMFI:A", 300) == patternBytes(object) &&
                    container.valueData(object, "OMFI:A") == patternBytes(object) &&
                    container.valueData(object, "OMFI:B") == patternBytes(5'000 + object);
                wrong += right ? 0 : 1;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(wrong, 0);
}

}  // namespace
}  // namespace trellant
