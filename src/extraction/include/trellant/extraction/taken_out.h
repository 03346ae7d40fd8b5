// SPDX-License-Identifier: Apache-2.0
// The audio of a hand-off in a folder where files come into being, before any has its final name.
#pragma once

#include <trellant/base/boxed.h>
#include <trellant/extraction/staging.h>
#include <trellant/handoff/hand_off.h>
#include <trellant/handoff/work_progress.h>
#include <trellant/protocol/extensions.h>

#include <string>

namespace [[gnu::visibility("default")]] trellant {

struct TakenOut {
    /// Embedded sources name files in the folder, or none where theirs could not be taken out. The
    /// timeline is as the worker wrote it: it may be invalid, and no media were looked for.
    HandOff handOff{};
    /// Absent when the worker did not say.
    Boxed<AAFWorkerExtensions::EmbeddedMedia> embedded{};
};

/// Runs one worker. `contents`: as a HandOffRequest has it. Throws as readHandOff does; after a
/// stop what is whole stays in the folder.
[[nodiscard]] TakenOut takeOut(const std::string& file, const Staging& staging,
                               const AAFWorkerClient::HelperURLProvider& helperURLProvider,
                               WorkProgress& progress, bool contents = false);

}  // namespace trellant
