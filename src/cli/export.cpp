// SPDX-License-Identifier: Apache-2.0
// `trellant export`: hand-offs as sessions of today's tools.
#include "export/export.h"

#include "export/session_exporter.h"
#include "extract/staged_run.h"

#include <trellant/base/numbered_name.h>
#include <trellant/base/text.h>
#include <trellant/base/utf8.h>

#include <algorithm>
#include <filesystem>
#include <set>

namespace trellant::cli {

namespace fs = std::filesystem;

namespace {

/// Leaves room in 255 bytes for ".losses.json".
constexpr std::size_t longestName = 240;

std::string_view modeWord(MediaMode mode) {
    switch (mode) {
        case MediaMode::copy:
            return "copy";
        case MediaMode::link:
            return "link";
        case MediaMode::embed:
            return "embed";
    }
    return {};
}

bool isFileName(const std::string& name) {
    return !name.empty() && name.size() <= longestName && name != "." && name != ".." &&
           name.find('/') == std::string::npos;
}

/// "copy or link".
std::string modesOf(exchange::ExportFormat format) {
    std::string text;
    for (const MediaMode mode : {MediaMode::copy, MediaMode::link, MediaMode::embed}) {
        if (hasMediaMode(format, mode)) {
            text.append(text.empty() ? "" : " or ").append(modeWord(mode));
        }
    }
    return text;
}

/// The name with "_" for what some session cannot say of it: its media's folder bears it too.
std::string tame(const std::string& name) {
    std::string text;
    for (std::size_t at = 0; at < name.size();) {
        const UTF8Step step = utf8Step(name, at);
        const bool isControl = step.scalar < 0x20 || (step.scalar >= 0x7F && step.scalar < 0xA0);
        if (!step.valid || isControl || step.scalar == 0xFFFE || step.scalar == 0xFFFF) {
            text += '_';
        } else {
            text.append(name, at, step.length);
        }
        at += step.length;
    }
    constexpr std::string_view quotes = "\"'`";
    const bool hasAllQuotes = std::all_of(quotes.begin(), quotes.end(), [&text](char quote) {
        return text.find(quote) != std::string::npos;
    });
    if (hasAllQuotes) {
        std::replace(text.begin(), text.end(), '`', '_');
    }
    return text;
}

/// Why the command line cannot be meant; absent when it can.
std::optional<std::string> wrongUse(const ExportCall& call) {
    if (auto message = wrongFolders(call.directory, call.mediaFolders)) {
        return message;
    }
    if (call.name && call.files.size() > 1) {
        return "--name is for one file; sessions of several files bear the files' own names";
    }
    if (call.name && !isFileName(*call.name)) {
        return "--name needs a file name without an extension, of at most 240 bytes";
    }
    if (call.name && tame(*call.name) != *call.name) {
        return "--name needs a name that every session can say: text in UTF-8, without control "
               "characters, and not with all of \", ' and `";
    }
    if (call.mediaMode && !hasMediaMode(call.format, *call.mediaMode)) {
        if (call.format == exchange::ExportFormat::markers) {
            return "markers come without audio, so that --media-mode says nothing there";
        }
        return "a session of the format " + std::string(exchange::formatWord(call.format)) +
               " cannot have its audio that way: --media-mode is " + modesOf(call.format) +
               ", not " + std::string(modeWord(*call.mediaMode));
    }
    return std::nullopt;
}

/// Sessions of several files with one name get numbers.
std::vector<ExportJob> jobsOf(const ExportCall& call) {
    std::vector<ExportJob> jobs;
    std::set<std::string> taken;
    for (const std::string& file : call.files) {
        const std::string stem = fs::path(file).stem().native().substr(0, longestName);
        const std::string wanted = call.name.value_or(isFileName(stem) ? tame(stem) : "session");
        std::string name = wanted;
        // Names that differ in case only are one on some file systems.
        for (int number = 2; !taken.insert(lowerCased(name)).second; ++number) {
            name = wanted + "_" + std::to_string(number);
        }
        jobs.push_back({file, name});
    }
    return jobs;
}

}  // namespace

ExitStatus runExport(const ExportOptions& given, Console& console, const StopToken& stop) {
    ExportOptions options = given;
    if (const auto message = wrongUse(options.call)) {
        console.error(*message);
        return ExitStatus::wrongUse;
    }
    options.waveConverter = waveConverterFor(options.waveConverter, console);
    if (!options.waveConverter) {
        return ExitStatus::fileFailed;
    }
    ExitStatus status = ExitStatus::done;
    SessionExporter exporter(options, console, stop);
    for (const ExportJob& job : jobsOf(options.call)) {
        status = worse(status, exporter.run(job));
        if (stop.stop_requested()) {
            return ExitStatus::fileFailed;
        }
    }
    return status;
}

}  // namespace trellant::cli
