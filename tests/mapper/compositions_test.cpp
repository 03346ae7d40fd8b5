// SPDX-License-Identifier: Apache-2.0
// The list of a file's compositions.
#include "song.h"

#include <trellant/io/errors.h>
#include <trellant/mapper/compositions.h>

#include <gmock/gmock.h>

#include <trellant_testing/temporary_directory.h>

namespace trellant::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::vector<AAFComposition> compositionsOf(const OmfBuilder& omf) {
    const TemporaryDirectory folder;
    const OMFDocument document(writeFile(folder.file("song.omf"), omf.build()));
    return compositions(document);
}

/// As a composition made by `add` is listed.
AAFComposition listed(ObjectID object, const std::string& name, const std::string& lastWord,
                      bool isRead) {
    return {.object = static_cast<OMFObject>(object),
            .name = name,
            .mobID = "000000C0-00000000-" + lastWord,
            .slotCount = 1,
            .isRead = isRead};
}

class Compositions : public ::testing::Test {
  protected:
    ObjectID add(const std::string& name, std::uint32_t lastWord, bool isPrimary = true) {
        const ObjectID slot = omf_.slot({.editRate = Ratio{100}, .segment = omf_.filler(lastWord)});
        return omf_.composition(
            {.name = name, .slots = {slot}, .id = {0xC0, 0, lastWord}, .isPrimary = isPrimary});
    }

    OmfBuilder omf_;
};

TEST_F(Compositions, FileWithoutOneHasNone) {
    omf_.masterMob({.id = {1, 2, 3}, .name = "Master"});
    EXPECT_THAT(compositionsOf(omf_), IsEmpty());
}

TEST_F(Compositions, OnlyOneIsRead) {
    const ObjectID reel = add("Reel", 0x2A);
    EXPECT_THAT(compositionsOf(omf_), ElementsAre(listed(reel, "Reel", "0000002A", true)));
}

TEST_F(Compositions, ReadOneComesFirstAndTheOthersByTheirNumbers) {
    const ObjectID first = add("First", 1);
    const ObjectID second = add("Second", 2);
    const ObjectID third = add("Third", 3);
    const ObjectID fourth = add("Fourth", 4);
    omf_.head().refs("OMFI:HEAD:PrimaryMobs", {third, fourth});
    EXPECT_THAT(compositionsOf(omf_), ElementsAre(listed(third, "Third", "00000003", true),
                                                  listed(first, "First", "00000001", false),
                                                  listed(second, "Second", "00000002", false),
                                                  listed(fourth, "Fourth", "00000004", false)));
}

TEST_F(Compositions, ReadOneIsTheOneThatIsMapped) {
    omf_.audioFile({.id = Song::kick, .name = "Kick", .media = shortWave(), .length = 48});
    add("First", 1, false);
    const ObjectID clip = omf_.clip({.length = 100, .source = Song::kick});
    omf_.composition({.name = "Second",
                      .slots = {omf_.slot({.editRate = Ratio{100}, .segment = clip})},
                      .id = {0xC0, 0, 2}});
    const auto all = compositionsOf(omf_);
    ASSERT_EQ(all.size(), 2U);
    EXPECT_TRUE(all[0].isRead);
    EXPECT_EQ(all[0].name, "Second");
    EXPECT_EQ(mapImage(omf_.build()).timeline.compositionName, "Second");
}

TEST_F(Compositions, SlotsOfEveryKindAreCounted) {
    const ObjectID timecode =
        omf_.slot({.editRate = Ratio{25}, .segment = omf_.timecode(25, false, 0)});
    const ObjectID empty = omf_.slot({});
    omf_.composition({.slots = {timecode, empty}});
    const auto all = compositionsOf(omf_);
    ASSERT_EQ(all.size(), 1U);
    EXPECT_EQ(all[0].slotCount, 2U);
    EXPECT_EQ(all[0].name, std::nullopt);
}

TEST_F(Compositions, WhatIsMissingIsAbsent) {
    const ObjectID bare = omf_.object("CMOB");
    EXPECT_THAT(compositionsOf(omf_), ElementsAre(AAFComposition{
                                          .object = static_cast<OMFObject>(bare), .isRead = true}));
}

TEST_F(Compositions, NamesTogetherHaveABound) {
    // 260 names that lie over one another, each of the largest size that is read: 259 of them are
    // 256 MiB and the value of 3 MiB in the middle of which they lie, less 259 bytes.
    constexpr std::int64_t mebibyte = 1 << 20;
    omf_.classless().bytes("Text", Bytes(3 * mebibyte, std::byte{'n'}));
    for (std::uint32_t index = 0; index < 260; ++index) {
        const ObjectBuilder composition = omf_.object("CMOB");
        omf_.container().addItem(composition, "OMFI:MOBJ:Name", BentoRange{mebibyte, mebibyte - 1});
    }
    try {
        static_cast<void>(compositionsOf(omf_));
        FAIL() << "no error";
    } catch (const OMFIOError& error) {
        EXPECT_EQ(std::string(error.what()),
                  "Unsupported OMF/Bento feature: composition holds more than " +
                      std::to_string(268'435'456 + omf_.build().size()) + " bytes of long texts");
    }
}

}  // namespace
}  // namespace trellant::testing
