// SPDX-License-Identifier: Apache-2.0
// `trellant info` and `trellant list`.
#include "commands.h"
#include "look/info.h"
#include "look/looking.h"
#include "look/loss_blocks.h"
#include "look/rows.h"
#include "terminal/deliver.h"

#include <trellant/base/precondition.h>
#include <trellant/handoff/timeline_text.h>

#include <algorithm>

namespace trellant::cli {

namespace {

Listing listingOf(ListOptions::What what, const HandOff& handOff) {
    switch (what) {
        case ListOptions::What::tracks:
            return listTracks(handOff);
        case ListOptions::What::clips:
            return listClips(handOff);
        case ListOptions::What::sources:
            return listSources(handOff);
        case ListOptions::What::losses:
            return listLosses(handOff);
    }
    preconditionFailure("enumeration value outside its cases");
}

std::string joined(const std::vector<std::string>& titles) {
    std::string text;
    for (const std::string& title : titles) {
        text += (text.empty() ? "" : ", ") + title;
    }
    return text;
}

/// Tells which columns found no room.
std::string tableText(const Listing& listing, Console& console, bool toConsole) {
    const bool everything = console.verbosity() == Verbosity::verbose;
    const FittedTable table =
        fitted(tableForPeople(listing, everything),
               toConsole && !everything ? console.outColumns() : Console::unlimitedColumns,
               toConsole && console.outHasColour());
    if (!table.leftOut.empty()) {
        console.note("left out for want of room: " + joined(table.leftOut) +
                     " (-v and --csv show every column)");
    }
    return table.text;
}

std::string textOf(const ListOptions& options, const HandOff& handOff, const Listing& listing,
                   Console& console) {
    const bool toConsole = options.destination.path == "-";
    switch (options.form) {
        case ListOptions::Form::csv:
            return csv(listing);
        case ListOptions::Form::json:
            return jsonLines(listing);
        case ListOptions::Form::people:
            if (options.what == ListOptions::What::losses) {
                return lossBlocks(handOff,
                                  toConsole ? console.outColumns() : Console::unlimitedColumns,
                                  toConsole && console.outHasColour());
            }
            return tableText(listing, console, toConsole);
    }
    preconditionFailure("enumeration value outside its cases");
}

/// Lists that tell timecodes of places tell of a clock that drifts from them.
void tellRateDisagreement(const ListOptions& options, const HandOff& handOff, Console& console) {
    const bool tellsPlaces =
        options.what == ListOptions::What::clips || options.what == ListOptions::What::losses;
    const auto disagreement = rateDisagreement(handOff.timeline.clock);
    if (tellsPlaces && disagreement) {
        console.note(*disagreement);
    }
}

std::string emptyListText(ListOptions::What what, const HandOff& handOff) {
    if (what != ListOptions::What::losses) {
        return "there is nothing to list";
    }
    const std::size_t odd = handOff.changes.size();
    if (odd == 0) {
        return "nothing was lost";
    }
    return "no losses are recorded, but " + std::to_string(odd) +
           (odd == 1 ? " thing was" : " things were") + " odd and set right (told above)";
}

ExitStatus worse(ExitStatus left, ExitStatus right) {
    // A file that could not be read outweighs what was found in another.
    if (left == ExitStatus::fileFailed || right == ExitStatus::fileFailed) {
        return ExitStatus::fileFailed;
    }
    return std::max(left, right);
}

}  // namespace

ExitStatus runInfo(const InfoOptions& options, Console& console, const StopToken& stop) {
    if (!mayDeliver(options.destination, options.files, console)) {
        return ExitStatus::wrongUse;
    }
    const bool toConsole = options.destination.path == "-";
    ExitStatus status = ExitStatus::done;
    std::string gathered;
    bool first = true;
    for (const std::string& file : options.files) {
        if (stop.stop_requested()) {
            return ExitStatus::fileFailed;
        }
        const auto handOff = look(file, options.mediaFolders, console, stop);
        if (!handOff) {
            status = ExitStatus::fileFailed;
            continue;
        }
        std::string text = options.json
                               ? infoLine(file, *handOff)
                               : infoScreen(file, *handOff, toConsole && console.outHasColour());
        if (!options.json && !first) {
            text = std::string("\n").append(text);
        }
        first = false;
        if (toConsole) {
            console.out(text);
        } else {
            gathered += text;
        }
        status = worse(status, verdict(*handOff, options.failOn));
    }
    if (!toConsole && !deliver(options.destination, gathered, console)) {
        return ExitStatus::fileFailed;
    }
    return status;
}

ExitStatus runList(const ListOptions& options, Console& console, const StopToken& stop) {
    if (!mayDeliver(options.destination, {options.file}, console)) {
        return ExitStatus::wrongUse;
    }
    const auto handOff = look(options.file, options.mediaFolders, console, stop);
    if (!handOff) {
        return ExitStatus::fileFailed;
    }
    const Listing listing = listingOf(options.what, *handOff);
    if (listing.rows.empty() && options.form == ListOptions::Form::people) {
        console.note(emptyListText(options.what, *handOff));
        return verdict(*handOff, options.failOn);
    }
    tellRateDisagreement(options, *handOff, console);
    if (!deliver(options.destination, textOf(options, *handOff, listing, console), console)) {
        return ExitStatus::fileFailed;
    }
    return verdict(*handOff, options.failOn);
}

}  // namespace trellant::cli
