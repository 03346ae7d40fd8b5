// SPDX-License-Identifier: Apache-2.0
// `trellant extract`: the audio of files, each piece in a file of its own.
#include "extract/extract.h"

#include "extract/extractor.h"
#include "extract/salvager.h"

#include <trellant/base/numbered_name.h>
#include <trellant/base/printable_text.h>
#include <trellant/base/text.h>
#include <trellant/extraction/extraction.h>

#include <filesystem>
#include <set>
#include <system_error>

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

/// Each of several files gets a folder that bears its name.
std::vector<ExtractJob> jobsOf(const ExtractCall& call) {
    if (call.files.size() == 1) {
        return {{call.files.front(), call.directory}};
    }
    std::vector<ExtractJob> jobs;
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
    if (options.call.salvage) {
        Salvager salvager(options.call, console);
        for (const ExtractJob& job : jobsOf(options.call)) {
            status = worse(status, salvager.run(job));
        }
        return status;
    }
    Extractor extractor(options, console, stop);
    for (const ExtractJob& job : jobsOf(options.call)) {
        status = worse(status, extractor.run(job));
        if (stop.stop_requested()) {
            return ExitStatus::fileFailed;
        }
    }
    return status;
}

}  // namespace trellant::cli
