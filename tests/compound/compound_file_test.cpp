// SPDX-License-Identifier: Apache-2.0
// Whole small files: what stands where, and that the same tree gives the same bytes.
#include "written.h"

#include <trellant_testing/byte_writer.h>

namespace trellant::compound {
namespace {

using testing::bytesOf;
using ::testing::ElementsAre;
using testing::hex;
using ::testing::IsEmpty;
using testing::textOf;

Bytes part(const Bytes& bytes, std::size_t offset, std::size_t count) {
    const auto begin = bytes.begin() + static_cast<std::ptrdiff_t>(offset);
    return {begin, begin + static_cast<std::ptrdiff_t>(count)};
}

TEST(CompoundFile, EmptyTreeIsHeaderTableAndDirectory) {
    const Written written(newFile());
    ASSERT_EQ(written.image.size(), 3 * 4096U);
    ASSERT_EQ(written.reader->entries().size(), 1U);
    EXPECT_THAT(written.reader->entries()[0].members, IsEmpty());
    EXPECT_EQ(written.reader->depthOf(0), 0U);
}

TEST(CompoundFile, HeaderOfTheEmptyTreeByteForByte) {
    const Written written(newFile());
    EXPECT_EQ(part(written.image.bytes(), 0, 88),
              hex("D0 CF 11 E0 A1 B1 1A E1"
                  "A1 A1 A1 A1 A1 A1 A1 A1 A1 A1 A1 A1 A1 A1 A1 A1"
                  "3E 00 04 00 FE FF 0C 00 06 00 00 00 00 00 00 00"
                  "01 00 00 00"  // directory sectors
                  "01 00 00 00"  // FAT sectors
                  "01 00 00 00"  // first directory sector
                  "00 00 00 00"  // transaction
                  "00 10 00 00"  // cutoff
                  "FE FF FF FF"  // no mini FAT
                  "00 00 00 00"
                  "FE FF FF FF"  // no DIFAT sector
                  "00 00 00 00"
                  "00 00 00 00"  // the FAT's first sector is sector 0
                  "FF FF FF FF"  // no further one
                  "FF FF FF FF"));
}

TEST(CompoundFile, TableOfTheEmptyTreeNamesItselfAndTheDirectory) {
    const Written written(newFile());
    EXPECT_EQ(part(written.image.bytes(), 4096, 12), hex("FD FF FF FF FE FF FF FF FF FF FF FF"));
}

TEST(CompoundFile, ClassesAreThoseOfTheCaller) {
    CompoundFile file = newFile();
    file.addStorage(Storage::root, u"with", classOf(0xC3));
    file.addStorage(Storage::root, u"without");
    const Written written(file);
    EXPECT_EQ(written.reader->headerClass(), classOf(0xA1));
    EXPECT_EQ(written.reader->entries().at(0).classID, classOf(0xB2));
    EXPECT_EQ(written.reader->entries().at(1).classID, classOf(0xC3));
    EXPECT_EQ(written.reader->entries().at(2).classID, ClassID{});
}

TEST(CompoundFile, EntriesAreNumberedAsTheyWereAdded) {
    CompoundFile file = newFile();
    EXPECT_EQ(file.addStorage(Storage::root, u"zz"), Storage{1});
    file.addStream(Storage::root, u"b", bytesOf("of b"));
    EXPECT_EQ(file.addStorage(Storage{1}, u"a"), Storage{3});
    EXPECT_EQ(file.entryCount(), 4U);
    const Written written(file);
    EXPECT_THAT(written.reader->entries().at(0).members, ElementsAre(2U, 1U));
    EXPECT_THAT(written.reader->entries().at(1).members, ElementsAre(3U));
    EXPECT_EQ(textOf(written.reader->content(2)), "of b");
}

TEST(CompoundFile, StreamsOfOneNameInDifferentStoragesAreApart) {
    CompoundFile file = newFile();
    const Storage one = file.addStorage(Storage::root, u"one");
    const Storage two = file.addStorage(Storage::root, u"two");
    file.addStream(one, u"properties", bytesOf("first"));
    file.addStream(two, u"properties", bytesOf("second"));
    const Written written(file);
    EXPECT_EQ(textOf(written.reader->content(written.reader->find(1, u"properties").value())),
              "first");
    EXPECT_EQ(textOf(written.reader->content(written.reader->find(2, u"properties").value())),
              "second");
}

TEST(CompoundFile, StoragesStandInOneAnotherAHundredDeep) {
    CompoundFile file = newFile();
    Storage inner = Storage::root;
    for (int level = 0; level < 100; ++level) {
        inner = file.addStorage(inner, u"inner");
    }
    file.addStream(inner, u"bottom", bytesOf("here"));
    const Written written(file);
    std::uint32_t at = 0;
    for (int level = 0; level < 100; ++level) {
        at = written.reader->find(at, u"inner").value();
    }
    EXPECT_EQ(textOf(written.reader->content(written.reader->find(at, u"bottom").value())), "here");
}

TEST(CompoundFile, DirectoryOfThirtyTwoEntriesFillsItsSector) {
    CompoundFile file = newFile();
    for (std::size_t length = 1; length <= 31; ++length) {
        file.addStorage(Storage::root, std::u16string(length, u'n'));
    }
    EXPECT_EQ(file.entryCount(), 32U);
    EXPECT_EQ(Written(file).image.size(), 3 * 4096U);
    file.addStorage(Storage::root, u"one more");
    EXPECT_EQ(Written(file).image.size(), 4 * 4096U);
}

TEST(CompoundFile, SameTreeGivesTheSameBytes) {
    const auto build = [] {
        CompoundFile file = newFile();
        const Storage storage = file.addStorage(Storage::root, u"storage", classOf(1));
        file.addStream(storage, u"long", Bytes(10'000, std::byte{7}));
        file.addStream(Storage::root, u"short", Bytes(100, std::byte{9}));
        return file;
    };
    EXPECT_EQ(Written(build()).image.bytes(), Written(build()).image.bytes());
}

TEST(CompoundFile, WritingTwiceGivesTheSameBytes) {
    CompoundFile file = newFile();
    file.addStream(Storage::root, u"given", 5000,
                   [](const ByteSink& sink) { sink(Bytes(5000, std::byte{3})); });
    EXPECT_EQ(Written(file).image.bytes(), Written(file).image.bytes());
}

TEST(CompoundFile, MovedFileKeepsItsTree) {
    CompoundFile file = newFile();
    file.addStream(Storage::root, u"kept", bytesOf("x"));
    CompoundFile other = newFile();
    other = std::move(file);
    EXPECT_THAT(Written(other).namesIn(0), ElementsAre(u"kept"));
}

TEST(CompoundFileDeathTest, StreamsAreNoParents) {
    CompoundFile file = newFile();
    file.addStream(Storage::root, u"stream", bytesOf("x"));
    EXPECT_DEATH(file.addStorage(Storage{1}, u"inside"), "the parent of an entry is a storage");
    EXPECT_DEATH(file.addStorage(Storage{2}, u"inside"), "the parent of an entry is a storage");
}

}  // namespace
}  // namespace trellant::compound
