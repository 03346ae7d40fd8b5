// SPDX-License-Identifier: Apache-2.0
// Which losses touch a clip: those of its track whose time it shares.
#pragma once

#include <trellant/base/keyed_hash.h>
#include <trellant/handoff/hand_off.h>

#include <cstddef>
#include <string_view>
#include <vector>

namespace [[gnu::visibility("default")]] trellant {

class LossIndex {
  public:
    /// `losses` must outlive this.
    explicit LossIndex(const std::vector<PlacedLoss>& losses);

    /// Positions (from 0, ascending) of the losses on the event's track that begin before its end
    /// and end after its start; one without extent (a cut) touches the clips on both of its sides.
    /// A loss of the whole track touches none of its clips in particular.
    [[nodiscard]] std::vector<std::size_t> touching(const AAFClipEvent& event) const;

  private:
    struct Span {
        AAFRational start;
        AAFRational end;
        /// The latest end of this span and all before it.
        AAFRational latestEnd;
        std::size_t position;
    };
    /// By track id, each in order of start.
    KeyedMap<std::string_view, std::vector<Span>> byTrack_;
};

}  // namespace trellant
