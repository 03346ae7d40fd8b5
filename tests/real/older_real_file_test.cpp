// SPDX-License-Identifier: Apache-2.0
// One session that a workstation saved twice, as OMF 1.x and as OMF 2.
#include "real_files.h"

#include <trellant/mapper/mapper.h>
#include <trellant/mapper/master_mobs.h>
#include <trellant/omf1/open.h>

#include <gtest/gtest.h>

namespace trellant::testing {

namespace {

struct Mapped {
    AAFTimeline timeline{};
    MasterMobs mobs{};
};

Mapped mapped(const std::string& path) {
    const OMFDocument document = openAnyOMF(path);
    Mapped result;
    result.timeline = Mapper(document, {.sourcePath = path}).makeTimeline([](double) {});
    result.mobs = masterMobs(document, result.timeline);
    return result;
}

/// Without identifiers, which each saving makes anew, without the name of the file, and without
/// names of tracks, which the file of OMF 1.x does not hold.
Mapped withoutWhatIsItsOwn(Mapped one) {
    AAFTimeline& timeline = one.timeline;
    timeline.sourceAAF = {};
    for (AAFTrackState& track : timeline.tracks) {
        track.id.clear();
        track.name.reset();
    }
    for (AAFClipEvent& event : timeline.events) {
        event.id.clear();
        event.trackID.clear();
        event.essenceID.clear();
    }
    for (AAFSourceEssence& essence : timeline.essences) {
        essence.id.clear();
        essence.mobID.reset();
    }
    for (MasterMob& mob : one.mobs.mobs) {
        mob.mobID.clear();
    }
    return one;
}

TEST(OlderRealFile, IsTheSessionThatAnotherFileHasInOMF2) {
    const auto older = realFile("omf1-one-clip.omf");
    const auto newer = realFile("big-endian-25fps.omf");
    if (!older || !newer) {
        GTEST_SKIP() << "the files are not there";
    }
    const Mapped ofOlder = withoutWhatIsItsOwn(mapped(*older));
    const Mapped ofNewer = withoutWhatIsItsOwn(mapped(*newer));
    EXPECT_EQ(ofOlder.timeline, ofNewer.timeline);
    EXPECT_EQ(ofOlder.mobs, ofNewer.mobs);
    // It is this session, and not nothing twice.
    ASSERT_EQ(ofOlder.timeline.events.size(), 1U);
    EXPECT_EQ(ofOlder.timeline.events[0].sourceStartSample, 88'200);
    EXPECT_EQ(ofOlder.timeline.events[0].duration, AAFRational(382'751, 44'100));
    EXPECT_TRUE(ofOlder.timeline.unsupportedFeatures.empty());
}

}  // namespace

}  // namespace trellant::testing
