// SPDX-License-Identifier: Apache-2.0
// A composition mapped with the places of its losses, in a form that a test can write down by hand.
#pragma once

#include "song.h"

#include <trellant/mapper/loss_places.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <ostream>
#include <string>
#include <trellant_testing/temporary_directory.h>
#include <utility>
#include <vector>

namespace trellant::testing {

/// Kind, range and cut in units of 1/100 of a second, clip.
struct LossAt {
    LossKind kind = LossKind::other;
    std::int64_t start = 0;
    std::int64_t length = 0;
    ObjectID clip = 0;
    std::optional<std::int64_t> cut{};
    bool operator==(const LossAt&) const = default;
};

inline std::ostream& operator<<(std::ostream& stream, const LossAt& loss) {
    stream << "kind " << static_cast<int>(loss.kind) << " at " << loss.start << " for "
           << loss.length << " clip " << loss.clip;
    if (loss.cut) {
        stream << " cut " << *loss.cut;
    }
    return stream;
}

class PlacedLossesTest : public ::testing::Test {
  protected:
    /// The first slot holds the sequence.
    void place(const std::vector<ObjectID>& components) {
        song_.addSlot(omf_.sequence(components));
        map();
    }
    void map(MappingPlaces places = {}) {
        const TemporaryDirectory folder;
        const OMFDocument document(writeFile(folder.file("song.omf"), song_.image()));
        places.placesLosses = true;
        Mapper mapper(document, std::move(places));
        EXPECT_EQ(mapper.lossPlaces().size(), 0U);
        timeline_ = mapper.makeTimeline([](double) {});
        losses_ = mapper.lossPlaces();
        EXPECT_EQ(losses_.size(), timeline_.unsupportedFeatures.size());
    }
    /// Losses without a range stop the test.
    [[nodiscard]] std::vector<LossAt> placed() const {
        std::vector<LossAt> result;
        for (const LossPlace& loss : losses_) {
            result.push_back({.kind = loss.kind,
                              .start = units(loss.range.value().start),
                              .length = units(loss.range.value().duration),
                              .clip = number(loss.clip),
                              .cut = loss.cut ? std::optional(units(*loss.cut)) : std::nullopt});
        }
        return result;
    }

    Song song_;
    OmfBuilder& omf_ = song_.omf;
    AAFTimeline timeline_;
    std::vector<LossPlace> losses_;
};

}  // namespace trellant::testing
