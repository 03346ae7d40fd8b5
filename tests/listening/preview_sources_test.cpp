// SPDX-License-Identifier: Apache-2.0
#include "sources_fixture.h"

#include <trellant/client/errors.h>
#include <trellant/listening/source_sound.h>

#include <gmock/gmock.h>

#include <cstdint>
#include <limits>

namespace trellant::testing {
namespace {

using listening::Preview;
using listening::PreviewRequest;
using listening::PreviewState;
using listening::PreviewWish;

constexpr std::int64_t mostFrames = std::numeric_limits<std::int64_t>::max();

class PreviewSources : public SourcesTest {
  protected:
    /// Ten seconds of a sound that is not easy to make small.
    std::string tenSeconds(const std::string& name) {
        std::vector<std::int16_t> samples;
        std::uint32_t state = 1;
        for (int i = 0; i < 480'000; ++i) {
            state = state * 1'664'525U + 1'013'904'223U;
            samples.push_back(static_cast<std::int16_t>(state >> 18U));
        }
        return file(name, waveOf(samples));
    }
    std::vector<Preview> previews(const std::vector<PreviewWish>& wishes,
                                  const PreviewRequest& request = {.converter = TRELLANT_WAV}) {
        WorkProgress progress;
        return listening::previewSources(timeline_, wishes, request, staging_, progress);
    }
};

TEST_F(PreviewSources, AreFilesOfOgg) {
    add(file("a.wav", waveOf({1, 2, 3})));
    add(file("b.wav", waveOf({1, 2, 3, 4}, 2)));
    const auto made = previews({{.essence = 0}, {.essence = 1}, {.essence = 1, .channel = 1}});
    ASSERT_EQ(made.size(), 3U);
    for (const Preview& preview : made) {
        EXPECT_EQ(preview.state, PreviewState::made) << preview.reason;
        EXPECT_EQ(textOf(ByteView(preview.ogg).first(4)), "OggS");
    }
    // The tenth byte of the first packet, which begins at byte 28, is the number of channels.
    EXPECT_EQ(made[0].ogg.at(37), std::byte{1});
    EXPECT_EQ(made[1].ogg.at(37), std::byte{2});
    EXPECT_EQ(made[2].ogg.at(37), std::byte{1});
    EXPECT_TRUE(isStagingEmpty());
}

TEST_F(PreviewSources, AreTheSameEachTime) {
    add(tenSeconds("a.wav"));
    const std::vector<PreviewWish> wishes{{.essence = 0},
                                          {.essence = 0, .firstFrame = 100, .frames = 4'800}};
    const auto first = previews(wishes);
    const auto second = previews(wishes);
    EXPECT_EQ(first[0].ogg, second[0].ogg);
    EXPECT_EQ(first[1].ogg, second[1].ogg);
}

TEST_F(PreviewSources, WhatCannotBeMadeTellsWhy) {
    add(file("text.wav", bytesOf("no audio")));
    add(folder_.file("none.wav"));
    add(file("a.wav", waveOf({1, 2, 3})));
    const auto made = previews({{.essence = 0},
                                {.essence = 1},
                                {.essence = 2, .channel = 1},
                                {.essence = 2, .firstFrame = -1},
                                {.essence = 2, .frames = 0},
                                {.essence = 2, .channel = mostFrames},
                                {.essence = 2, .firstFrame = mostFrames, .frames = mostFrames},
                                {.essence = 2}});
    EXPECT_EQ(made[0].reason, "it is no AIFF, AIFC or WAVE file");
    EXPECT_EQ(made[1].reason, "its audio file is missing");
    EXPECT_EQ(made[2].reason, "it has no channel 2");
    EXPECT_EQ(made[3].reason, "there is no such part");
    EXPECT_EQ(made[4].reason, "there is no such part");
    EXPECT_EQ(made[5].reason, "it has no channel 65536");
    EXPECT_EQ(made[6].reason, "it ends before the part that is wanted");
    for (std::size_t i = 0; i < 7; ++i) {
        EXPECT_EQ(made[i].state, PreviewState::failed) << i;
        EXPECT_TRUE(made[i].ogg.empty());
    }
    EXPECT_EQ(made[7].state, PreviewState::made);
}

TEST_F(PreviewSources, FitTogetherIntoTheBytesThatAreAllowed) {
    add(tenSeconds("a.wav"));
    add(tenSeconds("b.wav"));
    add(file("short.wav", waveOf(std::vector<std::int16_t>(4'800))));
    // 80,000 bytes of sound each and some for pages: one fits, the second does not, the short one
    // behind it does.
    const auto made = previews({{.essence = 0}, {.essence = 1}, {.essence = 2}},
                               {.converter = TRELLANT_WAV, .mostBytes = 100'000});
    EXPECT_EQ(made[0].state, PreviewState::made);
    EXPECT_EQ(made[1].state, PreviewState::leftOut);
    EXPECT_EQ(made[1].reason, "there is no room for it");
    EXPECT_EQ(made[2].state, PreviewState::made);
    EXPECT_LE(made[0].ogg.size() + made[2].ogg.size(), 100'000U);
    for (const Preview& preview :
         previews({{.essence = 0}, {.essence = 2}}, {.converter = TRELLANT_WAV, .mostBytes = 0})) {
        EXPECT_EQ(preview.state, PreviewState::leftOut);
    }
}

TEST_F(PreviewSources, LargerThanWasThoughtAreLeftOut) {
    add(file("a.wav", waveOf({1, 2, 3})));
    const PreviewRequest request{.converter = script("head -c 5000 /dev/zero > \"$3\""),
                                 .mostBytes = 9'000};
    const auto made = previews({{.essence = 0}, {.essence = 0}}, request);
    EXPECT_EQ(made[0].state, PreviewState::made);
    EXPECT_EQ(made[1].state, PreviewState::leftOut);
    EXPECT_TRUE(made[1].ogg.empty());
    const PreviewRequest tight{.converter = request.converter, .mostBytes = 4'000};
    EXPECT_EQ(previews({{.essence = 0}}, tight)[0].state, PreviewState::leftOut);
}

TEST_F(PreviewSources, AreAsLargeAsIsEstimatedAtMost) {
    add(tenSeconds("a.wav"));
    const auto made = previews({{.essence = 0}});
    const std::uint64_t estimated = listening::estimatedPreviewBytes(10, 1, 64'000);
    EXPECT_LE(made[0].ogg.size(), estimated);
    // No more than a twentieth and the heads above what the rate says.
    EXPECT_EQ(estimated, 1'500U + 84'000U);
    EXPECT_EQ(listening::estimatedPreviewBytes(std::numeric_limits<double>::infinity(), 2, 64'000),
              std::numeric_limits<std::uint64_t>::max());
}

TEST_F(PreviewSources, AStopEndsThem) {
    add(file("a.wav", waveOf({1, 2, 3})));
    StopSource source;
    source.request_stop();
    WorkProgress progress(source.get_token());
    EXPECT_THROW(static_cast<void>(listening::previewSources(
                     timeline_, {{.essence = 0}}, {.converter = TRELLANT_WAV}, staging_, progress)),
                 AAFCancellationError);
    EXPECT_TRUE(isStagingEmpty());
}

}  // namespace
}  // namespace trellant::testing
