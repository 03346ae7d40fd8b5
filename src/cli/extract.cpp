// SPDX-License-Identifier: Apache-2.0
// `trellant extract`: the audio of files, each piece in a file of its own.
#include "extract/extract.h"

#include "extract/extractor.h"
#include "extract/folder_names.h"
#include "extract/salvager.h"

#include <trellant/base/printable_text.h>
#include <trellant/extraction/extraction.h>

#include <filesystem>
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
    const std::string option = options.call.bag ? "--bag" : "--to";
    if (options.call.directory.empty()) {
        return option + " needs the name of a folder";
    }
    if (fs::exists(directory, ignored) && !fs::is_directory(directory, ignored)) {
        return shown(options.call.directory) + " is a file; name a folder with " + option +
               ", which is created when it is missing";
    }
    for (const std::string& folder : options.call.mediaFolders) {
        if (!fs::is_directory(folder, ignored)) {
            return "there is no folder " + shown(folder) + " to look for audio files in";
        }
    }
    return std::nullopt;
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
    const std::vector<std::string> folders = foldersFor(options.call.files, options.call.directory);
    if (options.call.salvage) {
        Salvager salvager(options.call, console);
        for (std::size_t i = 0; i < folders.size(); ++i) {
            status = worse(status, salvager.run({options.call.files[i], folders[i]}));
        }
        return status;
    }
    Extractor extractor(options, console, stop);
    for (std::size_t i = 0; i < folders.size(); ++i) {
        status = worse(status, extractor.run({options.call.files[i], folders[i]}));
        if (stop.stop_requested()) {
            return ExitStatus::fileFailed;
        }
    }
    return status;
}

}  // namespace trellant::cli
