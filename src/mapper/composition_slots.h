// SPDX-License-Identifier: Apache-2.0
// The slots of the composition, and which of them are audio that can be measured.
#pragma once

#include "bounded_reads.h"
#include "data_kinds.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace trellant {

class CompositionSlots {
  public:
    /// No slots yet. Both must outlive this.
    CompositionSlots(BoundedReads& reads, DataKinds& dataKinds)
        : reads_(reads), dataKinds_(dataKinds) {}

    /// Reads the composition's slots and their segments; call once.
    void read(OMFObject composition);

    [[nodiscard]] const std::vector<OMFObject>& slots() const noexcept { return slots_; }
    /// By slot; none where a slot has no segment.
    [[nodiscard]] const std::vector<OMFObject>& segments() const noexcept { return segments_; }

    [[nodiscard]] bool isAudio(std::size_t index) const;
    /// Edit units per second; absent when the slot has none that can measure: missing, zero or
    /// negative.
    [[nodiscard]] std::optional<AAFRational> usableEditRate(std::size_t index) const;
    [[nodiscard]] std::optional<std::string> trackName(std::size_t index) const;

  private:
    BoundedReads& reads_;
    DataKinds& dataKinds_;
    std::vector<OMFObject> slots_;
    std::vector<OMFObject> segments_;
};

}  // namespace trellant
