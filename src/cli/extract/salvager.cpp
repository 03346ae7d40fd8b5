// SPDX-License-Identifier: Apache-2.0
#include "salvager.h"

#include "look/failure_text.h"
#include "process/forked_child.h"
#include "salvage_screen.h"
#include "target_folder.h"
#include "terminal/failure_line.h"
#include "terminal/shown_text.h"

#include <trellant/base/printable_path.h>
#include <trellant/extraction/staging.h>
#include <trellant/io/errors.h>
#include <trellant/json/json_decode.h>
#include <trellant/salvage/salvage.h>
#include <trellant/salvage/whole_file.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <pthread.h>

namespace trellant::cli {

namespace {

using salvage::SalvageReport;

/// While one lives, Ctrl-C ends the child and not this process, which then takes the half-made
/// files away before it ends too.
class InterruptPutOff {
  public:
    InterruptPutOff() noexcept {
        sigset_t held;
        ::sigemptyset(&held);
        ::sigaddset(&held, SIGINT);
        ::pthread_sigmask(SIG_BLOCK, &held, &before_);
    }
    ~InterruptPutOff() { ::pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
    InterruptPutOff(const InterruptPutOff&) = delete;
    InterruptPutOff& operator=(const InterruptPutOff&) = delete;
    InterruptPutOff(InterruptPutOff&&) = delete;
    InterruptPutOff& operator=(InterruptPutOff&&) = delete;

  private:
    sigset_t before_{};
};

void writeText(const std::string& path, const std::string& text) {
    std::ofstream file(path, std::ios::binary);
    file << text;
    file.close();
    if (!file) {
        throw FileSystemError("write", path, errno);
    }
}

/// A bar that moves with the bytes that were searched.
salvage::SoundSearch::Progress barOf(Console& console, const std::string& path) {
    const std::uint64_t size = bytesOfFile(std::filesystem::absolute(path).native());
    return [&console, size](std::uint64_t position) {
        console.bar(size == 0 ? 1.0 : static_cast<double>(position) / static_cast<double>(size),
                    "Looking for audio");
    };
}

/// The sounds and their record under their final names. The names in `report` become those.
void place(SalvageReport& report, const Staging& staging, const std::string& directory,
           const ExtractJob& job, bool force) {
    ReadFiles read;
    read.add(job.file);
    for (SalvageReport::Sound& sound : report.sounds) {
        const std::string staged = staging.file(sound.name);
        if (!staging.holds(staged)) {
            throw FileSystemError("read", staged, ENOENT);
        }
        sound.name = salvage::placeWhole(staged, directory, sound.name, force, read).name;
    }
    const std::string record = staging.file(std::string(salvage::reportName));
    writeText(record, encodeSalvage(report) + "\n");
    report.record =
        salvage::placeWhole(record, directory, std::string(salvage::reportName), force, read).name;
}

}  // namespace

ExitStatus Salvager::run(const ExtractJob& job) {
    const InterruptPutOff untilAllIsTidy;
    const Outcome outcome = salvage(job);
    console_.endBar();
    if (const auto* const failure = std::get_if<std::string>(&outcome)) {
        console_.error(printablePath(job.file) + ": " + *failure);
        if (call_.json) {
            console_.out(failureLine(job.file, *failure));
        }
        return ExitStatus::fileFailed;
    }
    return conclude(job, std::get<SalvageReport>(outcome));
}

Salvager::Outcome Salvager::salvage(const ExtractJob& job) try {
    if (auto failure = streamFailure(job.file)) {
        return std::move(*failure);
    }
    const TargetFolder folder(job.directory);
    reportLeftFolders(job.directory, folder.path(), console_);
    const Staging staging(folder.path());
    const ForkedAnswer answer = inConfinedChild(
        [&] {
            return encodeSalvage(
                salvage::salvageSounds(job.file, staging.path(), barOf(console_, job.file)));
        },
        staging.path(), std::vector{job.file, staging.path()});
    if (const auto* const failure = std::get_if<ForkedFailure>(&answer)) {
        return whyNoAnswer(job.file, *failure);
    }
    SalvageReport report = salvage::decodeSalvage(std::get<std::string>(answer));
    report.file = fileForPrograms(job.file);
    if (report.sounds.empty()) {
        return "no audio was found in it: neither by a table of contents nor by the header of an "
               "AIFF, AIFC or WAVE file";
    }
    place(report, staging, folder.path(), job, call_.force);
    return report;
} catch (const OutputClosed&) {
    throw;
} catch (const std::exception& error) {
    return std::string(error.what());
}

ExitStatus Salvager::conclude(const ExtractJob& job, const SalvageReport& report) {
    if (call_.json) {
        console_.out(encodeSalvage(report) + "\n");
    } else if (console_.verbosity() != Verbosity::quiet) {
        console_.out(isFirst_ ? "" : "\n");
        console_.out(
            shownLines(salvageScreen(job, report, console_.outColumns(), console_.outHasColour())));
    }
    isFirst_ = false;
    if (report.searchedBytes < report.bytes) {
        console_.error(printablePath(job.file) +
                       ": so many sounds are in it that the search ended at byte " +
                       std::to_string(report.searchedBytes));
        return ExitStatus::fileFailed;
    }
    if (const std::size_t incomplete = report.incompleteCount(); incomplete != 0) {
        console_.error(printablePath(job.file) + ": " + std::to_string(incomplete) + " of " +
                       std::to_string(report.sounds.size()) + " sounds " +
                       (incomplete == 1 ? "is" : "are") + " not whole");
        return ExitStatus::fileFailed;
    }
    return ExitStatus::done;
}

}  // namespace trellant::cli
