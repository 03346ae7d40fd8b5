// SPDX-License-Identifier: Apache-2.0
// `trellant render`: hand-offs as sound.
#pragma once

#include "look/fail_on.h"
#include "terminal/console.h"
#include "terminal/exit_status.h"

#include <trellant/base/cancellation.h>
#include <trellant/render/render.h>

#include <optional>
#include <string>
#include <vector>

namespace trellant::cli {

struct RenderCall {
    /// At least one. Of several each gets a folder of its own in `directory`.
    std::vector<std::string> files;
    std::string directory;
    render::RenderKind kind = render::RenderKind::tracks;
    bool raw = false;
    std::optional<audio::PcmFormat> format;
    std::optional<std::string> from;
    std::optional<std::string> until;
    /// Seconds; absent: none.
    std::optional<double> handles;
    bool resamples = false;
    std::vector<std::string> mediaFolders;
    bool force = false;
    bool json = false;
    FailOn failOn = FailOn::nothing;
};

struct RenderOptions {
    RenderCall call;
    AAFWorkerClient::HelperURLProvider helperURLProvider = installedWorker;
    /// The program that writes WAVE; absent: the one installed with the command.
    std::optional<std::string> waveConverter{};
};

/// Writes the files and says on `console` what is where. A stop ends it soon, with nothing new in
/// the folder but what was done. Throws OutputClosed, and FileSystemError for standard output; all
/// other failures are messages and a status.
[[nodiscard]] ExitStatus runRender(const RenderOptions& given, Console& console,
                                   const StopToken& stop);

}  // namespace trellant::cli
