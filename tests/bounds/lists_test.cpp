// SPDX-License-Identifier: Apache-2.0
// Values that are as long as a value may be.
#include "bounds_fixture.h"
#include "growing_file.h"
#include "worker_fixture.h"

#include <trellant/protocol/messages.h>

namespace trellant::testing {
namespace {

constexpr std::uint64_t listLimit = 16 * mebibyte;
constexpr std::uint64_t referenceBytes = 4;

std::string referenceText(ObjectID object) {
    return textOf(ByteWriter(OMFByteOrder::little).u32(object).written());
}

/// A composition of one sequence, whose list of components is written here.
class LongList : public BoundsTest {
  protected:
    LongList() {
        constexpr MobID tone{1, 2, 3};
        omf_.audioFile({.id = tone, .name = "Tone.wav", .media = toneWave(), .length = 480});
        clip_ = omf_.clip({.length = 480, .source = tone});
        filler_ = omf_.filler(1);
        sequence_ = omf_.sequence({});
        omf_.at(sequence_).without("OMFI:SEQU:Components");
        omf_.composition({.name = "Piece",
                          .slots = {omf_.slot({.editRate = Ratio{48'000}, .segment = sequence_})}});
    }
    /// `count` times `component`, then the clip.
    void write(std::uint64_t count, ObjectID component) {
        const auto components = omf_.container().propertyID("OMFI:SEQU:Components");
        GrowingFile list(file(), omf_.image());
        const std::string reference = referenceText(component);
        const auto offset = list.value(reference);
        for (std::uint64_t i = 1; i < count; ++i) {
            list.value(reference);
        }
        list.value(referenceText(clip_));
        list.object(sequence_, components);
        list.range(offset, (count + 1) * referenceBytes);
        list.finish();
    }

    OmfBuilder omf_;
    ObjectID clip_ = 0;
    ObjectID filler_ = 0;
    ObjectID sequence_ = 0;
};

TEST_F(LongList, OfSixteenMebibytesIsReadThreeTimesAtMostAtOnce) {
    // 4,194,303 fillers of one unit each, then the clip: 4194303 / 48000 = 1398101 / 16000 s.
    write(listLimit / referenceBytes - 1, filler_);
    // The list; and when the walk is counted first, the list again and its bytes.
    constexpr std::uint64_t bound = 3 * listLimit + base;
    const auto run = inspect(bound + addressBase);
    ASSERT_EQ(run.status, 0) << run.errors;
    const auto timeline = decodeResult(run.output).timeline;
    ASSERT_EQ(timeline.events.size(), 1U);
    EXPECT_EQ(timeline.events[0].timelineStart, AAFRational(1'398'101, 16'000));
    EXPECT_EQ(timeline.events[0].duration, AAFRational(1, 100));
    expectPeak(run, "LongestList", bound);
}

TEST_F(LongList, OfOneReferenceMoreIsNotRead) {
    write(listLimit / referenceBytes, filler_);
    const auto run = inspect(base + addressBase);
    expectFailed(run, openingLines() + openSlotLines(), noClips);
    expectPeak(run, "TooLongList", base);
}

TEST_F(LongList, OfFourMillionClipsIsOutOfMemoryAtAQuarterOfAGibibyte) {
    if (sanitized) {
        GTEST_SKIP() << "needs a limit of memory";
    }
    write(listLimit / referenceBytes - 1, clip_);
    const auto run = inspect(256 * mebibyte);
    expectFailed(run, openingLines() + openSlotLines(), outOfMemory);
    expectPeak(run, "ListOfClips", 256 * mebibyte);
}

/// The name of the clip, in pieces of one byte: 5 bytes of the table each.
class TextInPieces : public BoundsTest {
  protected:
    static constexpr std::uint64_t textLimit_ = mebibyte;
    static constexpr std::uint32_t clip_ = 9;

    void write(std::uint64_t count) const {
        OmfBuilder omf = oneClipDocument();
        const auto name = omf.container().propertyID("OMFI:CPNT:Name");
        GrowingFile table(file(), omf.image());
        table.object(clip_, name);
        for (std::uint64_t i = 0; i < count; ++i) {
            table.byte('n');
        }
        table.finish();
    }
    /// Items, half of them again for sorting, and the text: as a value, a text, a name.
    static constexpr std::uint64_t bound_ = textLimit_ * (32 + 16 + 3) + base;
};

TEST_F(TextInPieces, OfAMebibyteIsRead) {
    write(textLimit_);
    const auto run = inspect(bound_ * 3 / 2 + addressBase);
    std::string expected = smallAnswer();
    const std::string before = R"("clipMuted":false,)";
    expected.insert(expected.find(before) + before.size(),
                    R"("clipName":")" + std::string(textLimit_, 'n') + R"(",)");
    EXPECT_TRUE(run.output == expected) << run.outputBytes << " bytes of output";
    expectPeak(run, "TextInPieces", bound_);
}

TEST_F(TextInPieces, OfOneByteMoreIsNone) {
    write(textLimit_ + 1);
    const auto run = inspect(bound_ * 3 / 2 + addressBase);
    EXPECT_EQ(run.output, smallAnswer());
    expectPeak(run, "TooLongTextInPieces", bound_);
}

}  // namespace
}  // namespace trellant::testing
