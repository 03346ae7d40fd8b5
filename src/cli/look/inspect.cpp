// SPDX-License-Identifier: Apache-2.0
#include "inspect.h"

#include "console_progress.h"
#include "failure_text.h"
#include "terminal/interrupts.h"

#include <trellant/base/printable_path.h>
#include <trellant/base/url.h>
#include <trellant/client/errors.h>
#include <trellant/handoff/sources.h>

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace trellant::cli {

Inspection inspect(const InspectionRequest& request, Console& console, const StopToken& stop) {
    const std::string& file = request.file;
    if (file.empty()) {
        console.error("a file has an empty name");
        return {.failure = "a file has an empty name"};
    }
    for (const std::string& folder : request.mediaFolders) {
        std::error_code ignored;
        if (!std::filesystem::is_directory(folder, ignored)) {
            const std::string failure =
                printablePath(folder) + ": there is no such folder to look for audio files in";
            console.error(failure);
            return {.failure = failure};
        }
    }
    if (const auto failure = streamFailure(file)) {
        console.error(printablePath(file) + ": " + *failure);
        return {.failure = *failure};
    }
    try {
        const Cancellable heeded;
        ConsoleProgress progress(console, stop);
        HandOff handOff = readHandOff(
            {.file = file, .mediaFolders = request.mediaFolders, .contents = request.contents},
            progress);
        console.endBar();
        if (!request.showsRemarks) {
            reportRemarks(file, handOff, console);
        }
        reportChanges(file, handOff, console);
        for (const std::string& line : handOff.diagnostics) {
            console.detail(printablePath(file) + ": " + line);
        }
        return {.handOff = std::move(handOff)};
    } catch (const OutputClosed&) {
        throw;
    } catch (const std::exception& error) {
        console.endBar();
        return {.failure = reportFailure(file, error, console),
                .isOlderModel = isOlderModel(error)};
    }
}

std::string reportFailure(const std::string& file, const std::exception& error, Console& console) {
    std::string failure = failureText(file, error);
    console.error(printablePath(file) + ": " + failure);
    if (const auto* const failed = dynamic_cast<const AAFWorkerClientError*>(&error)) {
        console.detail(failed->technicalDetail());
    }
    return failure;
}

void reportRemarks(const std::string& file, const HandOff& handOff, Console& console) {
    if (handOff.olderVersion) {
        console.note(printablePath(file) + ": " + std::string(olderModelNote));
    }
}

void reportChanges(const std::string& file, const HandOff& handOff, Console& console) {
    for (const DescribedChange& change : handOff.changes) {
        const std::string place = placeText(change, handOff.timeline);
        console.note(printablePath(file) + ": repaired: " + place + (place.empty() ? "" : ": ") +
                     change.what + " (" + change.code + ", " + change.object + ")");
    }
}

void protectMedia(const HandOff& handOff, Delivery& delivery) {
    for (const AAFSourceEssence& essence : handOff.timeline.essences) {
        const auto path = essence.fileURL && !essence.embedded
                              ? pathOfFileURL(essence.fileURL->text)
                              : std::nullopt;
        if (path) {
            delivery.protect(*path);
        }
    }
    for (const std::string& path : handOff.openChoices.read) {
        delivery.protect(path);
    }
}

ExitStatus verdict(const HandOff& handOff, FailOn failOn) {
    if (failOn == FailOn::nothing) {
        return ExitStatus::done;
    }
    const Sources sources(handOff);
    const bool missing =
        std::any_of(sources.all().begin(), sources.all().end(), [](const Source& source) {
            return source.state != SourceState::embedded && source.state != SourceState::located;
        });
    const auto& features = handOff.timeline.unsupportedFeatures;
    const bool render =
        std::any_of(features.begin(), features.end(), [](const AAFUnsupportedFeature& feature) {
            return feature.severity == AAFUnsupportedFeature::Severity::renderAffecting;
        });
    const bool any = missing || !features.empty() || !handOff.changes.empty();
    const bool found = failOn == FailOn::missing  ? missing
                       : failOn == FailOn::render ? render
                                                  : any;
    return found ? ExitStatus::lossesFound : ExitStatus::done;
}

}  // namespace trellant::cli
