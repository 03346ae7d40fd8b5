// SPDX-License-Identifier: Apache-2.0
// What the tests of sequences share: one sequence in the first slot of a composition.
#pragma once

#include "song.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

namespace trellant::testing {

inline constexpr std::string_view cutText =
    "OMF Transition treated as the spec-defined cut; transition effect itself is not reproduced";

class SequenceTest : public ::testing::Test {
  protected:
    void place(const std::vector<ObjectID>& components) {
        sequence_ = omf_.sequence(components);
        song_.addSlot(sequence_);
        mapped_ = song_.map();
    }
    std::string path() { return song_.path() + step("SEQU", sequence_); }
    std::string componentPath(int index) {
        return path() + "/component[" + std::to_string(index) + "]";
    }

    Song song_;
    OmfBuilder& omf_ = song_.omf;
    ObjectID sequence_ = 0;
    Mapped mapped_;
};

}  // namespace trellant::testing
