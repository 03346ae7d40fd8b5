// SPDX-License-Identifier: Apache-2.0
#include "session_renderer.h"

#include "extract/staged_failure.h"
#include "extract/target_folder.h"
#include "look/console_progress.h"
#include "look/failure_text.h"
#include "look/inspect.h"
#include "render_report.h"
#include "terminal/agreed_date.h"
#include "terminal/failure_line.h"
#include "terminal/interrupts.h"
#include "terminal/shown_text.h"

#include <trellant/base/printable_text.h>
#include <trellant/exporter/exporter.h>

#include <algorithm>
#include <string_view>

namespace trellant::cli {

namespace {

constexpr std::size_t longestShownPath = 4'096;

std::string shown(const std::string& path) {
    return printableText(path, longestShownPath);
}

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
            console_.out(failureLine(job.file, outcome.failure));
        }
        return outcome.status;
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
    const Cancellable heeded;
    if (const auto failure = streamFailure(job.file)) {
        console_.error(shown(job.file) + ": " + *failure);
        return {.failure = *failure};
    }
    try {
        const TargetFolder folder(job.directory);
        reportLeftFolders(job.directory, folder.path(), console_);
        ConsoleProgress progress(console_, stop_);
        progress.check();
        std::optional<render::SessionRender> session;
        try {
            session.emplace(requestOf(job, folder.path()), progress);
            render::RenderReport report = session->run();
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

SessionRenderer::Outcome SessionRenderer::failed(const RenderJob& job, const std::exception& error,
                                                 const render::SessionRender* session) {
    console_.endBar();
    if (dynamic_cast<const ExportTargetError*>(&error) != nullptr ||
        dynamic_cast<const render::RenderRefusal*>(&error) != nullptr) {
        console_.error(shown(job.file) + ": " + error.what());
        return {.failure = error.what(), .status = ExitStatus::wrongUse};
    }
    const auto reason =
        session != nullptr
            ? reasonNotWritten(error.what(),
                               [session](std::string_view path) { return session->isStaged(path); })
            : std::nullopt;
    if (reason) {
        const std::string failure = "cannot write to " + shown(job.directory) + ": " + *reason;
        console_.error(shown(job.file) + ": " + failure);
        return {.failure = failure};
    }
    return {.failure = reportFailure(job.file, error, console_)};
}

ExitStatus SessionRenderer::conclude(const RenderJob& job, const render::RenderReport& report) {
    const RenderCall& call = options_.call;
    reportRemarks(job.file, report.handOff, console_);
    reportChanges(job.file, report.handOff, console_);
    for (const std::string& line : report.handOff.diagnostics) {
        console_.detail(shown(job.file) + ": " + line);
    }
    for (const std::string& remark : renderRemarks(report)) {
        console_.note(shown(job.file) + ": " + remark);
    }
    if (call.json) {
        console_.out(renderLine(job.file, job.directory, call, report));
    } else if (console_.verbosity() != Verbosity::quiet) {
        console_.out(shownLines(renderScreen(job.file, job.directory, call, report)));
    }
    return verdictOf(report, call.failOn);
}

}  // namespace trellant::cli
