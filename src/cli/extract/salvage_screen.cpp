// SPDX-License-Identifier: Apache-2.0
#include "salvage_screen.h"

#include "terminal/console.h"
#include "terminal/pasted_word.h"
#include "terminal/shown_text.h"
#include "terminal/table.h"

#include <array>
#include <cstdio>
#include <map>
#include <string_view>

namespace trellant::cli {

namespace {

using salvage::SalvageReport;

std::string labelled(std::string_view label, const std::string& fact, bool colour) {
    constexpr std::size_t labelWidth = 11;
    return "  " + painted(label, Paint::dim, colour) + std::string(labelWidth - label.size(), ' ') +
           fact + "\n";
}

std::string soundsText(const SalvageReport& report) {
    const std::size_t incomplete = report.incompleteCount();
    const std::size_t whole = report.sounds.size() - incomplete;
    std::string text = whole == 0 ? "" : std::to_string(whole) + " whole";
    if (incomplete != 0) {
        text += (whole == 0 ? "" : ", ") + std::to_string(incomplete) + " incomplete";
    }
    return text;
}

std::string tableText(const SalvageReport& report) {
    if (!report.table) {
        return "none found: each sound was found by its own header";
    }
    static const std::map<std::string_view, std::string_view> places{
        {"label", "where the label says"},
        {"earlierLabel", "by a label that more bytes follow"},
        {"beforeLabel", "not where the label says, but before it"},
        {"byItsLook", "by its look, without a label"}};
    const SalvageReport::Table& table = *report.table;
    const auto place = places.find(table.place);
    std::string text = "found";
    if (place != places.end()) {
        text += " " + std::string(place->second);
    }
    return text +
           (table.whole ? ", whole" : ", " + std::to_string(table.entries) + " entries make sense");
}

/// "3.250 s"; empty when not known.
std::string lengthText(const SalvageReport::Sound& sound) {
    if (!sound.frames || sound.sampleRate.value_or(0) <= 0) {
        return {};
    }
    std::array<char, 40> text{};
    static_cast<void>(
        std::snprintf(text.data(), text.size(), "%.3f s",
                      static_cast<double>(*sound.frames) / static_cast<double>(*sound.sampleRate)));
    return text.data();
}

std::string numberText(const std::optional<std::int64_t>& number) {
    return number ? std::to_string(*number) : std::string();
}

Table tableOf(const SalvageReport& report) {
    Table table{.columns = {{.title = "Sound", .mayShrink = true},
                            {.title = "By"},
                            {.title = "Offset", .align = Align::right, .rank = 1},
                            {.title = "Bytes", .align = Align::right, .rank = 2},
                            {.title = "Length", .align = Align::right},
                            {.title = "Rate", .align = Align::right, .rank = 4},
                            {.title = "Bits", .align = Align::right, .rank = 3},
                            {.title = "Channels", .align = Align::right, .rank = 3},
                            {.title = "State"}},
                .rows = {}};
    for (const SalvageReport::Sound& sound : report.sounds) {
        table.rows.push_back({shownText(sound.name), sound.from, std::to_string(sound.offset),
                              std::to_string(sound.bytes), lengthText(sound),
                              numberText(sound.sampleRate), numberText(sound.bitDepth),
                              numberText(sound.channels), sound.state});
    }
    return table;
}

std::string adviceText(const ExtractJob& job, const SalvageReport& report) {
    std::string advice;
    if (report.incompleteCount() != 0) {
        advice += "  What is incomplete plays as far as it goes; " + report.record.value_or("") +
                  " says what is certain of each sound and what is not\n";
    }
    const bool isFound = report.table && report.table->whole && report.table->place == "label";
    if (isFound) {
        advice +=
            "  The table of contents is whole. If the rest is too, this keeps names and "
            "timeline: trellant extract " +
            shownText(pastedFileName(job.file)) + " --to FOLDER\n";
    }
    return advice.empty() ? advice : "\n" + advice;
}

}  // namespace

std::string salvageScreen(const ExtractJob& job, const SalvageReport& report, std::size_t columns,
                          bool colour) {
    return painted(shownText(job.file), Paint::bold, colour) + "\n" +
           labelled("Sounds", soundsText(report), colour) +
           labelled("Folder", shownText(job.directory), colour) +
           labelled("Record", report.record.value_or(""), colour) +
           labelled("Table", tableText(report), colour) + "\n" +
           fitted(tableOf(report), columns, colour).text + adviceText(job, report);
}

}  // namespace trellant::cli
