// SPDX-License-Identifier: Apache-2.0
#include "lists.h"

#include <trellant/base/keyed_hash.h>
#include <trellant/handoff/timeline_text.h>

#include <algorithm>
#include <array>

namespace trellant::cli {

namespace {

using enum Audience;

struct TrackTotals {
    std::int64_t clips = 0;
    AAFRational end{};
    std::int64_t losses = 0;
};

class TrackRows {
  public:
    struct Row {
        const AAFTimeline& timeline;
        const AAFTrackState& track;
        TrackTotals totals;
    };

    explicit TrackRows(const HandOff& handOff) : timeline_(handOff.timeline) {
        for (const AAFClipEvent& event : timeline_.events) {
            TrackTotals& track = totals_[event.trackID];
            ++track.clips;
            track.end = std::max(track.end, event.timelineEnd());
        }
        for (const PlacedLoss& loss : handOff.losses) {
            if (loss.trackID) {
                ++totals_[*loss.trackID].losses;
            }
        }
    }
    [[nodiscard]] static const auto& columns();
    [[nodiscard]] std::size_t count() const { return timeline_.tracks.size(); }
    [[nodiscard]] Row row(std::size_t position) const {
        const AAFTrackState& track = timeline_.tracks[position];
        const auto found = totals_.find(track.id);
        return {timeline_, track, found == totals_.end() ? TrackTotals{} : found->second};
    }

  private:
    const AAFTimeline& timeline_;
    KeyedMap<std::string_view, TrackTotals> totals_;
};

using Row = TrackRows::Row;

const std::array<ColumnOf<Row>, 14> trackColumns{{
    {{"track", "Track", everyone, Align::right},
     [](const Row& row, Cell& cell) { cell.integer(row.track.index + 1); }},
    {{"", "Name", people, Align::left, true},
     [](const Row& row, Cell& cell) { cell.text(trackText(row.track.name, row.track.index + 1)); }},
    {{"name", "Name", machines}, [](const Row& row, Cell& cell) { cell.text(row.track.name); }},
    {{"clips", "Clips", everyone, Align::right, false, 3},
     [](const Row& row, Cell& cell) { cell.integer(row.totals.clips); }},
    {{"end", "Ends at", everyone, Align::left, false, 4},
     [](const Row& row, Cell& cell) { cell.text(timecodeText(row.timeline, row.totals.end)); }},
    {{"endSeconds", "Ends at (s)"},
     [](const Row& row, Cell& cell) { cell.number(row.totals.end.doubleValue()); }},
    {{"endSecondsExact", "Ends at (exact s)", details, Align::left, false, 0, true},
     [](const Row& row, Cell& cell) { cell.fraction(row.totals.end); }},
    {{"gainDb", "Gain (dB)", everyone, Align::right, false, 5},
     [](const Row& row, Cell& cell) { cell.decibels(row.track.fixedGain); }},
    {{"pan", "Pan", everyone, Align::left, false, 6},
     [](const Row& row, Cell& cell) {
         if (row.track.fixedPan) {
             cell.text(panText(*row.track.fixedPan));
         }
     }},
    {{"panPosition", "Pan position"},
     [](const Row& row, Cell& cell) { cell.number(row.track.fixedPan); }},
    {{"muted", "Muted", everyone, Align::left, false, 2},
     [](const Row& row, Cell& cell) { cell.boolean(row.track.muted); }},
    {{"solo", "Solo", everyone, Align::left, false, 7},
     [](const Row& row, Cell& cell) { cell.boolean(row.track.solo); }},
    {{"losses", "Losses", everyone, Align::right, false, 1},
     [](const Row& row, Cell& cell) { cell.integer(row.totals.losses); }},
    {{"id", "Id"}, [](const Row& row, Cell& cell) { cell.text(row.track.id); }},
}};

const auto& TrackRows::columns() {
    return trackColumns;
}

}  // namespace

std::unique_ptr<List> listOfTracks(const HandOff& handOff) {
    return std::make_unique<ListOf<TrackRows>>(TrackRows(handOff));
}

}  // namespace trellant::cli
