// SPDX-License-Identifier: Apache-2.0
// `trellant page`: hand-offs as documents for a browser.
#pragma once

#include "look/fail_on.h"
#include "terminal/console.h"
#include "terminal/exit_status.h"

#include <trellant/base/cancellation.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace trellant::cli {

/// The language of the page; `system`: that of the person who runs the command.
enum class PageLanguage { system, english, german };

struct PageCall {
    /// At least one.
    std::vector<std::string> files;
    /// Of one file the page ("-": standard output), of several the folder of the pages.
    std::string output;
    std::vector<std::string> mediaFolders;
    PageLanguage language = PageLanguage::system;
    /// That `trellant extract` wrote, for links to whole audio files.
    std::optional<std::string> extractedFolder;
    /// Megabytes of previews in a page; 0: none.
    std::uint64_t previewMegabytes = 30;
    /// Whose rules of delivery the page holds the hand-off against; as `trellant check` takes it.
    std::string profile = "post";
    /// Nothing is listened to: no waveforms, no previews.
    bool noAudio = false;
    bool force = false;
    FailOn failOn = FailOn::nothing;
};

/// Writes the pages, and the index where there are several, and says on `console` what is where.
/// Throws OutputClosed, and FileSystemError for standard output; all other failures are messages
/// and a status.
[[nodiscard]] ExitStatus runPage(const PageCall& call, Console& console, const StopToken& stop);

}  // namespace trellant::cli
