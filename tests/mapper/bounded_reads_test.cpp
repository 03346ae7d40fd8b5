// SPDX-License-Identifier: Apache-2.0
// How much a request may read from lists and texts that lie over one another.
#include "bounded_reads.h"

#include "clip_names.h"
#include "song.h"

#include <trellant/io/errors.h>

#include <gmock/gmock.h>

#include <trellant_testing/temporary_directory.h>

namespace trellant::testing {
namespace {

/// What a read past a bound says; empty when it does not throw.
template <class Read>
std::string refusal(const Read& read) {
    try {
        static_cast<void>(read());
    } catch (const OMFIOError& error) {
        return error.errorDescription();
    }
    return {};
}

class Bounds : public ::testing::Test {
  protected:
    void open() { document_.emplace(writeFile(folder_.file("song.omf"), omf_.build())); }

    TemporaryDirectory folder_;
    OmfBuilder omf_;
    std::optional<OMFDocument> document_;
};

TEST_F(Bounds, LongListsCountShortOnesDoNot) {
    const ObjectID target = omf_.filler(1);
    const ObjectID shortList = omf_.sequence(std::vector<ObjectID>(64, target));
    const ObjectID longList = omf_.sequence(std::vector<ObjectID>(65, target));
    open();
    BoundedReads reads(*document_);
    reads.countReferences(BoundedReads::maximumReferences);
    EXPECT_EQ(reads.objectRefs(static_cast<OMFObject>(shortList), {OMFProperty::sequenceComponents})
                  .size(),
              64U);
    EXPECT_EQ(refusal([&] {
                  return reads.objectRefs(static_cast<OMFObject>(longList),
                                          {OMFProperty::sequenceComponents});
              }),
              "Unsupported OMF/Bento feature: composition holds more than 67108864 entries in its "
              "lists");
}

TEST_F(Bounds, LongTextsCountShortOnesDoNot) {
    // 268435456 bytes and the file's own hold 257 texts of a mebibyte less one byte, not 258.
    const ObjectBuilder longName = omf_.track({.name = std::string(1'048'575, 'a')});
    const ObjectBuilder shortName = omf_.track({.name = std::string(4096, 'b')});
    open();
    const std::uint64_t fileSize = document_->bento().file().size();
    ASSERT_LT(fileSize, 1'048'575U + 8'192U);
    BoundedReads reads(*document_);
    const auto name = [&](const ObjectBuilder& track) {
        return reads.string(static_cast<OMFObject>(track.id()), {OMFProperty::trackName});
    };
    for (int i = 0; i < 257; ++i) {
        ASSERT_EQ(name(longName).value_or("").size(), 1'048'575U);
    }
    EXPECT_EQ(refusal([&] { return name(longName); }),
              "Unsupported OMF/Bento feature: composition holds more than " +
                  std::to_string(268'435'456 + fileSize) + " bytes of long texts");
    EXPECT_EQ(refusal([&] { return name(shortName); }), "");
}

TEST_F(Bounds, ReadsThatGiveNothingCountToo) {
    // A text that ends at once, and a list of nothing, each a piece of a mebibyte.
    const ObjectBuilder silent = omf_.track({});
    omf_.at(silent).bytes("OMFI:TRKD:TrackName", Bytes(1'048'576));
    const ObjectBuilder hollow = omf_.sequence({});
    omf_.at(hollow).without("OMFI:SEQU:Components");
    omf_.at(hollow).bytes("OMFI:SEQU:Components", Bytes(1'048'576));
    open();
    BoundedReads reads(*document_);
    const std::uint64_t most = 2'147'483'648 + 16 * document_->bento().file().size();
    const auto name = [&] {
        return reads.string(static_cast<OMFObject>(silent.id()), {OMFProperty::trackName});
    };
    const auto list = [&] {
        return reads.objectRefs(static_cast<OMFObject>(hollow.id()),
                                {OMFProperty::sequenceComponents});
    };
    const std::uint64_t fitting = most / 1'048'576;
    for (std::uint64_t i = 0; i + 1 < fitting; i += 2) {
        ASSERT_EQ(name(), std::nullopt);
        ASSERT_TRUE(list().empty());
    }
    if (fitting % 2 != 0) {
        ASSERT_EQ(name(), std::nullopt);
    }
    const std::string expected = "Unsupported OMF/Bento feature: composition asks for more than " +
                                 std::to_string(most) + " bytes of its long values";
    EXPECT_EQ(refusal(list), expected);
    EXPECT_EQ(refusal(name), expected);
}

TEST_F(Bounds, ValuesOfManyEmptyPiecesCountByTheirPieces) {
    // 100000 ranges of nothing: 1600000 for each look at the length.
    const ObjectBuilder clip = omf_.filler(1);
    omf_.at(clip).without("OMFI:CPNT:Length");
    for (int i = 0; i < 100'000; ++i) {
        omf_.container().addItem(clip.id(), "OMFI:CPNT:Length", BentoRange{0, 0});
    }
    open();
    BoundedReads reads(*document_);
    const std::uint64_t most = 2'147'483'648 + 16 * document_->bento().file().size();
    const auto look = [&] {
        EXPECT_EQ(
            document_->int64(static_cast<OMFObject>(clip.id()), {OMFProperty::componentLength}),
            std::nullopt);
        reads.checkWork();
        return 0;
    };
    for (std::uint64_t i = 0; i < most / 1'600'000; ++i) {
        ASSERT_EQ(look(), 0);
    }
    EXPECT_EQ(refusal(look), "Unsupported OMF/Bento feature: composition asks for more than " +
                                 std::to_string(most) + " bytes of its long values");
}

TEST_F(Bounds, AllTextsCountLongOrShort) {
    // A gibibyte and the file's own bytes: 262,144 texts of 4096 bytes, and what the file has.
    const ObjectBuilder named = omf_.track({.name = std::string(4096, 'a')});
    const ObjectBuilder shortest = omf_.track({.name = "b"});
    open();
    const std::uint64_t fileSize = document_->bento().file().size();
    ASSERT_GT(fileSize, 4096U);
    ASSERT_LT(fileSize, 2U * 4096U);
    BoundedReads reads(*document_);
    const auto name = [&](const ObjectBuilder& track) {
        return reads.string(static_cast<OMFObject>(track.id()), {OMFProperty::trackName});
    };
    for (int i = 0; i < 262'144 + 1; ++i) {
        ASSERT_EQ(name(named).value_or("").size(), 4096U);
    }
    for (std::uint64_t i = 0; i < fileSize - 4096; ++i) {
        ASSERT_EQ(name(shortest), "b");
    }
    EXPECT_EQ(refusal([&] { return name(shortest); }),
              "Unsupported OMF/Bento feature: composition holds more than " +
                  std::to_string(1'073'741'824 + fileSize) + " bytes of texts");
}

TEST_F(Bounds, NamesThatWereLookedUpBeforeCountAgain) {
    // A search of 17 attributes is remembered; 4096 + 16 * 6 + 4 bytes are read once.
    std::vector<ObjectID> attributes(16, omf_.attribute("Colour", "red"));
    attributes.push_back(omf_.attribute("Name", std::string(4096, 'n')));
    const ObjectBuilder clip = omf_.clip({.length = 1});
    omf_.at(clip).ref("OMFI:CPNT:Attributes", omf_.attributeList(attributes));
    open();
    BoundedReads reads(*document_);
    ClipNames names(reads);
    const auto count = [&] {
        return names.nameOf(static_cast<OMFObject>(clip.id())).value().size();
    };
    const std::uint64_t most = 1'073'741'824 + document_->bento().file().size();
    std::uint64_t before = 0;
    EXPECT_EQ(count(), 4096U);
    for (before = 4096 + 16 * 6 + 4; before + 4096 <= most; before += 4096) {
        ASSERT_EQ(count(), 4096U);
    }
    EXPECT_EQ(refusal(count), "Unsupported OMF/Bento feature: composition holds more than " +
                                  std::to_string(most) + " bytes of texts");
}

TEST_F(Bounds, EachClipsAutomationPointsCount) {
    // One envelope of 2000 points for 40000 clips: 80 million points in the answer.
    Song song;
    std::vector<ObjectID> clips(40'000, song.clip(10));
    std::vector<PointSpec> points(2'000, PointSpec{{0}, {1}});
    points.back() = {{1}, {2}};
    const ObjectID clipSequence = song.omf.sequence(clips);
    const ObjectID envelope = song.omf.varyingValue(points);
    song.addSlot(song.omf.gain(clipSequence, envelope));
    EXPECT_EQ(refusal([&] { return song.map(); }),
              "Unsupported OMF/Bento feature: composition holds more than 67108864 entries in its "
              "lists");
}

TEST_F(Bounds, ClipsOfOneEffectShareTheirAutomation) {
    Song song;
    const ObjectID clips = song.omf.sequence({song.clip(10), song.clip(10)});
    const ObjectID envelope = song.omf.varyingValue({{{0}, {1}}, {{1}, {2}}});
    song.addSlot(song.omf.gain(clips, envelope));
    const Mapped mapped = song.map();
    const auto& events = mapped.timeline.events;
    ASSERT_EQ(events.size(), 2U);
    ASSERT_TRUE(events[0].clipGainAutomation.has_value());
    EXPECT_EQ(&*events[0].clipGainAutomation, &*events[1].clipGainAutomation);
}

}  // namespace
}  // namespace trellant::testing
