// SPDX-License-Identifier: Apache-2.0
#include "report_table.h"

#include "terminal/console.h"
#include "terminal/shown_text.h"
#include "terminal/table.h"

#include <trellant/handoff/sources.h>
#include <trellant/handoff/timeline_text.h>

#include <algorithm>
#include <array>

namespace trellant::cli {

namespace {

/// A form of the table; the later ones take less room.
struct Form {
    /// Where a found file lies, not only its name.
    bool hasPath = false;
    bool hasSource = false;
    bool hasRate = false;
    bool hasBitsAndChannels = false;
    bool cutsSource = false;
    bool cutsState = false;
    bool cutsFile = false;
};

constexpr std::array forms{
    Form{.hasPath = true, .hasSource = true, .hasRate = true, .hasBitsAndChannels = true},
    Form{.hasSource = true, .hasRate = true, .hasBitsAndChannels = true},
    Form{.hasSource = true, .hasRate = true, .cutsSource = true},
    Form{.cutsState = true},
    Form{.cutsState = true, .cutsFile = true},
};

/// The state in as few words as a column has room for.
std::string shortState(const AudioEntry& entry) {
    const std::string text(entry.wasThere() ? "already there" : stateText(entry.state));
    return entry.isUnreadable() ? text + ", but no readable audio" : text;
}

std::string fileText(const AudioEntry& entry, const Form& form) {
    if (entry.placed) {
        return entry.placed->name;
    }
    const std::string path = entry.path.value_or("");
    const auto slash = path.rfind('/');
    return form.hasPath || slash == std::string::npos ? path : "\xE2\x80\xA6" + path.substr(slash);
}

std::vector<TableColumn> columnsOf(const Form& form) {
    std::vector<TableColumn> columns{{"Audio file", Align::left, form.cutsFile}};
    if (form.hasSource) {
        columns.push_back({"Source", Align::left, form.cutsSource});
    }
    columns.push_back({"Clips", Align::right});
    columns.push_back({"Length", Align::right});
    if (form.hasRate) {
        columns.push_back({"Rate", Align::right});
    }
    if (form.hasBitsAndChannels) {
        columns.push_back({"Bits", Align::right});
        columns.push_back({"Channels"});
    }
    columns.push_back({"State", Align::left, form.cutsState});
    return columns;
}

std::vector<std::string> rowOf(const AAFTimeline& timeline, const AudioEntry& entry,
                               const Form& form) {
    const AAFSourceEssence& essence = timeline.essences[entry.essences.front()];
    std::vector<std::string> row{fileText(entry, form)};
    if (form.hasSource) {
        row.push_back(sourceNames(timeline, entry));
    }
    row.push_back(std::to_string(entry.clips));
    row.push_back(lengthOf(timeline, entry.facts));
    if (form.hasRate) {
        row.push_back(plainRate(essence.sampleRate));
    }
    if (form.hasBitsAndChannels) {
        row.push_back(essence.bitDepth ? std::to_string(*essence.bitDepth) : "");
        row.push_back(entry.path ? channelsText(essence.channelCount) : "");
    }
    row.push_back(shortState(entry));
    return row;
}

Table tableOf(const ExtractionReport& report, const Form& form) {
    Table table{.columns = columnsOf(form), .rows = {}};
    for (const AudioEntry& entry : report.audio) {
        if (!entry.isMissing()) {
            table.rows.push_back(rowOf(report.handOff.timeline, entry, form));
        }
    }
    return table;
}

bool isWithin(std::string_view lines, std::size_t columns) {
    for (std::size_t begin = 0; begin < lines.size();) {
        const std::size_t end = std::min(lines.find('\n', begin), lines.size());
        if (displayWidth(lines.substr(begin, end - begin)) > columns) {
            return false;
        }
        begin = end + 1;
    }
    return true;
}

}  // namespace

void appendPart(std::string& text, const std::string& part) {
    if (!text.empty()) {
        text += ", ";
    }
    text += part;
}

std::string sourceNames(const AAFTimeline& timeline, const AudioEntry& entry) {
    std::string names;
    for (const std::size_t index : entry.essences) {
        appendPart(names, shownText(sourceName(timeline.essences[index])));
    }
    return names;
}

std::string lengthOf(const AAFTimeline& timeline, const std::optional<AudioFacts>& facts) {
    const auto length = facts ? seconds(*facts) : std::nullopt;
    return length ? lengthText(timeline, *length) : "";
}

std::string fittingTable(const ExtractionReport& report, std::size_t columns, bool colour) {
    for (const Form& form : forms) {
        const Table table = tableOf(report, form);
        if (columns == Console::unlimitedColumns ||
            isWithin(aligned(table, columns, false), columns)) {
            return aligned(table, columns, colour);
        }
    }
    return aligned(tableOf(report, forms.back()), columns, colour);
}

}  // namespace trellant::cli
