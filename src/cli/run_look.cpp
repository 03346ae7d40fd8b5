// `trellant info` and `trellant list`.
#include "commands.h"
#include "info.h"
#include "looking.h"
#include "rows.h"

#include <trellant/model/precondition.h>

#include <algorithm>

namespace trellant::cli {

namespace {

Listing listingOf(ListOptions::What what, const Inspection& inspection) {
    switch (what) {
        case ListOptions::What::tracks:
            return listTracks(inspection);
        case ListOptions::What::clips:
            return listClips(inspection);
        case ListOptions::What::sources:
            return listSources(inspection);
        case ListOptions::What::losses:
            return listLosses(inspection);
    }
    preconditionFailure("enumeration value outside its cases");
}

std::string textOf(const Listing& listing, ListOptions::Form form, const Console& console,
                   bool toConsole) {
    switch (form) {
        case ListOptions::Form::csv:
            return csv(tableForSheets(listing));
        case ListOptions::Form::json:
            return jsonLines(listing);
        case ListOptions::Form::people:
            return aligned(tableForPeople(listing, console.verbosity() == Verbosity::verbose),
                           toConsole ? console.outColumns() : Console::unlimitedColumns,
                           toConsole && console.outHasColour());
    }
    preconditionFailure("enumeration value outside its cases");
}

ExitStatus worse(ExitStatus left, ExitStatus right) {
    // A file that could not be read outweighs what was found in another.
    if (left == ExitStatus::fileFailed || right == ExitStatus::fileFailed) {
        return ExitStatus::fileFailed;
    }
    return std::max(left, right);
}

}  // namespace

ExitStatus runInfo(const InfoOptions& options, Console& console, const std::stop_token& stop) {
    const bool toConsole = options.destination.path == "-";
    ExitStatus status = ExitStatus::done;
    std::string gathered;
    bool first = true;
    for (const std::string& file : options.files) {
        if (stop.stop_requested()) {
            return ExitStatus::fileFailed;
        }
        const auto inspection = look(file, options.mediaFolder, console, stop);
        if (!inspection) {
            status = ExitStatus::fileFailed;
            continue;
        }
        std::string text = options.json
                               ? infoLine(file, *inspection)
                               : infoScreen(file, *inspection, toConsole && console.outHasColour());
        if (!options.json && !first) {
            text = "\n" + text;
        }
        first = false;
        if (toConsole) {
            console.out(text);
        } else {
            gathered += text;
        }
        status = worse(status, verdict(*inspection, options.failOn));
    }
    if (!toConsole && !deliver(options.destination, gathered, console)) {
        return ExitStatus::fileFailed;
    }
    return status;
}

ExitStatus runList(const ListOptions& options, Console& console, const std::stop_token& stop) {
    const auto inspection = look(options.file, options.mediaFolder, console, stop);
    if (!inspection) {
        return ExitStatus::fileFailed;
    }
    const Listing listing = listingOf(options.what, *inspection);
    if (listing.rows.empty() && options.form == ListOptions::Form::people) {
        console.note(options.what == ListOptions::What::losses ? "nothing was lost"
                                                               : "there is nothing to list");
        return verdict(*inspection, options.failOn);
    }
    const bool toConsole = options.destination.path == "-";
    if (!deliver(options.destination, textOf(listing, options.form, console, toConsole), console)) {
        return ExitStatus::fileFailed;
    }
    return verdict(*inspection, options.failOn);
}

}  // namespace trellant::cli
