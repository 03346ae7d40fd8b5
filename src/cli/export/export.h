// SPDX-License-Identifier: Apache-2.0
// `trellant export`: hand-offs as sessions of today's tools.
#pragma once

#include "look/fail_on.h"
#include "terminal/console.h"
#include "terminal/exit_status.h"

#include <trellant/base/cancellation.h>
#include <trellant/exchange/capabilities.h>
#include <trellant/exporter/exporter.h>
#include <trellant/extraction/extraction.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace trellant::cli {

struct ExportCall {
    /// At least one; all go into `directory`.
    std::vector<std::string> files;
    std::string directory;
    exchange::ExportFormat format = exchange::ExportFormat::aaf;
    std::optional<MediaMode> mediaMode;
    std::optional<std::int64_t> rate;
    /// Of the only file's session; absent: the file's own name.
    std::optional<std::string> name;
    std::vector<std::string> mediaFolders;
    FileNaming naming = FileNaming::masterMob;
    bool markers = true;
    bool force = false;
    bool json = false;
    FailOn failOn = FailOn::nothing;
};

struct ExportOptions {
    ExportCall call;
    AAFWorkerClient::HelperURLProvider helperURLProvider = installedWorker;
    /// The program that writes WAVE; absent: the one installed with the command.
    std::optional<std::string> waveConverter{};
};

/// Writes the sessions and says on `console` what is where. A stop ends it soon, with nothing new
/// in the folder but the sessions that were done. Throws OutputClosed, and FileSystemError for
/// standard output; all other failures are messages and a status.
[[nodiscard]] ExitStatus runExport(const ExportOptions& given, Console& console,
                                   const StopToken& stop);

}  // namespace trellant::cli
