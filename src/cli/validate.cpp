// SPDX-License-Identifier: Apache-2.0
// `trellant validate`: is this JSON a timeline that programs may rely on?
#include "commands.h"
#include "look/inspect.h"
#include "look/list.h"
#include "terminal/failure_line.h"
#include "terminal/json_line.h"
#include "terminal/shown_text.h"

#include <trellant/base/printable_text.h>
#include <trellant/base/url.h>
#include <trellant/handoff/changes.h>
#include <trellant/io/errors.h>
#include <trellant/io/random_access_file.h>
#include <trellant/model/repair.h>
#include <trellant/model/timeline_json.h>
#include <trellant/model/validation.h>
#include <trellant/protocol/messages.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <filesystem>
#include <optional>
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

/// The timeline of a result, or a timeline by itself, without its checks.
AAFTimeline timelineIn(const std::string& text) {
    try {
        return decodeResult(text, TimelineChecks::none).timeline;
    } catch (const JsonDecodingError& asResult) {
        try {
            return decodeJson<AAFTimeline>(text, TimelineChecks::none);
        } catch (const JsonDecodingError&) {
            // A fault inside "timeline" is one of a result; at the outermost level either may be
            // meant, and the timeline says more.
            if (asResult.keyPath().starts_with("timeline.")) {
                throw JsonDecodingError(asResult.keyPath(), asResult.reason());
            }
            throw;
        }
    }
}

struct Finding {
    bool valid = false;
    /// The failure of a timeline that could be decoded.
    std::optional<DescribedChange> failure{};
    std::string place{};
    /// Why it could not even be decoded.
    std::string fault{};
    std::size_t tracks = 0;
    std::size_t clips = 0;
    /// Audio files that the timeline names, and those of them that are not there.
    std::size_t audioFiles = 0;
    std::vector<std::string> missingAudio{};
};

/// `folder`: where a document lies that names files by their way from it.
void lookForAudio(const AAFTimeline& timeline, const std::string& folder, Finding& finding) {
    for (const AAFSourceEssence& essence : timeline.essences) {
        if (!essence.fileURL) {
            continue;
        }
        ++finding.audioFiles;
        const auto path = pathOfReference(essence.fileURL->text, folder);
        std::error_code ignored;
        if (!path || !std::filesystem::is_regular_file(*path, ignored)) {
            finding.missingAudio.push_back(path.value_or(essence.fileURL->text));
        }
    }
}

Finding check(const std::string& text, const std::string& folder) {
    Finding finding;
    try {
        const AAFTimeline timeline = timelineIn(text);
        finding.tracks = timeline.tracks.size();
        finding.clips = timeline.events.size();
        lookForAudio(timeline, folder, finding);
        try {
            AAFRawTimelineValidation::validate(timeline);
            finding.valid = true;
        } catch (const AAFRawTimelineValidation::Failure& failure) {
            finding.failure = placeOfFailure(timeline, failure);
            // The clock may be what is at fault: timecodes are shown by a repaired one.
            finding.place = placeText(*finding.failure, repairedTimeline(timeline).timeline);
        }
    } catch (const JsonDecodingError& error) {
        finding.fault = error.what();
    }
    return finding;
}

std::string audioText(const Finding& finding) {
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
void reportMissingAudio(const std::string& file, const Finding& finding, Console& console) {
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

std::string forPeople(const std::string& file, const Finding& finding) {
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

std::string forPrograms(const std::string& file, const Finding& finding) {
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
            const Finding finding = check(wholeFile(file), folderOf(file));
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
