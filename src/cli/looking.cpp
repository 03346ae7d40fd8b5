#include "looking.h"

#include "interrupts.h"
#include "media_folders.h"
#include "sources.h"
#include "step_progress.h"

#include <trellant/client/errors.h>
#include <trellant/model/printable_text.h>
#include <trellant/model/system_error_text.h>

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <variant>

namespace trellant::cli {

namespace {

constexpr std::size_t longestShownPath = 4096;
constexpr std::string_view workerPrefix = "trellant-omf: ";

std::string shown(const std::string& file) {
    return printableText(file, longestShownPath);
}

/// The worker's own last line without its name: that is what a person needs to know.
std::string lastWords(const std::string& logLines) {
    const std::size_t at = logLines.rfind(workerPrefix);
    return at == std::string::npos ? logLines : logLines.substr(at + workerPrefix.size());
}

struct Explain {
    std::string operator()(const AAFWorkerClientError::LaunchFailed& fault) const {
        return "the program trellant-omf could not be started: " + fault.reason;
    }
    std::string operator()(const AAFWorkerClientError::NonZeroExit& fault) const {
        if (fault.logLines.empty()) {
            return "trellant-omf ended unexpectedly (" + std::to_string(fault.status) + ")";
        }
        return lastWords(fault.logLines);
    }
    std::string operator()(const AAFWorkerClientError::InvalidResponse& fault) const {
        return "trellant-omf gave no usable answer: " + fault.reason;
    }
    std::string operator()(const AAFWorkerClientError::HelperMissing&) const {
        return "the program trellant-omf is missing. It belongs beside this one; please install "
               "Trellant again";
    }
};

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
                               const std::stop_token& stop) {
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
        for (const std::string& line : inspection.diagnostics) {
            console.detail(shown(file) + ": " + line);
        }
        return inspection;
    } catch (const OutputClosed&) {
        throw;
    } catch (const std::exception&) {
        console.endBar();
        tellFailure(file, console);
        return std::nullopt;
    }
}

void tellFailure(const std::string& file, Console& console) {
    try {
        throw;
    } catch (const AAFWorkerClientError& error) {
        console.error(shown(file) + ": " + std::visit(Explain{}, error.fault()));
        console.detail(error.technicalDetail());
    } catch (const AAFCancellationError&) {
        console.error(shown(file) + ": cancelled");
    } catch (const std::exception& error) {
        console.error(shown(file) + ": " + error.what());
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

bool deliver(const Destination& destination, const std::string& text, Console& console) {
    if (destination.path == "-") {
        console.out(text);
        return true;
    }
    const int flags = O_WRONLY | O_CREAT | O_CLOEXEC | (destination.force ? O_TRUNC : O_EXCL);
    constexpr mode_t everybodyMayRead = 0666;
    const int descriptor = ::open(destination.path.c_str(), flags, everybodyMayRead);
    std::size_t written = 0;
    int failure = descriptor < 0 ? errno : 0;
    while (failure == 0 && written < text.size()) {
        const auto count = ::write(descriptor, text.data() + written, text.size() - written);
        if (count >= 0) {
            written += static_cast<std::size_t>(count);
        } else if (errno != EINTR) {
            failure = errno;
        }
    }
    if (descriptor >= 0 && ::close(descriptor) != 0 && failure == 0) {
        failure = errno;
    }
    if (failure == EEXIST) {
        console.error(shown(destination.path) +
                      " is there already. Name another file, or replace it with --force");
    } else if (failure != 0) {
        console.error("cannot write " + shown(destination.path) + ": " + systemErrorText(failure));
    }
    return failure == 0;
}

}  // namespace trellant::cli
