// SPDX-License-Identifier: Apache-2.0
#include "session_renderer.h"

#include "look/inspect.h"
#include "render_report.h"
#include "terminal/agreed_date.h"
#include "terminal/failure_line.h"
#include "terminal/shown_text.h"

#include <trellant/exporter/exporter.h>

#include <exception>
#include <memory>

namespace trellant::cli {

namespace {

/// Whatever is silent because it is missing counts as missing, and what rendering lost as what
/// reading lost.
ExitStatus verdictOf(const render::RenderReport& report, FailOn failOn) {
    const bool isSilent = report.silentClips != 0 && failOn != FailOn::nothing;
    const bool isLost = failOn == FailOn::any && !report.losses.empty();
    return isSilent || isLost ? ExitStatus::lossesFound : verdict(report.handOff, failOn);
}

}  // namespace

ExitStatus SessionRenderer::run(const RenderJob& job) {
    const Outcome outcome = write(job);
    if (!outcome.report) {
        if (options_.call.json) {
            console_.out(failureLine(job.file, outcome.failure.failure));
        }
        return outcome.failure.status;
    }
    return conclude(job, *outcome.report);
}

render::RenderRequest SessionRenderer::requestOf(const RenderJob& job,
                                                 const std::string& directory) const {
    const RenderCall& call = options_.call;
    return {.file = job.file,
            .directoryPath = directory,
            .kind = call.kind,
            .treatment = call.raw ? render::Treatment::edits : render::Treatment::processed,
            .format = call.format,
            .from = call.from,
            .until = call.until,
            .handles = AAFRational::approximation(call.handles.value_or(0)),
            .resamples = call.resamples,
            .mediaFolders = call.mediaFolders,
            .force = call.force,
            .date = agreedDate(),
            .waveConverter = options_.waveConverter.value_or(""),
            .helperURLProvider = options_.helperURLProvider};
}

SessionRenderer::Outcome SessionRenderer::write(const RenderJob& job) {
    return stagedRun(
        {job.file, job.directory}, console_, stop_,
        [&](const std::string& directory, WorkProgress& progress) {
            return std::make_unique<render::SessionRender>(requestOf(job, directory), progress);
        },
        [](const std::exception& error) {
            return dynamic_cast<const ExportTargetError*>(&error) != nullptr ||
                   dynamic_cast<const render::RenderRefusal*>(&error) != nullptr;
        });
}

ExitStatus SessionRenderer::conclude(const RenderJob& job, const render::RenderReport& report) {
    const RenderCall& call = options_.call;
    reportStagedHandOff(job.file, report.handOff, renderRemarks(report), console_);
    if (call.json) {
        console_.out(renderLine(job.file, job.directory, call, report));
    } else if (console_.verbosity() != Verbosity::quiet) {
        console_.out(shownLines(renderScreen(job.file, job.directory, call, report)));
    }
    return verdictOf(report, call.failOn);
}

}  // namespace trellant::cli
