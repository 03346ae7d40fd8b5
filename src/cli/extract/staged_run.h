// SPDX-License-Identifier: Apache-2.0
// What commands have in common that make files in a hidden folder of the wanted one: the run of one
// file, its failures in words, and what is said of the hand-off once all is there.
#pragma once

#include "look/console_progress.h"
#include "target_folder.h"
#include "terminal/console.h"
#include "terminal/exit_status.h"
#include "terminal/interrupts.h"

#include <trellant/handoff/hand_off.h>

#include <exception>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace trellant::cli {

/// Why the folders of a command line cannot be meant; absent when they can. `option`: what names
/// the one that is written into.
[[nodiscard]] std::optional<std::string> wrongFolders(const std::string& directory,
                                                      const std::vector<std::string>& mediaFolders,
                                                      const std::string& option = "--to");

/// `given`, else the program installed with the command. Absent where it is missing, which was said
/// then.
[[nodiscard]] std::optional<std::string> waveConverterFor(const std::optional<std::string>& given,
                                                          Console& console);

/// One file of a call and the folder for what is made of it, both as the person named them.
struct StagedFile {
    const std::string& file;
    const std::string& directory;
};

/// Why there is no report, which was said then.
struct StagedFailure {
    std::string failure{};
    ExitStatus status = ExitStatus::fileFailed;
};

template <class Report>
struct StagedOutcome {
    std::optional<Report> report{};
    StagedFailure failure{};
};

/// Why the file cannot be read because it is no file that stays; absent for all else. Says so.
[[nodiscard]] std::optional<std::string> reportedStream(const std::string& file, Console& console);

/// Says why. `isStaged`: whether no person knows a path. `isRefusal`: the request did not fit.
[[nodiscard]] StagedFailure reportStagedFailure(
    const StagedFile& job, const std::exception& error,
    const std::function<bool(std::string_view path)>& isStaged, bool isRefusal, Console& console);

/// Says what is remarked of the hand-off, what was changed in it, and `remarks` of what was made.
void reportStagedHandOff(const std::string& file, const HandOff& handOff,
                         const std::vector<std::string>& remarks, Console& console);

/// Runs what `made` gives for the absolute folder and the progress: a unique_ptr to an object with
/// run() and isStaged(). `isRefusal` knows the errors of requests that do not fit. Throws
/// OutputClosed.
template <class Make, class IsRefusal>
[[nodiscard]] auto stagedRun(const StagedFile& job, Console& console, const StopToken& stop,
                             const Make& made, const IsRefusal& isRefusal) {
    using Session = decltype(made(std::string(), std::declval<WorkProgress&>()));
    using Report = decltype(std::declval<Session>()->run());
    const Cancellable heeded;
    StagedOutcome<Report> outcome;
    if (auto failure = reportedStream(job.file, console)) {
        outcome.failure.failure = std::move(*failure);
        return outcome;
    }
    const auto fail = [&](const std::exception& error, const Session& session) {
        const auto isStaged = [&session](std::string_view path) {
            return session != nullptr && session->isStaged(path);
        };
        outcome.failure = reportStagedFailure(job, error, isStaged, isRefusal(error), console);
    };
    try {
        const TargetFolder folder(job.directory);
        reportLeftFolders(job.directory, folder.path(), console);
        ConsoleProgress progress(console, stop);
        progress.check();
        Session session;
        try {
            session = made(folder.path(), progress);
            outcome.report = session->run();
            console.endBar();
        } catch (const OutputClosed&) {
            throw;
        } catch (const std::exception& error) {
            fail(error, session);
        }
    } catch (const OutputClosed&) {
        throw;
    } catch (const std::exception& error) {
        fail(error, nullptr);
    }
    return outcome;
}

}  // namespace trellant::cli
