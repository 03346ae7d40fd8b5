// SPDX-License-Identifier: Apache-2.0
// Audio files made into plain WAVE files, and into other things, by the program for it.
#pragma once

#include <trellant/base/keyed_hash.h>
#include <trellant/extraction/staging.h>
#include <trellant/handoff/work_progress.h>
#include <trellant/model/timeline.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace [[gnu::visibility("default")]] trellant {

/// Runs trellant-wav with its arguments, of which `destination` is the new file. Absent when there
/// is one; else the reason, in one line, and no file. `whileWaiting` is called some ten times a
/// second; when it throws, the program is ended and the exception goes on.
[[nodiscard]] std::optional<std::string> runConverter(const std::vector<std::string>& commandLine,
                                                      const std::string& destination,
                                                      const std::function<void()>& whileWaiting);

/// A file that trellant-wav is to make.
struct ConverterTask {
    /// Its arguments, `destination` among them; none is "--then".
    std::vector<std::string> arguments{};
    std::string destination{};
};

/// The tasks, whose destinations lie in one folder, one after the other in one process: starting
/// one takes longer than listening to a small file. For each task what runConverter gives for it. A
/// process that does not end as it should costs none of them: each gets one of its own.
[[nodiscard]] std::vector<std::optional<std::string>> runConverterForEach(
    const std::string& converter, std::span<const ConverterTask> tasks,
    const std::function<void()>& whileWaiting);

/// Runs `converter` for the AIFF, AIFC or WAVE file at `source`, for all of it or for one channel
/// (from 0). Absent when there is a new file at `destination`; else the reason, in one line, and no
/// file. Throws AAFCancellationError.
[[nodiscard]] std::optional<std::string> convertToWave(
    const std::string& converter, const std::string& source, const std::string& destination,
    WorkProgress& progress, const std::optional<std::int64_t>& channel = std::nullopt);

struct WaveConversions {
    /// Essence ids.
    KeyedSet<std::string> converted{};
    /// By essence id: why the file stays as it is.
    KeyedMap<std::string, std::string> failures{};
};

/// By essence id: where it was recorded, as words that trellant-wav takes behind --origin.
using ToldOrigins = KeyedMap<std::string, std::vector<std::string>>;

/// Converts every AIFC file in `staging` that a source of the timeline names, and lets the source
/// name and describe the WAVE file instead. The new file says where the source was recorded, and so
/// does a WAVE file that says nothing of it yet, under its own name. Throws AAFCancellationError.
[[nodiscard]] WaveConversions convertAll(const std::string& converter, AAFTimeline& timeline,
                                         const Staging& staging, WorkProgress& progress,
                                         const ToldOrigins& origins = {});

}  // namespace trellant
