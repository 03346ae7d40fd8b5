// SPDX-License-Identifier: Apache-2.0
// `trellant extract`: the audio of files, each piece in a file of its own.
#pragma once

#include "look/fail_on.h"
#include "terminal/console.h"
#include "terminal/exit_status.h"

#include <trellant/base/cancellation.h>
#include <trellant/client/worker_client.h>
#include <trellant/extraction/extraction.h>
#include <trellant/handoff/hand_off.h>

#include <optional>
#include <string>
#include <vector>

namespace trellant::cli {

struct ExtractCall {
    /// At least one. Of several each gets a folder of its own in `directory`.
    std::vector<std::string> files;
    std::string directory;
    std::vector<std::string> mediaFolders;
    bool wav = false;
    FileNaming naming = FileNaming::masterMob;
    bool force = false;
    /// The sounds of damaged files, whatever became of their table and their object model.
    bool salvage = false;
    bool json = false;
    /// The written timelines name files by their whole paths.
    bool absolutePaths = false;
    FailOn failOn = FailOn::nothing;
    /// Audio that was taken out is kept in this folder by content; empty: it is not.
    std::string store;
    /// And only there.
    bool references = false;
    /// `directory` is a bag, or holds one for each of several files.
    bool bag = false;
    std::optional<std::string> organization;
    std::optional<std::string> identifier;
};

struct ExtractOptions {
    ExtractCall call;
    AAFWorkerClient::HelperURLProvider helperURLProvider = installedWorker;
    /// The program that writes WAVE; absent: the one installed with the command.
    std::optional<std::string> waveConverter{};
};

/// Takes the audio out and says on `console` what is where. A stop ends it soon; what is on disk
/// then is said. Throws OutputClosed, and FileSystemError for standard output; all other failures
/// are messages and a status.
[[nodiscard]] ExitStatus runExtract(const ExtractOptions& given, Console& console,
                                    const StopToken& stop);

}  // namespace trellant::cli
