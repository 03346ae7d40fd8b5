// SPDX-License-Identifier: Apache-2.0
#include "extractor.h"

#include "look/console_progress.h"
#include "look/failure_text.h"
#include "look/inspect.h"
#include "report.h"
#include "target_folder.h"
#include "terminal/agreed_date.h"
#include "terminal/interrupts.h"
#include "terminal/pasted_word.h"
#include "terminal/shown_text.h"

#include <trellant/bag/bag.h>
#include <trellant/base/printable_path.h>
#include <trellant/base/url.h>
#include <trellant/client/errors.h>
#include <trellant/extraction/extraction.h>
#include <trellant/io/errors.h>

#include <algorithm>
#include <ctime>
#include <filesystem>
#include <system_error>
#include <unistd.h>

namespace trellant::cli {

namespace fs = std::filesystem;

namespace {

/// The system's reason in a failure of which a file in the hidden folder is the object, such as
/// cannot write "/home/.trellant-Ab12Cd/Kick.wav": No space left on device. Absent for others.
std::optional<std::string> reasonNotWritten(const std::string& failure,
                                            const std::string& stagingName) {
    constexpr std::string_view behindPath = "\": ";
    const auto path = failure.find("/" + stagingName);
    const auto end = path == std::string::npos ? path : failure.rfind(behindPath);
    if (end == std::string::npos || end < path) {
        return std::nullopt;
    }
    return failure.substr(end + behindPath.size());
}

/// What a run that did not come to its end has left.
void reportWhatIsThere(const std::string& folder, std::size_t placed, Console& console) {
    const std::string directory = printablePath(folder);
    if (placed == 0) {
        console.error("nothing was written to " + directory);
        return;
    }
    console.error((placed == 1 ? "1 file is" : std::to_string(placed) + " files are") + " in " +
                  directory + ", whole; the same command again goes on from there");
}

void reportUnused(const ExtractionReport& report, Console& console) {
    if (!report.embedded || report.embedded->unusedCount == 0) {
        return;
    }
    const AAFWorkerExtensions::EmbeddedMedia& embedded = *report.embedded;
    const auto unusedCount = static_cast<std::size_t>(embedded.unusedCount);
    std::string names;
    for (const std::string& name : embedded.unusedNames) {
        names += (names.empty() ? "" : ", ") + name;
    }
    if (embedded.unusedNames.size() < unusedCount) {
        names += " and " + std::to_string(unusedCount - embedded.unusedNames.size()) + " more";
    }
    const bool isOne = unusedCount == 1;
    console.note(printablePath(report.file) + ": " + std::to_string(unusedCount) +
                 (isOne ? " audio file inside is" : " audio files inside are") +
                 " not played by any clip: " + names + ". " +
                 (isOne ? "It is no part of the composition and was"
                        : "They are no part of the composition and were") +
                 " not taken out; to see what is inside: trellant dump " +
                 printablePath(pastedFileName(report.file)));
}

void reportNotConverted(const ExtractionReport& report, Console& console) {
    for (const AudioEntry& entry : report.audio) {
        if (entry.notConverted) {
            console.note((entry.placed ? entry.placed->name : std::string()) +
                         " stays as it is: " + *entry.notConverted);
        }
    }
}

/// Nobody should have to read a table to see that a hand-off came without its sound.
void reportAllMissing(const ExtractionReport& report, Console& console) {
    if (!report.audio.empty() &&
        std::all_of(report.audio.begin(), report.audio.end(),
                    [](const AudioEntry& entry) { return entry.isMissing(); })) {
        console.error(printablePath(report.file) +
                      ": none of its audio files is there; name the folder that holds them with "
                      "--media FOLDER");
    }
}

}  // namespace

ExitStatus Extractor::run(const ExtractJob& job) {
    const Outcome outcome = extract(job);
    if (!outcome.report) {
        if (options_.call.json) {
            console_.out(failureLine(job.file, outcome.failure));
        }
        return ExitStatus::fileFailed;
    }
    return conclude(job, outcome);
}

ExtractionRequest Extractor::requestFor(const ExtractJob& job) const {
    return {.file = job.file,
            .directory = job.directory,
            .mediaFolders = options_.call.mediaFolders,
            .force = options_.call.force,
            .absolutePaths = options_.call.absolutePaths,
            .waveConverter = options_.waveConverter,
            .helperURLProvider = options_.helperURLProvider,
            .naming = options_.call.naming,
            .date = agreedDate(),
            .storeLeaving = options_.call.references ? AudioStore::Leaving::nothing
                                                     : AudioStore::Leaving::link};
}

Extractor::Outcome Extractor::failureToWrite(const ExtractJob& job, const std::string& reason,
                                             std::size_t placed) {
    console_.endBar();
    const std::string failure = "cannot write to " + printablePath(job.directory) + ": " + reason;
    console_.error(printablePath(job.file) + ": " + failure);
    reportWhatIsThere(job.directory, placed, console_);
    return {.failure = failure};
}

Extractor::Outcome Extractor::intoFolder(const ExtractJob& job, std::size_t& placed) {
    const TargetFolder folder(job.directory);
    reportLeftFolders(job.directory, folder.path(), console_);
    std::optional<TargetFolder> store;
    ExtractionRequest request = requestFor(job);
    request.directoryPath = folder.path();
    if (!options_.call.store.empty()) {
        store.emplace(options_.call.store);
        request.store = store->path();
    }
    ConsoleProgress progress(console_, stop_);
    progress.check();
    Extraction extraction(std::move(request), progress);
    try {
        ExtractionReport made = extraction.run();
        console_.endBar();
        return {.report = std::move(made)};
    } catch (const std::exception& error) {
        placed = extraction.placedCount();
        const auto reason = reasonNotWritten(error.what(), extraction.stagingName());
        if (!reason) {
            throw;
        }
        return failureToWrite(job, *reason, placed);
    }
}

Extractor::Outcome Extractor::intoBag(const ExtractJob& job) {
    const std::filesystem::path place = absoluteFolder(job.directory);
    const TargetFolder parent(place.parent_path().native());
    reportLeftFolders(parent.path(), parent.path(), console_);
    bag::BagRequest request{.extraction = requestFor(job),
                            .organization = options_.call.organization,
                            .identifier = options_.call.identifier,
                            .date = agreedDate().value_or(std::time(nullptr))};
    request.extraction.directoryPath = place.native();
    ConsoleProgress progress(console_, stop_);
    progress.check();
    bag::Bagging bagging(std::move(request), progress);
    try {
        bag::BagReport made = bagging.run();
        console_.endBar();
        return {.report = std::move(made.extraction),
                .bag = BagFacts{.payloadFiles = made.payloadFiles,
                                .payloadBytes = made.payloadBytes,
                                .wasThere = made.wasThere}};
    } catch (const std::exception& error) {
        const auto reason = reasonNotWritten(error.what(), bagging.stagingName());
        if (!reason) {
            throw;
        }
        return failureToWrite(job, *reason, 0);
    }
}

Extractor::Outcome Extractor::extract(const ExtractJob& job) {
    const Cancellable heeded;
    std::size_t placed = 0;
    if (const auto failure = streamFailure(job.file)) {
        console_.error(printablePath(job.file) + ": " + *failure);
        return {.failure = *failure};
    }
    try {
        return options_.call.bag ? intoBag(job) : intoFolder(job, placed);
    } catch (const OutputClosed&) {
        throw;
    } catch (const std::exception& error) {
        console_.endBar();
        const std::string failure = reportFailure(job.file, error, console_);
        reportWhatIsThere(job.directory, placed, console_);
        return {.failure = failure};
    }
}

ExitStatus Extractor::conclude(const ExtractJob& job, const Outcome& outcome) {
    const ExtractionReport& made = *outcome.report;
    reportRemarks(job.file, made.handOff, console_);
    reportChanges(job.file, made.handOff, console_);
    reportNotConverted(made, console_);
    reportUnused(made, console_);
    reportAllMissing(made, console_);
    if (options_.call.json) {
        console_.out(summaryLine(made, outcome.bag, options_.call.store));
    } else if (console_.verbosity() != Verbosity::quiet) {
        console_.out(isFirst_ ? "" : "\n");
        console_.out(shownLines(
            summaryScreen(made, console_.outColumns(), console_.outHasColour(), outcome.bag)));
    }
    isFirst_ = false;
    if (made.count(AudioState::failed) != 0) {
        console_.error(printablePath(job.file) + ": not all audio could be taken out");
        return ExitStatus::fileFailed;
    }
    return verdict(made.handOff, options_.call.failOn);
}

}  // namespace trellant::cli
