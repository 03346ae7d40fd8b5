// SPDX-License-Identifier: Apache-2.0
#include "file_plan.h"

#include "rendered.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace trellant::testing {
namespace {

using exchange::PlannedTrack;
using render::RenderedFile;
using render::RenderKind;
using render::RenderRefusal;
using render::RenderRequest;
using render::SessionPart;
using render::Treatment;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class FilesOfPlan : public ::testing::Test, public RenderedPlan {
  protected:
    [[nodiscard]] std::vector<RenderedFile> files(const RenderRequest& request) const {
        return render::plannedFiles(request, plan, played, render::sessionPart(request, plan));
    }
    static std::vector<std::string> namesOf(const std::vector<RenderedFile>& files) {
        std::vector<std::string> names;
        for (const RenderedFile& file : files) {
            names.push_back(file.name);
        }
        return names;
    }
    [[nodiscard]] std::string refusal(const RenderRequest& request) const {
        try {
            static_cast<void>(files(request));
        } catch (const RenderRefusal& error) {
            return error.what();
        }
        return {};
    }
};

TEST_F(FilesOfPlan, TracksWithClipsHaveAFileEach) {
    const std::size_t media = addMedia({1, 2, 3});
    addClip(addTrack("Dialog: L"), media, 0, 3);
    addTrack("Empty");
    addClip(addTrack("Dialog/L"), addMissingMedia(), 5, 3);
    const auto result = files({});
    EXPECT_THAT(namesOf(result), ElementsAre("01 Dialog_ L.wav", "03 L.wav"));
    EXPECT_EQ(result[0].length, 8);
    EXPECT_EQ(result[0].silentClips, 0U);
    EXPECT_EQ(result[1].silentClips, 1U);
    EXPECT_EQ(result[1].clips, 1U);
    EXPECT_EQ(result[1].format, (audio::PcmFormat{24, false}));
}

TEST_F(FilesOfPlan, EditsHaveTheBitsOfTheirMedia) {
    addClip(addTrack("A"), addMedia({1, 2, 3}), 0, 3);
    EXPECT_EQ(files({.treatment = Treatment::edits})[0].format, (audio::PcmFormat{16, false}));
    EXPECT_EQ(
        files({.treatment = Treatment::edits, .format = audio::PcmFormat{32, true}})[0].format,
        (audio::PcmFormat{32, true}));
    // Another of 24 bits beside it: they do not agree.
    const std::size_t other = addMedia({1, 2, 3});
    played[other]->bitsOfSample = 24;
    addClip(plan.tracks[0], other, 3, 1);
    EXPECT_EQ(files({.treatment = Treatment::edits})[0].format, (audio::PcmFormat{24, false}));
}

TEST_F(FilesOfPlan, ClipsHaveHandlesAsFarAsTheirMediaGo) {
    plan.rate = 4;
    auto& clip = addClip(addTrack("A"), addMedia({1, 2, 3, 4, 5, 6, 7, 8}), 10, 2);
    clip.sourceStart = 3;
    addClip(plan.tracks[0], addMissingMedia(), 20, 2);
    // A second is 4 samples: 3 are there before the clip, 3 behind it.
    const auto result = files({.kind = RenderKind::clips, .handles = AAFRational(1)});
    EXPECT_THAT(namesOf(result), ElementsAre("01-001 clip.wav"));
    EXPECT_EQ(result[0].start, 7);
    EXPECT_EQ(result[0].length, 8);
}

TEST_F(FilesOfPlan, TheMixIsOneStereoFile) {
    addClip(addTrack("A"), addMedia({1}), 0, 1);
    addClip(addTrack("B"), addMissingMedia(), 0, 1);
    plan.tracks[1].muted = true;
    const auto result = files({.kind = RenderKind::mix});
    EXPECT_THAT(namesOf(result), ElementsAre("mix.wav"));
    EXPECT_EQ(result[0].channels, 2U);
    EXPECT_EQ(result[0].clips, 1U);
    EXPECT_EQ(result[0].silentClips, 0U);
}

/// 25 fps at 48,000 Hz: 1,920 samples a frame.
TEST_F(FilesOfPlan, LabelsNameAPart) {
    plan.length = 96'000;
    EXPECT_EQ(render::sessionPart({}, plan), (SessionPart{0, 96'000}));
    EXPECT_EQ(render::sessionPart({.from = "01:00:00:10", .until = "01:00:01:00"}, plan),
              (SessionPart{19'200, 48'000}));
    EXPECT_EQ(render::sessionPart({.until = "02:00:00:00"}, plan), (SessionPart{0, 96'000}));
    EXPECT_EQ(refusal({.from = "00:59:59:24"}),
              "the timecode 00:59:59:24 lies before the session, which begins at 01:00:00:00");
    EXPECT_EQ(refusal({.from = "01:00:02:00"}),
              "the timecode 01:00:02:00 lies behind the session's end");
    EXPECT_EQ(refusal({.from = "01:00:00:25"}),
              "no frame of this session has the timecode 01:00:00:25");
    EXPECT_THAT(refusal({.from = "01:00:01:00", .until = "01:00:01:00"}), HasSubstr("--until"));
}

/// 24 hours at 48,000 Hz are 4,147,200,000 samples.
TEST_F(FilesOfPlan, NoFileIsLongerThanADay) {
    auto& clip = addClip(addTrack("A"), addMedia({1, 2}), 0, 2);
    plan.length = 4'147'200'000;
    EXPECT_EQ(files({})[0].length, 4'147'200'000);
    plan.length += 1;
    EXPECT_EQ(refusal({}),
              "what is to be rendered is 25 hours long, and a file has 24 at most; --from and "
              "--until name a part, and leave out other clips");
    EXPECT_EQ(refusal({.kind = RenderKind::clips}), "");
    EXPECT_EQ(files({.until = "02:00:00:00"})[0].length, 172'800'000);
    // A hundred days.
    clip.length = 414'720'000'000;
    EXPECT_EQ(refusal({.kind = RenderKind::clips}),
              "a clip and its handles are 2400 hours long, and a file has 24 at most; --from and "
              "--until name a part, and leave out other clips");
}

TEST_F(FilesOfPlan, FilesAreCounted) {
    PlannedTrack& track = addTrack("A");
    const std::size_t media = addMedia({1, 2});
    for (exchange::Samples i = 0; i < 50'000; ++i) {
        addClip(track, media, i, 1);
    }
    EXPECT_EQ(files({.kind = RenderKind::clips}).size(), 50'000U);
    addClip(track, media, 50'000, 1);
    EXPECT_EQ(refusal({.kind = RenderKind::clips}),
              "there would be more than 50000 files; --from and --until name a part");
    EXPECT_EQ(refusal({}), "");
}

TEST_F(FilesOfPlan, ASessionMayRunOverMidnight) {
    plan.start = AAFTimecodeAddress(23, 59, 59, 0, AAFTimecodeRate::fps25());
    plan.length = 96'000;
    EXPECT_EQ(render::sessionPart({.from = "00:00:00:00"}, plan), (SessionPart{48'000, 96'000}));
}

TEST_F(FilesOfPlan, SamplesCountFromMidnightInRealTime) {
    EXPECT_EQ(render::samplesFromMidnight(plan), 172'800'000);
    // An hour of drop-frame labels is 107,892 frames of 1,001/30,000 s: 172,799,827.2 samples.
    plan.start = AAFTimecodeAddress(1, 0, 0, 0, AAFTimecodeRate::fps2997DF());
    EXPECT_EQ(render::samplesFromMidnight(plan), 172'799'827);
}

}  // namespace
}  // namespace trellant::testing
