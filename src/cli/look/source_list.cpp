// SPDX-License-Identifier: Apache-2.0
#include "lists.h"

#include <trellant/base/url.h>
#include <trellant/handoff/source_timecode.h>
#include <trellant/handoff/sources.h>
#include <trellant/handoff/timeline_text.h>

#include <array>

namespace trellant::cli {

namespace {

using enum Audience;

class SourceRows {
  public:
    struct Row {
        const Source& source;
        const AAFSourceEssence& essence;
        /// Null when no tape with labels is known.
        const SourceTimecode* timecode;
    };

    explicit SourceRows(const HandOff& handOff) : sources_(handOff), timecodes_(handOff) {}
    [[nodiscard]] static const auto& columns();
    [[nodiscard]] std::size_t count() const { return sources_.all().size(); }
    [[nodiscard]] Row row(std::size_t position) const {
        const Source& source = sources_.all()[position];
        return {source, *source.essence, timecodes_.of(source.essence->id)};
    }

  private:
    Sources sources_;
    SourceTimecodes timecodes_;
};

using Row = SourceRows::Row;

void sayFile(const Row& row, Cell& cell) {
    if (row.essence.fileURL) {
        const std::string& url = row.essence.fileURL->text;
        cell.text(pathOfFileURL(url).value_or(url));
    }
}

const std::array<ColumnOf<Row>, 16> sourceColumns{{
    {{"name", "Audio file", everyone, Align::left, true},
     [](const Row& row, Cell& cell) { cell.text(sourceName(row.essence)); }},
    {{"", "State", people, Align::left, false, 1},
     [](const Row& row, Cell& cell) { cell.text(stateText(row.source.state)); }},
    {{"state", "State", machines},
     [](const Row& row, Cell& cell) { cell.text(stateWord(row.source.state)); }},
    {{"sampleRate", "Rate (Hz)", everyone, Align::right, false, 2},
     [](const Row& row, Cell& cell) { cell.number(row.essence.sampleRate.doubleValue()); }},
    {{"sampleRateExact", "Rate (exact Hz)", details, Align::left, false, 0, true},
     [](const Row& row, Cell& cell) { cell.fraction(row.essence.sampleRate); }},
    {{"bitDepth", "Bits", everyone, Align::right, false, 3},
     [](const Row& row, Cell& cell) { cell.integer(row.essence.bitDepth); }},
    {{"channels", "Channels", everyone, Align::right, false, 5},
     [](const Row& row, Cell& cell) { cell.integer(row.essence.channelCount); }},
    {{"", "Format", people, Align::left, false, 6},
     [](const Row& row, Cell& cell) {
         if (row.essence.codec) {
             cell.text(formatText(*row.essence.codec));
         }
     }},
    {{"codec", "Codec"}, [](const Row& row, Cell& cell) { cell.text(row.essence.codec); }},
    {{"clips", "Clips", everyone, Align::right, false, 4},
     [](const Row& row, Cell& cell) { cell.integer(static_cast<std::int64_t>(row.source.clips)); }},
    {{"timecode", "Timecode", everyone, Align::left, false, 8},
     [](const Row& row, Cell& cell) {
         if (row.timecode != nullptr) {
             cell.word(labelAt(*row.timecode, AAFRational::zero()));
         }
     }},
    {{"timecodeRate", "Timecode rate (fps)", details, Align::left, false, 0, true},
     [](const Row& row, Cell& cell) {
         if (row.timecode != nullptr) {
             cell.fraction(row.timecode->rate.exactRate);
         }
     }},
    {{"reel", "Reel", everyone, Align::left, true, 9},
     [](const Row& row, Cell& cell) {
         if (row.timecode != nullptr) {
             cell.text(row.timecode->reel);
         }
     }},
    {{"path", "Found at", everyone, Align::left, true, 7}, sayFile},
    {{"recordedPath", "Recorded path"},
     [](const Row& row, Cell& cell) { cell.text(row.essence.originalPath); }},
    {{"id", "Id"}, [](const Row& row, Cell& cell) { cell.text(row.essence.id); }},
}};

const auto& SourceRows::columns() {
    return sourceColumns;
}

}  // namespace

std::unique_ptr<List> listOfSources(const HandOff& handOff) {
    return std::make_unique<ListOf<SourceRows>>(SourceRows(handOff));
}

}  // namespace trellant::cli
