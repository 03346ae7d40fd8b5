// SPDX-License-Identifier: Apache-2.0
// `trellant validate`: is this JSON a timeline that programs may rely on? Read in a confined child.
#include "commands.h"
#include "look/timeline_check.h"
#include "process/forked_child.h"
#include "terminal/failure_line.h"
#include "terminal/json_line.h"
#include "terminal/shown_text.h"

#include <trellant/base/file_descriptor.h>
#include <trellant/base/printable_path.h>
#include <trellant/io/errors.h>
#include <trellant/io/random_access_file.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <optional>
#include <stdexcept>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>
#include <variant>
#include <vector>

namespace trellant::cli {

namespace {

/// The most that is read of one file, in bytes.
constexpr std::uint64_t longestDocument = 2'147'483'648;
/// What a child says of it; the files that a document names are most of that.
constexpr std::size_t longestAnswer = 2'147'483'648;

std::string wholeStream(int descriptor, const std::string& name) {
    std::string text;
    std::array<char, 65'536> chunk{};
    for (;;) {
        const auto count = ::read(descriptor, chunk.data(), chunk.size());
        if (count > 0) {
            if (text.size() > longestDocument) {
                throw FileSystemError("read", name, EFBIG);
            }
            text.append(chunk.data(), static_cast<std::size_t>(count));
        } else if (count == 0) {
            return text;
        } else if (errno != EINTR) {
            throw FileSystemError("read", name, errno);
        }
    }
}

/// The end to read of the pipe at `path`; none when there is no pipe.
FileDescriptor openedPipe(const std::string& path) {
    struct stat status {};
    const bool isPipe = ::stat(path.c_str(), &status) == 0 && S_ISFIFO(status.st_mode);
    return FileDescriptor(isPipe ? ::open(path.c_str(), O_RDONLY | O_CLOEXEC) : -1);
}

std::string wholeFile(const std::string& path) {
    if (path == "-") {
        return wholeStream(STDIN_FILENO, path);
    }
    if (const FileDescriptor pipe = openedPipe(path); pipe.isOpen()) {
        return wholeStream(pipe.number(), path);
    }
    const RandomAccessFile file(path);
    if (file.size() > longestDocument) {
        throw FileSystemError("read", path, EFBIG);
    }
    const Bytes bytes = file.read(0, static_cast<std::int64_t>(file.size()));
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

/// What is said of one document.
struct Finding {
    TimelineCheck check;
    /// Of its audio files those that are not there.
    std::vector<std::string> missing;
};

std::string audioText(const Finding& finding) {
    const std::size_t count = finding.check.audio.size();
    if (count == 0) {
        return {};
    }
    return ", " + std::to_string(count) + (count == 1 ? " audio file" : " audio files") +
           (finding.missing.empty()
                ? ""
                : ", " + std::to_string(finding.missing.size()) + " of them not there");
}

/// Each once, but no more than a screen takes.
void reportMissingAudio(const std::string& file, const Finding& finding, Console& console) {
    constexpr std::size_t most = 20;
    const std::string name = printablePath(file);
    for (std::size_t i = 0; i < std::min(finding.missing.size(), most); ++i) {
        console.note(name + ": not there: " + finding.missing[i]);
    }
    if (finding.missing.size() > most) {
        console.note(name + ": and " + std::to_string(finding.missing.size() - most) +
                     " more are not there: --json lists all");
    }
}

/// Where the ways of a document begin: its own folder, for standard input the current one.
std::string folderOf(const std::string& file) {
    std::error_code ignored;
    const std::filesystem::path current = std::filesystem::current_path(ignored);
    return file == "-" ? current.native() : (current / file).parent_path().native();
}

/// The document is decoded in a child that can read nothing else. Throws std::runtime_error when
/// there is no answer from it.
TimelineCheck checkInChild(const std::string& file) {
    const std::string folder = folderOf(file);
    const auto readable = file == "-" ? std::vector<std::string>{} : std::vector{file};
    const ForkedAnswer answer =
        inConfinedChild([&] { return packedCheck(checkTimeline(wholeFile(file), folder)); },
                        std::nullopt, readable, longestAnswer);
    if (const auto* failure = std::get_if<ForkedFailure>(&answer)) {
        throw std::runtime_error(whyNoAnswer(file, *failure));
    }
    auto check = unpackedCheck(std::get<std::string>(answer));
    if (!check) {
        throw std::runtime_error(
            whyNoAnswer(file, {.kind = ForkedFailure::Kind::crashed, .reason = "gave no answer"}));
    }
    return *std::move(check);
}

std::string forPeople(const std::string& file, const Finding& finding) {
    const std::string name = printablePath(file);
    const TimelineCheck& check = finding.check;
    if (check.valid) {
        return name + ": valid, " + std::to_string(check.tracks) +
               (check.tracks == 1 ? " track, " : " tracks, ") + std::to_string(check.clips) +
               (check.clips == 1 ? " clip" : " clips") + audioText(finding) + "\n";
    }
    if (check.failure) {
        return name + ": not valid: " + check.failure->code + " (" + check.failure->object + ")" +
               (check.place.empty() ? "" : ": " + check.place) + "\n";
    }
    return name + ": no timeline: " + check.fault + "\n";
}

std::string forPrograms(const std::string& file, const Finding& finding) {
    const TimelineCheck& check = finding.check;
    return jsonLine([&](JsonLine& line) {
        line.text("file", fileForPrograms(file)).boolean("valid", check.valid);
        if (check.failure) {
            line.text("code", check.failure->code).text("object", check.failure->object);
            if (!check.place.empty()) {
                line.text("place", check.place);
            }
        } else if (!check.valid) {
            line.text("error", check.fault);
            return;
        }
        line.count("tracks", check.tracks)
            .count("clips", check.clips)
            .count("audioFiles", check.audio.size())
            .texts("missingAudio", finding.missing);
    });
}

/// Whether the document is a valid timeline.
bool report(const std::string& file, bool json, Console& console) {
    Finding finding{.check = checkInChild(file), .missing = {}};
    finding.missing = missingAudio(finding.check);
    console.out(json ? forPrograms(file, finding) : shownLines(forPeople(file, finding)));
    if (!json) {
        reportMissingAudio(file, finding, console);
    }
    return finding.check.valid;
}

}  // namespace

ExitStatus runValidate(const ValidateOptions& options, Console& console) {
    ExitStatus status = ExitStatus::done;
    for (const std::string& file : options.files) {
        try {
            if (!report(file, options.json, console)) {
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
