// SPDX-License-Identifier: Apache-2.0
// The list of losses for sheets and programs.
#include "lists.h"

#include <trellant/handoff/timeline_text.h>

#include <array>

namespace trellant::cli {

namespace {

using enum Audience;

class LossRows {
  public:
    struct Row {
        const AAFTimeline& timeline;
        std::size_t position;
        const AAFUnsupportedFeature& feature;
        const PlacedLoss& loss;
    };

    explicit LossRows(const HandOff& handOff) : handOff_(handOff) {}
    [[nodiscard]] static const auto& columns();
    [[nodiscard]] std::size_t count() const { return handOff_.timeline.unsupportedFeatures.size(); }
    [[nodiscard]] Row row(std::size_t position) const {
        return {handOff_.timeline, position, handOff_.timeline.unsupportedFeatures[position],
                handOff_.losses[position]};
    }

  private:
    const HandOff& handOff_;
};

using Row = LossRows::Row;

void sayEffect(const Row& row, Cell& cell) {
    const bool isDropped = row.feature.severity == AAFUnsupportedFeature::Severity::informational;
    cell.word(isDropped ? "dropped" : "soundsDifferent");
}

void sayIn(const Row& row, Cell& cell) {
    if (row.loss.start) {
        cell.word(timecodeText(row.timeline, *row.loss.start));
    }
}

void sayOut(const Row& row, Cell& cell) {
    if (row.loss.start && row.loss.duration) {
        cell.word(timecodeText(row.timeline, *row.loss.start + *row.loss.duration));
    }
}

void saySeconds(const std::optional<AAFRational>& time, Cell& cell) {
    if (time) {
        cell.number(time->doubleValue());
    }
}

void sayExactSeconds(const std::optional<AAFRational>& time, Cell& cell) {
    if (time) {
        cell.fraction(*time);
    }
}

const std::array<ColumnOf<Row>, 15> lossColumns{{
    {{"loss", "No."},
     [](const Row& row, Cell& cell) { cell.integer(static_cast<std::int64_t>(row.position + 1)); }},
    {{"effect", "Effect"}, sayEffect},
    {{"track", "Track"}, [](const Row& row, Cell& cell) { cell.text(row.loss.trackName); }},
    {{"trackNumber", "Track no."},
     [](const Row& row, Cell& cell) { cell.integer(row.loss.trackNumber); }},
    {{"clip", "Clip"}, [](const Row& row, Cell& cell) { cell.text(row.loss.clipName); }},
    {{"clipNameFrom", "Clip named by"},
     [](const Row& row, Cell& cell) {
         if (row.loss.isClipNamedByMasterMob) {
             cell.word("masterMob");
         }
     }},
    {{"in", "From"}, sayIn},
    {{"out", "To"}, sayOut},
    {{"startSeconds", "From (s)"},
     [](const Row& row, Cell& cell) { saySeconds(row.loss.start, cell); }},
    {{"startSecondsExact", "From (exact s)", details, Align::left, false, 0, true},
     [](const Row& row, Cell& cell) { sayExactSeconds(row.loss.start, cell); }},
    {{"durationSeconds", "Length (s)"},
     [](const Row& row, Cell& cell) { saySeconds(row.loss.duration, cell); }},
    {{"durationSecondsExact", "Length (exact s)", details, Align::left, false, 0, true},
     [](const Row& row, Cell& cell) { sayExactSeconds(row.loss.duration, cell); }},
    {{"sentence", "What it means"},
     [](const Row& row, Cell& cell) {
         cell.text(row.loss.plain.empty() ? row.feature.description : row.loss.plain);
     }},
    {{"technical", "Technical text"},
     [](const Row& row, Cell& cell) { cell.text(row.feature.description); }},
    {{"objectPath", "Place in the file"},
     [](const Row& row, Cell& cell) { cell.text(row.feature.objectPath); }},
}};

const auto& LossRows::columns() {
    return lossColumns;
}

}  // namespace

std::unique_ptr<List> listOfLosses(const HandOff& handOff) {
    return std::make_unique<ListOf<LossRows>>(LossRows(handOff));
}

}  // namespace trellant::cli
