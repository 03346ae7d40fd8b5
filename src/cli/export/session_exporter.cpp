// SPDX-License-Identifier: Apache-2.0
#include "session_exporter.h"

#include "export_report.h"
#include "extract/staged_failure.h"
#include "extract/target_folder.h"
#include "look/console_progress.h"
#include "look/failure_text.h"
#include "look/inspect.h"
#include "terminal/agreed_date.h"
#include "terminal/failure_line.h"
#include "terminal/interrupts.h"
#include "terminal/shown_text.h"

#include <trellant/base/printable_text.h>
#include <trellant/client/errors.h>

#include <algorithm>
#include <string_view>

namespace trellant::cli {

namespace {

constexpr std::size_t longestShownPath = 4'096;

std::string shown(const std::string& path) {
    return printableText(path, longestShownPath);
}

/// What the format lost counts as what reading lost.
ExitStatus verdictOf(const ExportReport& report, FailOn failOn) {
    const bool isRender = failOn == FailOn::render;
    const bool found =
        (isRender || failOn == FailOn::any) &&
        std::any_of(report.losses.begin(), report.losses.end(),
                    [isRender](const exchange::ExportLoss& loss) {
                        return !isRender ||
                               loss.severity == AAFUnsupportedFeature::Severity::renderAffecting;
                    });
    return found ? ExitStatus::lossesFound : verdict(report.handOff, failOn);
}

}  // namespace

ExitStatus SessionExporter::run(const ExportJob& job) {
    const Outcome outcome = write(job);
    if (!outcome.report) {
        if (options_.call.json) {
            console_.out(failureLine(job.file, outcome.failure));
        }
        return outcome.status;
    }
    return conclude(job, *outcome.report);
}

SessionExporter::Outcome SessionExporter::write(const ExportJob& job) {
    const Cancellable heeded;
    if (const auto failure = streamFailure(job.file)) {
        console_.error(shown(job.file) + ": " + *failure);
        return {.failure = *failure};
    }
    const ExportCall& call = options_.call;
    try {
        const TargetFolder folder(call.directory);
        reportLeftFolders(call.directory, folder.path(), console_);
        ConsoleProgress progress(console_, stop_);
        progress.check();
        std::optional<SessionExport> session;
        try {
            session.emplace(
                ExportRequest{.file = job.file,
                              .directoryPath = folder.path(),
                              .name = job.name,
                              .format = call.format,
                              .mediaMode = call.mediaMode,
                              .rate = call.rate,
                              .mediaFolders = call.mediaFolders,
                              .namesFilesByMasterMob = call.naming == FileNaming::masterMob,
                              .force = call.force,
                              .markers = call.markers,
                              .date = agreedDate(),
                              .waveConverter = options_.waveConverter.value_or(""),
                              .helperURLProvider = options_.helperURLProvider},
                progress);
            ExportReport report = session->run();
            console_.endBar();
            return {.report = std::move(report)};
        } catch (const OutputClosed&) {
            throw;
        } catch (const std::exception& error) {
            return failed(job, error, session ? &*session : nullptr);
        }
    } catch (const OutputClosed&) {
        throw;
    } catch (const std::exception& error) {
        return failed(job, error, nullptr);
    }
}

SessionExporter::Outcome SessionExporter::failed(const ExportJob& job, const std::exception& error,
                                                 const SessionExport* session) {
    console_.endBar();
    if (dynamic_cast<const ExportTargetError*>(&error) != nullptr) {
        console_.error(shown(job.file) + ": " + error.what());
        return {.failure = error.what(), .status = ExitStatus::wrongUse};
    }
    const auto reason =
        session != nullptr
            ? reasonNotWritten(error.what(),
                               [session](std::string_view path) { return session->isStaged(path); })
            : std::nullopt;
    if (reason) {
        const std::string failure =
            "cannot write to " + shown(options_.call.directory) + ": " + *reason;
        console_.error(shown(job.file) + ": " + failure);
        return {.failure = failure};
    }
    return {.failure = reportFailure(job.file, error, console_)};
}

ExitStatus SessionExporter::conclude(const ExportJob& job, const ExportReport& report) {
    const ExportCall& call = options_.call;
    reportRemarks(job.file, report.handOff, console_);
    reportChanges(job.file, report.handOff, console_);
    for (const std::string& line : report.handOff.diagnostics) {
        console_.detail(shown(job.file) + ": " + line);
    }
    for (const std::string& remark : offlineRemarks(report)) {
        console_.note(shown(job.file) + ": " + remark);
    }
    if (call.json) {
        console_.out(exportLine(job.file, call.directory, call.format, report));
    } else if (console_.verbosity() != Verbosity::quiet) {
        console_.out(shownLines(exportScreen(job.file, call.directory, call.format, report)));
    }
    return verdictOf(report, call.failOn);
}

}  // namespace trellant::cli
