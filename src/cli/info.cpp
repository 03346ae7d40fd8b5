// SPDX-License-Identifier: Apache-2.0
// `trellant info`: one screen about each file.
#include "commands.h"
#include "look/info_output.h"
#include "look/inspect.h"
#include "terminal/deliver.h"
#include "terminal/shown_text.h"

namespace trellant::cli {

ExitStatus runInfo(const InfoOptions& options, Console& console, const StopToken& stop) {
    if (!mayDeliver(options.destination, options.files, console)) {
        return ExitStatus::wrongUse;
    }
    const bool hasColour = options.destination.path == "-" && console.outHasColour();
    ExitStatus status = ExitStatus::done;
    Delivery delivery(options.destination, console);
    bool isFirst = true;
    bool hasData = false;
    for (const std::string& file : options.files) {
        if (stop.stop_requested()) {
            return ExitStatus::fileFailed;
        }
        const Inspection found =
            inspect({.file = file, .mediaFolders = options.mediaFolders, .showsRemarks = true},
                    console, stop);
        if (!found.handOff) {
            status = ExitStatus::fileFailed;
            if (options.json) {
                hasData = true;
                delivery.write(failureLine(file, found.failure));
            }
            continue;
        }
        protectMedia(*found.handOff, delivery);
        if (options.json) {
            delivery.write(infoLine(file, *found.handOff));
        } else {
            delivery.write(isFirst ? "" : "\n");
            delivery.write(shownLines(infoScreen(file, *found.handOff, hasColour)));
        }
        isFirst = false;
        hasData = true;
        delivery.flush();
        status = worse(status, verdict(*found.handOff, options.failOn));
    }
    return !hasData || delivery.finish() ? status : ExitStatus::fileFailed;
}

}  // namespace trellant::cli
