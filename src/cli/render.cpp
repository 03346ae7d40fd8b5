// SPDX-License-Identifier: Apache-2.0
// `trellant render`: hand-offs as sound.
#include "render/render.h"

#include "extract/folder_names.h"
#include "extract/staged_run.h"
#include "render/session_renderer.h"

#include <trellant/base/printable_path.h>
#include <trellant/base/printable_text.h>
#include <trellant/model/timecode_label.h>

#include <cmath>

namespace trellant::cli {

namespace {

/// Why the options cannot be meant together; absent when they can.
std::optional<std::string> wrongOptions(const RenderCall& call) {
    if (call.handles && call.kind != render::RenderKind::clips) {
        return "--handles is for --clips";
    }
    if (call.handles && !std::isfinite(*call.handles)) {
        return "--handles needs a number of seconds";
    }
    if (call.raw && call.kind == render::RenderKind::mix) {
        return "--raw and --mix exclude each other: a mix is what gains and pans make of the edits";
    }
    for (const auto& label : {call.from, call.until}) {
        if (label && !isTimecodeText(*label)) {
            return "\"" + printableText(*label) +
                   "\" is no timecode; one is written as 01:00:00:00";
        }
    }
    return std::nullopt;
}

/// Why the command line cannot be meant; absent when it can.
std::optional<std::string> wrongUse(const RenderCall& call) {
    if (auto message = wrongFolders(call.directory, call.mediaFolders)) {
        return message;
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
    options.waveConverter = waveConverterFor(options.waveConverter, console);
    if (!options.waveConverter) {
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
