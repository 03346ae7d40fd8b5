// SPDX-License-Identifier: Apache-2.0
// What a rendered file says of itself. Numbers of chunks are worked out in the tests.
#include "file_chunks.h"

#include "rendered.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <string>
#include <string_view>
#include <trellant_testing/byte_writer.h>

namespace trellant::testing {
namespace {

using exchange::PlannedReel;
using render::FileFacts;
using render::MarkIndex;
using render::RenderedFile;
using sessions::SessionMarker;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

class ChunksOfFile : public ::testing::Test, public RenderedPlan {
  protected:
    [[nodiscard]] std::map<std::string, Bytes> chunks(const RenderedFile& file) const {
        const MarkIndex marks(markers, plan.tracks.size());
        const Bytes bytes =
            render::fileChunks(file, FileFacts{.plan = plan, .marks = marks, .date = 86'400});
        std::map<std::string, Bytes> result;
        for (std::size_t at = 0; at < bytes.size();) {
            const auto size = u32(bytes, static_cast<std::int64_t>(at) + 4, OMFByteOrder::little);
            const auto from = bytes.begin() + static_cast<std::ptrdiff_t>(at);
            result[textOf(Bytes(from, from + 4))] = Bytes(from + 8, from + 8 + size);
            at += 8 + size + size % 2;
        }
        return result;
    }
    [[nodiscard]] std::string text(const RenderedFile& file, const std::string& chunk) const {
        return textOf(chunks(file)[chunk]);
    }
    static void onReel(exchange::PlannedMedia& media, const std::string& id,
                       const std::string& name) {
        media.reel = PlannedReel{.id = id, .name = name};
    }

    std::vector<SessionMarker> markers;
    RenderedFile track{.track = 0, .length = 100};
    RenderedFile clip{.track = 0, .clip = 0, .length = 100};
};

TEST_F(ChunksOfFile, BextNamesTheSessionAndTheTrack) {
    plan.name = "Reel 1";
    addClip(addTrack("Boom"), addMissingMedia(), 0, 100);
    const std::string bext = text(track, "bext");
    EXPECT_EQ(bext.substr(0, 13), std::string("Reel 1: Boom") + '\0');
    // Description, originator and its reference have 256 + 32 + 32 bytes.
    EXPECT_EQ(bext.substr(320, 18), "1970-01-0200:00:00");
    // An hour of 48,000 samples: 172,800,000 = 0x0A4CB800.
    EXPECT_EQ(bext.substr(338, 8), std::string("\x00\xB8\x4C\x0A\0\0\0\0", 8));
    EXPECT_THAT(bext, HasSubstr("A=PCM,F=48000,W=24,M=mono,T=Trellant "));
    EXPECT_THAT(bext, Not(HasSubstr("libsoxr")));
}

TEST_F(ChunksOfFile, BextTellsOfConvertedRates) {
    addClip(addTrack("Boom"), addMissingMedia(), 0, 100);
    track.resampledClips = 1;
    EXPECT_THAT(text(track, "bext"),
                HasSubstr("A=PCM,T=libsoxr very high quality; from other rates\r\nA=PCM,F=48000"));
}

TEST_F(ChunksOfFile, AHandleBeforeMidnightCountsFromMidnight) {
    plan.start = AAFTimecodeAddress(0, 0, 0, 0, AAFTimecodeRate::fps25());
    addClip(addTrack("Boom"), addMissingMedia(), 0, 100);
    clip.start = -5;
    EXPECT_EQ(text(clip, "bext").substr(338, 8), std::string(8, '\0'));
}

TEST_F(ChunksOfFile, IXmlHasRateFlagAndTrack) {
    plan.start = AAFTimecodeAddress(1, 0, 0, 0, AAFTimecodeRate::fps2997DF());
    addClip(addTrack("Boom"), addMissingMedia(), 0, 100);
    const std::string xml = text(track, "iXML");
    EXPECT_THAT(xml, HasSubstr("<TIMECODE_RATE>30000/1001</TIMECODE_RATE>"));
    EXPECT_THAT(xml, HasSubstr("<TIMECODE_FLAG>DF</TIMECODE_FLAG>"));
    EXPECT_THAT(xml, HasSubstr("<NAME>Boom</NAME>"));
    EXPECT_THAT(xml, Not(HasSubstr("<TAPE>")));
    RenderedFile mix{.channels = 2, .length = 100};
    EXPECT_THAT(text(mix, "iXML"), HasSubstr("<NAME>Mix L</NAME>"));
    EXPECT_THAT(text(mix, "iXML"), HasSubstr("<NAME>Mix R</NAME>"));
}

TEST_F(ChunksOfFile, IXmlNamesTheTapeThatAllComesFrom) {
    const std::size_t one = addMissingMedia();
    const std::size_t other = addMissingMedia();
    onReel(plan.media[one], "1", "DAT 7");
    onReel(plan.media[other], "1", "DAT 7");
    auto& boom = addTrack("Boom");
    addClip(boom, one, 0, 50);
    addClip(boom, other, 50, 50);
    EXPECT_THAT(text(track, "iXML"), HasSubstr("<TAPE>DAT 7</TAPE>"));
    // Another tape of the same name.
    onReel(plan.media[other], "2", "DAT 7");
    EXPECT_THAT(text(track, "iXML"), Not(HasSubstr("<TAPE>")));
    EXPECT_THAT(text(clip, "iXML"), HasSubstr("<TAPE>DAT 7</TAPE>"));
    plan.media[other].reel.reset();
    EXPECT_THAT(text(track, "iXML"), Not(HasSubstr("<TAPE>")));
}

/// Two marks on the track: at 10 and 20 of a file that begins at 10; those outside are left out.
TEST_F(ChunksOfFile, MarksCountFromTheFilesStart) {
    addClip(addTrack("Boom"), addMissingMedia(), 0, 100);
    addClip(addTrack("Other"), addMissingMedia(), 0, 100);
    markers = {{.position = 5, .text = "before", .track = 0},
               {.position = 10, .text = "odd", .track = 0},
               {.position = 15, .text = "other", .track = 1},
               {.position = 20, .text = "whole"},
               {.position = 110, .text = "behind", .track = 0}};
    track.start = 10;
    const auto all = chunks(track);
    EXPECT_EQ(all.at("cue "), hex("02000000"
                                  "01000000 00000000 64617461 00000000 00000000 00000000"
                                  "02000000 0A000000 64617461 00000000 00000000 0A000000"));
    // "odd" with its zero is 8 bytes with its number; "whole" 10.
    EXPECT_EQ(all.at("LIST"), hex("6164746C"
                                  "6C61626C 08000000 01000000 6F646400"
                                  "6C61626C 0A000000 02000000 77686F6C6500"));
}

TEST_F(ChunksOfFile, AClipsFileHasItsOwnMarks) {
    addClip(addTrack("Boom"), addMissingMedia(), 0, 100).event = 7;
    markers = {{.position = 1, .text = "mine", .track = 0, .event = 7},
               {.position = 2, .text = "another's", .track = 0, .event = 8}};
    EXPECT_THAT(text(clip, "LIST"), HasSubstr("mine"));
    EXPECT_THAT(text(clip, "LIST"), Not(HasSubstr("another")));
    EXPECT_EQ(chunks(track).at("cue ").size(), 4U + 2 * 24);
}

TEST_F(ChunksOfFile, WithoutMarksThereAreNoCuePoints) {
    addClip(addTrack("Boom"), addMissingMedia(), 0, 100);
    EXPECT_FALSE(chunks(track).contains("cue "));
    EXPECT_FALSE(chunks(track).contains("LIST"));
}

TEST_F(ChunksOfFile, MarksAreBounded) {
    addClip(addTrack("Boom"), addMissingMedia(), 0, 100);
    markers.assign(10'001, {.position = 3, .text = "m", .track = 0});
    EXPECT_EQ(chunks(track).at("cue ").size(), 4U + 10'000 * 24);
}

/// A cue point's place has 32 bits: 0xFFFFFFFF samples of a file are marked.
TEST_F(ChunksOfFile, MarksBeyondThirtyTwoBitsAreLeftOut) {
    addClip(addTrack("Boom"), addMissingMedia(), 0, 100);
    track.length = 5'000'000'000;
    markers = {{.position = 0xFFFFFFFE, .text = "last", .track = 0},
               {.position = 0xFFFFFFFF, .text = "beyond", .track = 0}};
    EXPECT_EQ(chunks(track).at("cue ").size(), 4U + 24);
}

}  // namespace
}  // namespace trellant::testing
