// SPDX-License-Identifier: Apache-2.0
// Work and memory of a verdict grow with the hand-off, whatever its clips lie like.
#include "sound_hand_off.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <ctime>
#include <limits>

namespace trellant::check {
namespace {

/// Every clip on one track, over one another, with one name and without handles: all that could be
/// compared with all.
SoundHandOff pile(std::int64_t clips) {
    SoundHandOff made;
    for (std::int64_t i = 0; i < clips; ++i) {
        made.addClip("Dialog", "Voice.wav", AAFRational(i, 1'000), AAFRational(100))
            .sourceStartSample = 0;
    }
    return made;
}

std::clock_t cost(const SoundHandOff& made, const Profile& profile) {
    std::clock_t least = std::numeric_limits<std::clock_t>::max();
    for (int run = 0; run < 3; ++run) {
        const std::clock_t start = std::clock();
        EXPECT_GT(made.verdict(profile).count(Severity::warning), 0U);
        least = std::min(least, std::clock() - start);
    }
    return least;
}

TEST(Linearity, TenTimesTheClipsCostNoHundredTimesAsMuch) {
    const Profile profile = *builtInProfile("post");
    const SoundHandOff small = pile(2'000);
    const SoundHandOff large = pile(20'000);
    // Ten times, and room for a noisy machine; quadratic work would be a hundred times.
    EXPECT_LT(cost(large, profile), 40 * (cost(small, profile) + 1'000));
}

}  // namespace
}  // namespace trellant::check
