// SPDX-License-Identifier: Apache-2.0
// Which losses touch a clip: those of its track whose time it shares.
#pragma once

#include <trellant/base/keyed_hash.h>
#include <trellant/handoff/hand_off.h>

#include <cstddef>
#include <span>
#include <string_view>
#include <vector>

namespace [[gnu::visibility("default")]] trellant {

class LossIndex {
  public:
    /// Losses that are named for one clip. More say no more to a person, and a file of a kilobyte
    /// can have thousands of clips under thousands of losses.
    static constexpr std::size_t mostTouching = 100;

    /// `losses` must outlive this.
    explicit LossIndex(const std::vector<PlacedLoss>& losses);

    /// Positions (from 0, ascending) of the losses on the event's track that begin before its end
    /// and end after its start; one without extent (a cut) touches the clips on both of its sides.
    /// A loss of the whole track touches none of its clips in particular. Of more than
    /// `mostTouching` those that begin first.
    [[nodiscard]] std::vector<std::size_t> touching(const AAFClipEvent& event) const;

    /// How many losses touch the event, however many touching() gives.
    [[nodiscard]] std::size_t countTouching(const AAFClipEvent& event) const;

  private:
    struct Span {
        AAFRational start;
        AAFRational end;
        /// The latest end of the part of the list whose middle this span is.
        AAFRational latestEnd;
        std::size_t position = 0;
    };
    /// In order of start.
    using Spans = std::vector<Span>;
    struct Track {
        Spans extended{};
        Spans cuts{};
        /// Of those with an extent, ascending.
        std::vector<AAFRational> ends{};
    };

    static void sortByStart(Spans& spans);
    static void findLatestEnds(std::span<Span> part);
    static void collect(std::span<const Span> part, const AAFClipEvent& event,
                        std::vector<const Span*>& found);

    /// By track id.
    KeyedMap<std::string_view, Track> byTrack_;
};

}  // namespace trellant
