// SPDX-License-Identifier: Apache-2.0
// `trellant validate`: is this JSON a timeline that programs may rely on?
#include "commands.h"

#include <trellant/base/printable_text.h>
#include <trellant/base/text.h>
#include <trellant/handoff/changes.h>
#include <trellant/io/errors.h>
#include <trellant/io/random_access_file.h>
#include <trellant/json/json_writer.h>
#include <trellant/model/repair.h>
#include <trellant/model/timeline_json.h>
#include <trellant/model/validation.h>
#include <trellant/protocol/messages.h>

#include <array>
#include <cerrno>
#include <optional>
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
                throw JsonDecodingError(asResult.keyPath(), asResult.reason(), asResult.kind());
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
};

Finding check(const std::string& text) {
    Finding finding;
    try {
        const AAFTimeline timeline = timelineIn(text);
        finding.tracks = timeline.tracks.size();
        finding.clips = timeline.events.size();
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

std::string forPeople(const std::string& file, const Finding& finding) {
    const std::string name = printableText(file, longestShownPath);
    if (finding.valid) {
        return name + ": valid, " + std::to_string(finding.tracks) +
               (finding.tracks == 1 ? " track, " : " tracks, ") + std::to_string(finding.clips) +
               (finding.clips == 1 ? " clip\n" : " clips\n");
    }
    if (finding.failure) {
        return name + ": not valid: " + finding.failure->code + " (" + finding.failure->object +
               ")" + (finding.place.empty() ? "" : ": " + finding.place) + "\n";
    }
    return name + ": no timeline: " + finding.fault + "\n";
}

std::string forPrograms(const std::string& file, const Finding& finding) {
    StringSink sink;
    JsonWriter writer(sink);
    const auto text = [&writer](std::string_view key, std::string_view value) {
        writer.plainKey(key);
        writer.string(value);
    };
    writer.beginObject();
    text("file", isValidUTF8(file) ? file : printableText(file, file.size()));
    writer.plainKey("valid");
    writer.boolean(finding.valid);
    if (finding.failure) {
        text("code", finding.failure->code);
        text("object", finding.failure->object);
        if (!finding.place.empty()) {
            text("place", finding.place);
        }
    } else if (!finding.valid) {
        text("error", finding.fault);
    }
    writer.endObject();
    writer.flush();
    return sink.text + "\n";
}

}  // namespace

ExitStatus runValidate(const ValidateOptions& options, Console& console) {
    ExitStatus status = ExitStatus::done;
    for (const std::string& file : options.files) {
        try {
            const Finding finding = check(wholeFile(file));
            console.out(options.json ? forPrograms(file, finding) : forPeople(file, finding));
            if (!finding.valid) {
                status = ExitStatus::fileFailed;
            }
        } catch (const OutputClosed&) {
            throw;
        } catch (const std::exception& error) {
            console.error(error.what());
            status = ExitStatus::fileFailed;
        }
    }
    return status;
}

}  // namespace trellant::cli
