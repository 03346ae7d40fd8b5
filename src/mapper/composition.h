// SPDX-License-Identifier: Apache-2.0
// The compositions of a file, which of them is read, its slots, and what clock it runs by.
#pragma once

#include "bounded_reads.h"
#include "data_kinds.h"

#include <trellant/model/timecode.h>
#include <trellant/omf/document.h>

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace trellant {

/// The first Composition Mob of the header's primary mobs, else of its mobs, else of all objects.
/// Throws OMFIOError malformed when the file holds none.
[[nodiscard]] OMFObject chooseComposition(const OMFDocument& document);

/// The slots of the composition, and which of them are audio that can be measured.
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

struct CompositionClock {
    /// 25 frames per second from 00:00:00:00 unless a timecode slot says otherwise.
    AAFProgramClock clock{};
    /// The label that the timecode slot starts with; absent when none gave the clock.
    std::optional<AAFTimecodeAddress> explicitProgramStart{};
};

/// The clock of the first slot that holds a timecode segment; `segments` by slot.
[[nodiscard]] CompositionClock clockOf(const BoundedReads& reads,
                                       const std::vector<OMFObject>& slots,
                                       const std::vector<OMFObject>& segments);

}  // namespace trellant
