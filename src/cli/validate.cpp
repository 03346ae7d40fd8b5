// SPDX-License-Identifier: Apache-2.0
// `trellant validate`: is this JSON a timeline that programs may rely on?
#include "commands.h"
#include "look/timeline_check.h"
#include "terminal/failure_line.h"
#include "terminal/json_line.h"
#include "terminal/shown_text.h"

#include <trellant/base/printable_text.h>
#include <trellant/io/errors.h>
#include <trellant/io/random_access_file.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <filesystem>
#include <system_error>
#include <unistd.h>

namespace trellant::cli {

namespace {

/// The most that is read of one file, in bytes.
constexpr std::uint64_t longestDocument = 2'147'483'648;
constexpr std::size_t longestShownPath = 4096;

std::string wholeStandardInput() {
    std::string text;
    std::array<char, 65'536> chunk{};
    for (;;) {
        const auto count = ::read(STDIN_FILENO, chunk.data(), chunk.size());
        if (count > 0) {
            if (text.size() > longestDocument) {
                throw FileSystemError("read", "-", EFBIG);
            }
            text.append(chunk.data(), static_cast<std::size_t>(count));
        } else if (count == 0) {
            return text;
        } else if (errno != EINTR) {
            throw FileSystemError("read", "-", errno);
        }
    }
}

std::string wholeFile(const std::string& path) {
    if (path == "-") {
        return wholeStandardInput();
    }
    const RandomAccessFile file(path);
    if (file.size() > longestDocument) {
        throw FileSystemError("read", path, EFBIG);
    }
    const Bytes bytes = file.read(0, static_cast<std::int64_t>(file.size()));
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

std::string audioText(const TimelineCheck& finding) {
    if (finding.audioFiles == 0) {
        return {};
    }
    const std::string count = std::to_string(finding.audioFiles) +
                              (finding.audioFiles == 1 ? " audio file" : " audio files");
    return ", " + count +
           (finding.missingAudio.empty()
                ? ""
                : ", " + std::to_string(finding.missingAudio.size()) + " of them not there");
}

/// Each once, but no more than a screen takes.
void reportMissingAudio(const std::string& file, const TimelineCheck& finding, Console& console) {
    constexpr std::size_t most = 20;
    const std::string name = printableText(file, longestShownPath);
    for (std::size_t i = 0; i < std::min(finding.missingAudio.size(), most); ++i) {
        console.note(name + ": not there: " + finding.missingAudio[i]);
    }
    if (finding.missingAudio.size() > most) {
        console.note(name + ": and " + std::to_string(finding.missingAudio.size() - most) +
                     " more are not there: --json lists all");
    }
}

/// Where the ways of a document begin: its own folder, for standard input the current one.
std::string folderOf(const std::string& file) {
    std::error_code ignored;
    const std::filesystem::path current = std::filesystem::current_path(ignored);
    return file == "-" ? current.native() : (current / file).parent_path().native();
}

std::string forPeople(const std::string& file, const TimelineCheck& finding) {
    const std::string name = printableText(file, longestShownPath);
    if (finding.valid) {
        return name + ": valid, " + std::to_string(finding.tracks) +
               (finding.tracks == 1 ? " track, " : " tracks, ") + std::to_string(finding.clips) +
               (finding.clips == 1 ? " clip" : " clips") + audioText(finding) + "\n";
    }
    if (finding.failure) {
        return name + ": not valid: " + finding.failure->code + " (" + finding.failure->object +
               ")" + (finding.place.empty() ? "" : ": " + finding.place) + "\n";
    }
    return name + ": no timeline: " + finding.fault + "\n";
}

std::string forPrograms(const std::string& file, const TimelineCheck& finding) {
    return jsonLine([&](JsonLine& line) {
        line.text("file", fileForPrograms(file)).boolean("valid", finding.valid);
        if (finding.failure) {
            line.text("code", finding.failure->code).text("object", finding.failure->object);
            if (!finding.place.empty()) {
                line.text("place", finding.place);
            }
        } else if (!finding.valid) {
            line.text("error", finding.fault);
            return;
        }
        line.count("tracks", finding.tracks)
            .count("clips", finding.clips)
            .count("audioFiles", finding.audioFiles)
            .texts("missingAudio", finding.missingAudio);
    });
}

}  // namespace

ExitStatus runValidate(const ValidateOptions& options, Console& console) {
    ExitStatus status = ExitStatus::done;
    for (const std::string& file : options.files) {
        try {
            const TimelineCheck finding = checkTimeline(wholeFile(file), folderOf(file));
            console.out(options.json ? forPrograms(file, finding)
                                     : shownLines(forPeople(file, finding)));
            if (!options.json) {
                reportMissingAudio(file, finding, console);
            }
            if (!finding.valid) {
                status = ExitStatus::fileFailed;
            }
        } catch (const OutputClosed&) {
            throw;
        } catch (const std::exception& error) {
            console.error(error.what());
            if (options.json) {
                console.out(failureLine(file, error.what()));
            }
            status = ExitStatus::fileFailed;
        }
    }
    return status;
}

}  // namespace trellant::cli
