// SPDX-License-Identifier: Apache-2.0
#include "extract.h"

#include "look/console_progress.h"
#include "look/failure_text.h"
#include "look/inspect.h"
#include "report.h"
#include "terminal/interrupts.h"
#include "terminal/pasted_word.h"
#include "terminal/shown_text.h"

#include <trellant/base/numbered_name.h>
#include <trellant/base/printable_text.h>
#include <trellant/base/text.h>
#include <trellant/base/url.h>
#include <trellant/client/errors.h>
#include <trellant/extraction/extraction.h>
#include <trellant/io/errors.h>

#include <algorithm>
#include <filesystem>
#include <set>
#include <system_error>
#include <unistd.h>

namespace trellant::cli {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t longestShownPath = 4'096;

std::string shown(const std::string& path) {
    return printableText(path, longestShownPath);
}

/// Why the command line cannot be meant; absent when it can.
std::optional<std::string> wrongUse(const ExtractOptions& options) {
    std::error_code ignored;
    const fs::path directory(options.call.directory);
    if (options.call.directory.empty()) {
        return "--to needs the name of a folder";
    }
    if (fs::exists(directory, ignored) && !fs::is_directory(directory, ignored)) {
        return shown(options.call.directory) +
               " is a file; name a folder with --to, which is created when it is missing";
    }
    for (const std::string& folder : options.call.mediaFolders) {
        if (!fs::is_directory(folder, ignored)) {
            return "there is no folder " + shown(folder) + " to look for audio files in";
        }
    }
    return std::nullopt;
}

/// The wanted folder, made when it is missing, and gone again when nothing came to lie in it.
class Folder {
  public:
    /// Throws FileSystemError.
    explicit Folder(const std::string& given) : path_(absolute(given)) {
        std::error_code error;
        isNew_ = fs::create_directories(path_, error);
        if (error) {
            throw FileSystemError("create folder", given, error.value());
        }
    }
    ~Folder() {
        if (isNew_) {
            // Refused as long as there is something in it.
            ::rmdir(path_.c_str());
        }
    }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;
    Folder(Folder&&) = delete;
    Folder& operator=(Folder&&) = delete;

    [[nodiscard]] const std::string& path() const noexcept { return path_; }

  private:
    static std::string absolute(const std::string& given) {
        std::error_code ignored;
        std::string path = absolutePath(given, fs::current_path(ignored).native());
        while (path.size() > 1 && path.back() == '/') {
            path.pop_back();
        }
        return path;
    }

    std::string path_;
    bool isNew_ = false;
};

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
    const std::string directory = shown(folder);
    if (placed == 0) {
        console.error("nothing was written to " + directory);
        return;
    }
    console.error((placed == 1 ? "1 file is" : std::to_string(placed) + " files are") + " in " +
                  directory + ", whole; the same command again goes on from there");
}

void reportLeftFolders(const std::string& named, const std::string& directory, Console& console) {
    constexpr std::size_t mostNames = 3;
    const std::vector<std::string> left = stagingFoldersIn(directory);
    if (left.empty()) {
        return;
    }
    std::string names;
    for (std::size_t i = 0; i < std::min(left.size(), mostNames); ++i) {
        names += (i == 0 ? "" : ", ") + left[i];
    }
    if (left.size() > mostNames) {
        names += " and " + std::to_string(left.size() - mostNames) + " more";
    }
    console.note(left.size() == 1 ? "the folder " + names + " in " + shown(named) +
                                        " is left from a run that was ended and may go"
                                  : "the folders " + names + " in " + shown(named) +
                                        " are left from runs that were ended and may go");
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
    console.note(shown(report.file) + ": " + std::to_string(unusedCount) +
                 (isOne ? " audio file inside is" : " audio files inside are") +
                 " not played by any clip: " + names + ". " +
                 (isOne ? "It is no part of the composition and was"
                        : "They are no part of the composition and were") +
                 " not taken out; to see what is inside: trellant dump " +
                 shown(pastedFileName(report.file)));
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
        console.error(shown(report.file) +
                      ": none of its audio files is there; name the folder that holds them with "
                      "--media FOLDER");
    }
}

/// One file of a call, and where its audio goes.
struct Job {
    std::string file;
    std::string directory;
};

/// Each of several files gets a folder that bears its name.
std::vector<Job> jobsOf(const ExtractCall& call) {
    if (call.files.size() == 1) {
        return {{call.files.front(), call.directory}};
    }
    std::vector<Job> jobs;
    std::set<std::string> taken;
    for (const std::string& file : call.files) {
        const std::string stem = fs::path(file).stem().native();
        const bool isName = !stem.empty() && stem != "." && stem != "..";
        const NumberedName name = NumberedName::whole(isName ? stem : "audio");
        std::uint64_t number = name.number;
        // Names that differ in case only are one on some file systems.
        while (!taken.insert(lowerCased(name.withNumber(number))).second) {
            ++number;
        }
        jobs.push_back({file, call.directory + "/" + name.withNumber(number)});
    }
    return jobs;
}

/// A job's report, or why there is none, which was said then.
struct Outcome {
    std::optional<ExtractionReport> report{};
    std::string failure{};
};

class Extractor {
  public:
    Extractor(const ExtractOptions& options, Console& console, const StopToken& stop)
        : options_(options), console_(console), stop_(stop) {}

    [[nodiscard]] ExitStatus run(const Job& job) {
        const Outcome outcome = extract(job);
        if (!outcome.report) {
            if (options_.call.json) {
                console_.out(failureLine(job.file, outcome.failure));
            }
            return ExitStatus::fileFailed;
        }
        return conclude(job, *outcome.report);
    }

  private:
    [[nodiscard]] Outcome extract(const Job& job) {
        const Cancellable heeded;
        std::size_t placed = 0;
        if (const auto failure = streamFailure(job.file)) {
            console_.error(shown(job.file) + ": " + *failure);
            return {.failure = *failure};
        }
        try {
            const Folder folder(job.directory);
            reportLeftFolders(job.directory, folder.path(), console_);
            ConsoleProgress progress(console_, stop_);
            progress.check();
            Extraction extraction({.file = job.file,
                                   .directory = job.directory,
                                   .directoryPath = folder.path(),
                                   .mediaFolders = options_.call.mediaFolders,
                                   .force = options_.call.force,
                                   .absolutePaths = options_.call.absolutePaths,
                                   .waveConverter = options_.waveConverter,
                                   .helperURLProvider = options_.helperURLProvider},
                                  progress);
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
                console_.endBar();
                const std::string failure =
                    "cannot write to " + shown(job.directory) + ": " + *reason;
                console_.error(shown(job.file) + ": " + failure);
                reportWhatIsThere(job.directory, placed, console_);
                return {.failure = failure};
            }
        } catch (const OutputClosed&) {
            throw;
        } catch (const std::exception& error) {
            console_.endBar();
            const std::string failure = reportFailure(job.file, error, console_);
            reportWhatIsThere(job.directory, placed, console_);
            return {.failure = failure};
        }
    }

    [[nodiscard]] ExitStatus conclude(const Job& job, const ExtractionReport& made) {
        reportChanges(job.file, made.handOff, console_);
        reportNotConverted(made, console_);
        reportUnused(made, console_);
        reportAllMissing(made, console_);
        if (options_.call.json) {
            console_.out(summaryLine(made));
        } else if (console_.verbosity() != Verbosity::quiet) {
            console_.out(isFirst_ ? "" : "\n");
            console_.out(
                shownLines(summaryScreen(made, console_.outColumns(), console_.outHasColour())));
        }
        isFirst_ = false;
        if (made.count(AudioState::failed) != 0) {
            console_.error(shown(job.file) + ": not all audio could be taken out");
            return ExitStatus::fileFailed;
        }
        return verdict(made.handOff, options_.call.failOn);
    }

    const ExtractOptions& options_;
    Console& console_;
    const StopToken& stop_;
    bool isFirst_ = true;
};

}  // namespace

ExitStatus runExtract(const ExtractOptions& given, Console& console, const StopToken& stop) {
    ExtractOptions options = given;
    if (const auto message = wrongUse(options)) {
        console.error(*message);
        return ExitStatus::wrongUse;
    }
    if (!options.call.wav) {
        options.waveConverter.reset();
    } else if (!options.waveConverter) {
        options.waveConverter = installedWaveConverter();
        if (!options.waveConverter) {
            console.error(
                "the program trellant-wav, which writes WAVE files, is missing. It "
                "belongs to this one; please install Trellant again, or leave out --wav");
            return ExitStatus::fileFailed;
        }
    }
    ExitStatus status = ExitStatus::done;
    Extractor extractor(options, console, stop);
    for (const Job& job : jobsOf(options.call)) {
        status = worse(status, extractor.run(job));
        if (stop.stop_requested()) {
            return ExitStatus::fileFailed;
        }
    }
    return status;
}

}  // namespace trellant::cli
