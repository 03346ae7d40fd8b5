// SPDX-License-Identifier: Apache-2.0
// `trellant render`: hand-offs as sound.
#include "render/render.h"

#include "extract/folder_names.h"
#include "render/session_renderer.h"

#include <trellant/base/printable_text.h>
#include <trellant/extraction/extraction.h>
#include <trellant/model/timecode_label.h>

#include <filesystem>
#include <system_error>

namespace trellant::cli {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t longestShownPath = 4'096;

std::string shown(const std::string& path) {
    return printableText(path, longestShownPath);
}

/// Why the options cannot be meant together; absent when they can.
std::optional<std::string> wrongOptions(const RenderCall& call) {
    if (call.handles && call.kind != render::RenderKind::clips) {
        return "--handles is for --clips";
    }
    if (call.raw && call.kind == render::RenderKind::mix) {
        return "--raw and --mix exclude each other: a mix is what gains and pans make of the edits";
    }
    for (const auto& label : {call.from, call.until}) {
        if (label && !isTimecodeText(*label)) {
            return "\"" + shown(*label) + "\" is no timecode; one is written as 01:00:00:00";
        }
    }
    return std::nullopt;
}

/// Why the command line cannot be meant; absent when it can.
std::optional<std::string> wrongUse(const RenderCall& call) {
    std::error_code ignored;
    const fs::path directory(call.directory);
    if (call.directory.empty()) {
        return "--to needs the name of a folder";
    }
    if (fs::exists(directory, ignored) && !fs::is_directory(directory, ignored)) {
        return shown(call.directory) +
               " is a file; name a folder with --to, which is created when it is missing";
    }
    for (const std::string& folder : call.mediaFolders) {
        if (!fs::is_directory(folder, ignored)) {
            return "there is no folder " + shown(folder) + " to look for audio files in";
        }
    }
    return wrongOptions(call);
}

}  // namespace

ExitStatus runRender(const RenderOptions& given, Console& console, const StopToken& stop) {
    RenderOptions options = given;
    if (const auto message = wrongUse(options.call)) {
        console.error(*message);
        return ExitStatus::wrongUse;
    }
    if (!options.waveConverter) {
        options.waveConverter = installedWaveConverter();
    }
    if (!options.waveConverter) {
        console.error(
            "the program trellant-wav, which writes WAVE files, is missing. It belongs to this "
            "one; please install Trellant again");
        return ExitStatus::fileFailed;
    }
    ExitStatus status = ExitStatus::done;
    SessionRenderer renderer(options, console, stop);
    const std::vector<std::string> folders = foldersFor(options.call.files, options.call.directory);
    for (std::size_t i = 0; i < folders.size(); ++i) {
        status = worse(status, renderer.run({options.call.files[i], folders[i]}));
        if (stop.stop_requested()) {
            return ExitStatus::fileFailed;
        }
    }
    return status;
}

}  // namespace trellant::cli
