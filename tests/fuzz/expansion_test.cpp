// SPDX-License-Identifier: Apache-2.0
#include "expansion.h"

#include "memory_file.h"

#include <gtest/gtest.h>

#include <trellant_testing/omf_builder.h>

namespace trellant::fuzzing {
namespace {

using testing::ObjectBuilder;
using testing::ObjectID;
using testing::OmfBuilder;

class Expansion : public ::testing::Test {
  protected:
    void place(const std::vector<ObjectID>& segments) {
        std::vector<ObjectID> slots;
        for (const ObjectID segment : segments) {
            slots.push_back(omf_.slot({.segment = segment}));
        }
        omf_.composition({.slots = slots});
    }
    void expectSegments(std::size_t count) {
        const MemoryFile file(omf_.build());
        const OMFDocument document(file.path());
        EXPECT_FALSE(expandsBeyond(document, count));
        EXPECT_TRUE(expandsBeyond(document, count - 1));
    }

    OmfBuilder omf_;
};

TEST_F(Expansion, CountsASegmentAsOftenAsItIsComeTo) {
    ObjectID segment = omf_.filler(1);
    for (int level = 0; level < 3; ++level) {
        segment = omf_.sequence({segment, segment});
    }
    place({segment});
    // 1 sequence, 2, 4, and 8 fillers.
    expectSegments(15);
}

TEST_F(Expansion, GoesThroughEffectsSelectorsAndScopes) {
    const ObjectID gained = omf_.gain(omf_.filler(1), omf_.constantValue({1, 2}));
    const ObjectID scope = omf_.nestedScope({omf_.filler(1), omf_.filler(1)});
    place({omf_.sequence({gained, omf_.selector(scope)})});
    // Sequence; effect, its filler and value; selector, scope, two fillers.
    expectSegments(8);
}

TEST_F(Expansion, FollowsReferencesToTracksOfItsScopeAndBeyond) {
    const ObjectID first = omf_.sequence({omf_.filler(1)});
    const ObjectID toPrevious = omf_.scopeReference(1, 0, 1);
    const ObjectID beyond = omf_.nestedScope({omf_.scopeReference(1, 1, 2)});
    place({first, toPrevious, beyond});
    // Two of the first track; the reference and both again; the scope, its reference and both.
    expectSegments(2 + 3 + 4);
}

TEST_F(Expansion, BrokenReferencesLeadNowhere) {
    place({omf_.sequence({omf_.scopeReference(1, 0, 1), omf_.scopeReference(1, 0, -1),
                          omf_.scopeReference(1, 1, 0), omf_.scopeReference(1, -1, 0)})});
    expectSegments(5);
}

TEST_F(Expansion, OfACircleEndsAtTheDepthOfTheWalk) {
    ObjectBuilder selector = omf_.selector(omf_.filler(1));
    selector.ref("OMFI:SLCT:Selected", selector);
    place({selector});
    // At depths 0 to 48.
    expectSegments(49);
}

TEST_F(Expansion, OfATrackThatRefersToItselfTwiceIsWithoutEnd) {
    place({omf_.sequence({omf_.scopeReference(1, 0, 0), omf_.scopeReference(1, 0, 0)})});
    const MemoryFile file(omf_.build());
    EXPECT_TRUE(expandsBeyond(OMFDocument(file.path()), 100'000));
}

}  // namespace
}  // namespace trellant::fuzzing
