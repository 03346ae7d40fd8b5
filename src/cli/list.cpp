// SPDX-License-Identifier: Apache-2.0
// `trellant list`: tracks, clips, audio files or losses, a row each.
#include "commands.h"
#include "look/inspect.h"
#include "look/lists.h"
#include "look/loss_blocks.h"
#include "terminal/deliver.h"
#include "terminal/shown_text.h"

#include <trellant/base/precondition.h>
#include <trellant/handoff/timeline_text.h>

#include <optional>

namespace trellant::cli {

namespace {

std::unique_ptr<List> listOf(ListOptions::What what, const HandOff& handOff) {
    switch (what) {
        case ListOptions::What::tracks:
            return listOfTracks(handOff);
        case ListOptions::What::clips:
            return listOfClips(handOff);
        case ListOptions::What::sources:
            return listOfSources(handOff);
        case ListOptions::What::losses:
            return listOfLosses(handOff);
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

std::string emptyListText(ListOptions::What what, const HandOff& handOff) {
    if (what != ListOptions::What::losses) {
        return "there is nothing to list";
    }
    const std::size_t repaired = handOff.changes.size();
    if (repaired == 0) {
        return "nothing was lost";
    }
    return "no losses are recorded, but " + std::to_string(repaired) +
           (repaired == 1 ? " thing was" : " things were") + " set right (see above)";
}

/// Writes the lists of the files, one after the other.
class Lister {
  public:
    Lister(const ListOptions& options, Console& console)
        : options_(options),
          console_(console),
          toConsole_(options.destination.path == "-"),
          delivery_(options.destination, console),
          csv_(delivery_, options.files.size() > 1) {}

    void add(const std::string& file, const HandOff& handOff) {
        protectMedia(handOff, delivery_);
        const std::unique_ptr<List> list = listOf(options_.what, handOff);
        if (list->rowCount() != 0 || options_.form != ListOptions::Form::people) {
            reportRateDisagreement(handOff);
            hasData_ = true;
        }
        switch (options_.form) {
            case ListOptions::Form::csv:
                addTitles(*list);
                csv_.records(file, *list);
                break;
            case ListOptions::Form::json:
                writeJsonLines(file, handOff.olderVersion, *list, delivery_);
                break;
            case ListOptions::Form::people:
                addForPeople(file, handOff, *list);
                break;
        }
        delivery_.flush();
    }
    void addFailure(const std::string& file, const std::string& failure) {
        if (options_.form == ListOptions::Form::json) {
            delivery_.write(failureLine(file, failure));
            hasData_ = true;
        }
    }
    /// Without data there is no file.
    [[nodiscard]] bool finish() { return !hasData_ || delivery_.finish(); }

  private:
    void addTitles(const List& list) {
        if (isFirst_) {
            csv_.titles(list);
        }
        isFirst_ = false;
    }

    void addForPeople(const std::string& file, const HandOff& handOff, const List& list) {
        if (options_.files.size() > 1) {
            delivery_.write(isFirst_ ? "" : "\n");
            delivery_.write(
                painted(shownText(file), Paint::bold, toConsole_ && console_.outHasColour()) +
                "\n");
        }
        isFirst_ = false;
        if (list.rowCount() == 0) {
            console_.note(emptyListText(options_.what, handOff));
        } else if (options_.what == ListOptions::What::losses) {
            delivery_.write(shownLines(
                lossBlocks(handOff, toConsole_ ? console_.outColumns() : Console::unlimitedColumns,
                           toConsole_ && console_.outHasColour())));
        } else {
            addTable(list);
        }
    }

    /// Says which columns found no room.
    void addTable(const List& list) {
        const bool everything = console_.verbosity() == Verbosity::verbose;
        const FittedTable table =
            fitted(tableForPeople(list, everything),
                   toConsole_ && !everything ? console_.outColumns() : Console::unlimitedColumns,
                   toConsole_ && console_.outHasColour());
        if (!table.leftOut.empty()) {
            console_.note("left out for want of room: " + joined(table.leftOut) +
                          " (-v and --csv show every column)");
        }
        delivery_.write(shownLines(table.text));
    }

    /// Lists that give timecodes of places warn of a clock that drifts from them.
    void reportRateDisagreement(const HandOff& handOff) {
        const bool hasPlaces =
            options_.what == ListOptions::What::clips || options_.what == ListOptions::What::losses;
        const auto disagreement = rateDisagreement(handOff.timeline.clock);
        if (hasPlaces && disagreement) {
            console_.note(*disagreement);
        }
    }

    const ListOptions& options_;
    Console& console_;
    bool toConsole_;
    Delivery delivery_;
    CsvWriter csv_;
    bool isFirst_ = true;
    bool hasData_ = false;
};

}  // namespace

ExitStatus runList(const ListOptions& options, Console& console, const StopToken& stop) {
    if (!mayDeliver(options.destination, options.files, console)) {
        return ExitStatus::wrongUse;
    }
    ExitStatus status = ExitStatus::done;
    Lister lister(options, console);
    for (const std::string& file : options.files) {
        if (stop.stop_requested()) {
            return ExitStatus::fileFailed;
        }
        const Inspection found =
            inspect({.file = file, .mediaFolders = options.mediaFolders}, console, stop);
        if (found.handOff) {
            lister.add(file, *found.handOff);
            status = worse(status, verdict(*found.handOff, options.failOn));
        } else {
            lister.addFailure(file, found.failure);
            status = ExitStatus::fileFailed;
        }
    }
    return lister.finish() ? status : ExitStatus::fileFailed;
}

}  // namespace trellant::cli
