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

    /// Positions that touching() gives at most.
    static constexpr std::size_t mostPositions = 16;

    /// How many losses touch the event: those on its track that begin before its end and end after
    /// its start; one without extent (a cut) touches the clips on both of its sides. A loss of the
    /// whole track touches none of its clips in particular.
    [[nodiscard]] std::size_t countTouching(const AAFClipEvent& event) const;
    /// Positions (from 0, ascending) of losses that touch the event: the earliest on the timeline,
    /// at most mostPositions. A file may lay every loss over every clip, so a list of all of them
    /// would grow with the product of both; what is left out is in the count.
    [[nodiscard]] std::vector<std::size_t> touching(const AAFClipEvent& event) const;

  private:
    struct Span {
        AAFRational start;
        AAFRational end;
        /// The latest end of this span and all before it.
        AAFRational latestEnd;
        std::size_t position;
    };
    /// The losses of one track.
    struct Track {
        /// In order of start.
        std::vector<Span> spans;
        /// Of spans with extent, and of cuts: each ascending.
        std::vector<AAFRational> starts;
        std::vector<AAFRational> ends;
        std::vector<AAFRational> cuts;
    };
    KeyedMap<std::string_view, Track> byTrack_;
};

}  // namespace trellant
