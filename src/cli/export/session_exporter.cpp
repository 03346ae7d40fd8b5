// SPDX-License-Identifier: Apache-2.0
#include "session_exporter.h"

#include "export_report.h"
#include "look/inspect.h"
#include "terminal/agreed_date.h"
#include "terminal/failure_line.h"
#include "terminal/shown_text.h"

#include <algorithm>
#include <exception>
#include <memory>

namespace trellant::cli {

namespace {

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
            console_.out(failureLine(job.file, outcome.failure.failure));
        }
        return outcome.failure.status;
    }
    return conclude(job, *outcome.report);
}

SessionExporter::Outcome SessionExporter::write(const ExportJob& job) {
    const ExportCall& call = options_.call;
    return stagedRun(
        {job.file, call.directory}, console_, stop_,
        [&](const std::string& directory, WorkProgress& progress) {
            return std::make_unique<SessionExport>(
                ExportRequest{.file = job.file,
                              .directoryPath = directory,
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
        },
        [](const std::exception& error) {
            return dynamic_cast<const ExportTargetError*>(&error) != nullptr;
        });
}

ExitStatus SessionExporter::conclude(const ExportJob& job, const ExportReport& report) {
    const ExportCall& call = options_.call;
    reportStagedHandOff(job.file, report.handOff, offlineRemarks(report), console_);
    if (call.json) {
        console_.out(exportLine(job.file, call.directory, call.format, report));
    } else if (console_.verbosity() != Verbosity::quiet) {
        console_.out(shownLines(exportScreen(job.file, call.directory, call.format, report)));
    }
    return verdictOf(report, call.failOn);
}

}  // namespace trellant::cli
