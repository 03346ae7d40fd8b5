// SPDX-License-Identifier: Apache-2.0
#include "extract.h"

#include "look/console_progress.h"
#include "look/looking.h"
#include "report.h"
#include "terminal/interrupts.h"
#include "terminal/pasted_word.h"

#include <trellant/base/printable_text.h>
#include <trellant/base/url.h>
#include <trellant/client/errors.h>
#include <trellant/extraction/extraction.h>
#include <trellant/io/errors.h>

#include <cerrno>
#include <filesystem>
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
void tellWhatIsThere(const ExtractOptions& options, std::size_t placed, Console& console) {
    const std::string directory = shown(options.call.directory);
    if (placed == 0) {
        console.error("nothing was written to " + directory);
        return;
    }
    console.error((placed == 1 ? "1 file is" : std::to_string(placed) + " files are") + " in " +
                  directory + ", whole; the same command again goes on from there");
}

void tellLeftFolders(const ExtractOptions& options, const std::string& directory,
                     Console& console) {
    for (const std::string& name : stagingFoldersIn(directory)) {
        console.note("the folder " + name + " in " + shown(options.call.directory) +
                     " is left from a run that was ended and may go, "
                     "unless one is still at work there");
    }
}

void tellUnused(const ExtractionReport& report, Console& console) {
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

void tellNotConverted(const ExtractionReport& report, Console& console) {
    for (const AudioEntry& entry : report.audio) {
        if (entry.notConverted) {
            console.note((entry.placed ? entry.placed->name : std::string()) +
                         " stays as it is: " + *entry.notConverted);
        }
    }
}

std::optional<ExtractionReport> report(const ExtractOptions& options, Console& console,
                                       const StopToken& stop) {
    const Cancellable heeded;
    std::size_t placed = 0;
    try {
        const Folder folder(options.call.directory);
        tellLeftFolders(options, folder.path(), console);
        ConsoleProgress progress(console, stop);
        progress.check();
        Extraction extraction({.file = options.call.file,
                               .directory = options.call.directory,
                               .directoryPath = folder.path(),
                               .mediaFolders = options.call.mediaFolders,
                               .force = options.call.force,
                               .waveConverter = options.waveConverter,
                               .helperURLProvider = options.helperURLProvider},
                              progress);
        try {
            ExtractionReport made = extraction.run();
            console.endBar();
            return made;
        } catch (const std::exception& error) {
            placed = extraction.placedCount();
            const auto reason = reasonNotWritten(error.what(), extraction.stagingName());
            if (!reason) {
                throw;
            }
            console.endBar();
            console.error(shown(options.call.file) + ": cannot write to " +
                          shown(options.call.directory) + ": " + *reason);
        }
        tellWhatIsThere(options, placed, console);
        return std::nullopt;
    } catch (const OutputClosed&) {
        throw;
    } catch (const std::exception&) {
        console.endBar();
        tellFailure(options.call.file, console);
        tellWhatIsThere(options, placed, console);
        return std::nullopt;
    }
}

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
    const auto made = report(options, console, stop);
    if (!made) {
        return ExitStatus::fileFailed;
    }
    tellChanges(options.call.file, made->handOff, console);
    tellNotConverted(*made, console);
    tellUnused(*made, console);
    if (options.call.json) {
        console.out(summaryLine(*made));
    } else if (console.verbosity() != Verbosity::quiet) {
        console.out(summaryScreen(*made, console.outColumns(), console.outHasColour()));
    }
    if (made->count(AudioState::failed) != 0) {
        console.error(shown(options.call.file) + ": not all audio could be taken out");
        return ExitStatus::fileFailed;
    }
    return verdict(made->handOff, options.call.failOn);
}

}  // namespace trellant::cli
