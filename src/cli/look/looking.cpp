#include "looking.h"

#include "failure_text.h"
#include "media_folders.h"
#include "sources.h"
#include "step_progress.h"
#include "terminal/interrupts.h"

#include <trellant/base/printable_text.h>
#include <trellant/client/errors.h>

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace trellant::cli {

namespace {

constexpr std::size_t longestShownPath = 4096;

std::string shown(const std::string& file) {
    return printableText(file, longestShownPath);
}

/// The ids of the sources without a file whose name several files in the folder bear.
std::vector<std::string> ambiguousSources(const AAFTimeline& timeline, const std::string& folder,
                                          const StepProgress& progress) {
    std::vector<std::string> ids;
    const MediaFolders files({folder}, {}, progress);
    for (const AAFSourceEssence& essence : timeline.essences) {
        const bool isMissing = !essence.embedded && !essence.fileURL;
        const std::string wanted =
            wantedFileName(essence.originalPath.value_or(essence.sourceName.value_or("")));
        if (isMissing && !wanted.empty() && files.named(wanted).size() > 1) {
            ids.push_back(essence.id);
        }
    }
    return ids;
}

}  // namespace

std::optional<Inspection> look(const std::string& file,
                               const std::optional<std::string>& mediaFolder, Console& console,
                               const StopToken& stop) {
    if (file.empty()) {
        console.error("a file has an empty name");
        return std::nullopt;
    }
    std::error_code ignored;
    if (mediaFolder && !std::filesystem::is_directory(*mediaFolder, ignored)) {
        console.error(shown(*mediaFolder) + ": there is no such folder to look for audio files in");
        return std::nullopt;
    }
    try {
        const Cancellable heeded;
        Inspection inspection =
            inspectFile({.file = file, .mediaFolder = mediaFolder}, stop,
                        [&console](const AAFWorkerProtocol::Progress& progress) {
                            console.bar(progress.fraction, progress.phase);
                        });
        if (mediaFolder) {
            inspection.ambiguousEssences =
                ambiguousSources(inspection.timeline, *mediaFolder, StepProgress(console, stop));
        }
        console.endBar();
        tellChanges(file, inspection, console);
        if (inspection.unread) {
            console.note(shown(file) +
                         ": where the losses lie could not be read: " + *inspection.unread);
        }
        for (const std::string& line : inspection.diagnostics) {
            console.detail(shown(file) + ": " + line);
        }
        return inspection;
    } catch (const OutputClosed&) {
        throw;
    } catch (const std::exception& error) {
        console.endBar();
        tellFailure(file, error, console);
        return std::nullopt;
    }
}

void tellFailure(const std::string& file, const std::exception& error, Console& console) {
    console.error(shown(file) + ": " + failureText(file, error));
    if (const auto* const failed = dynamic_cast<const AAFWorkerClientError*>(&error)) {
        console.detail(failed->technicalDetail());
    }
}

void tellFailure(const std::string& file, Console& console) {
    try {
        throw;
    } catch (const std::exception& error) {
        tellFailure(file, error, console);
    }
}

void tellChanges(const std::string& file, const Inspection& inspection, Console& console) {
    for (const ToldChange& change : inspection.changes) {
        const std::string place = placeText(change, inspection.timeline);
        console.note(shown(file) + ": the file is odd here: " + place +
                     (place.empty() ? "" : ": ") + change.what + " (" + change.code + ", " +
                     change.object + ")");
    }
}

ExitStatus verdict(const Inspection& inspection, FailOn failOn) {
    if (failOn == FailOn::nothing) {
        return ExitStatus::done;
    }
    const Sources sources(inspection.timeline, inspection.ambiguousEssences);
    const bool missing =
        std::any_of(sources.all().begin(), sources.all().end(), [](const Source& source) {
            return source.state == SourceState::missing ||
                   source.state == SourceState::severalCandidates;
        });
    const auto& features = inspection.timeline.unsupportedFeatures;
    const bool render =
        std::any_of(features.begin(), features.end(), [](const AAFUnsupportedFeature& feature) {
            return feature.severity == AAFUnsupportedFeature::Severity::renderAffecting;
        });
    const bool any = missing || !features.empty() || !inspection.changes.empty();
    const bool found = failOn == FailOn::missing  ? missing
                       : failOn == FailOn::render ? render
                                                  : any;
    return found ? ExitStatus::lossesFound : ExitStatus::done;
}

}  // namespace trellant::cli
