// SPDX-License-Identifier: Apache-2.0
// Sessions to write: one that a person can follow, and ones by chance.
#pragma once

#include <trellant/base/bytes.h>
#include <trellant/sessions/session.h>

#include <cstdint>
#include <functional>
#include <string>

namespace trellant::testing {

/// At 48,000 samples in a second from 01:00:00:00 at 25 fps, one track "Dialog" without clips.
[[nodiscard]] sessions::Session emptySession();

/// Adds a mono file at `rate` with a minute of sound, named "NAME.wav" beside the session.
std::size_t addMedia(sessions::Session& session, const std::string& name,
                     std::int64_t rate = 48'000);
/// Adds a clip to the last lane of the last track.
exchange::PlannedClip& addClip(sessions::Session& session, const std::string& name,
                               std::size_t media, exchange::Samples start, exchange::Samples length,
                               std::int64_t sourceStart);

/// Two tracks. "Dialog" crossfades from "Anna" (0 to 48,000) into "Ben" (43,200 to 96,000), whose
/// source counts 11,025 samples in a second; "Atmo", panned to the left at half its gain, plays
/// "Rain", whose file is missing, with a gain that moves.
[[nodiscard]] sessions::Session twoTracks();

/// Tracks, lanes, clips and values by chance, every number one that each format can hold.
[[nodiscard]] sessions::Session randomSession(std::uint32_t seed);

/// Control characters, zero among them, all kinds of quotes, what ends sections of XML, separators
/// of paths, marks of right-to-left text, and then ten thousand letters.
[[nodiscard]] std::string hostileName();

/// The plan as a file would be read back: no positions in a timeline, media in the order of their
/// first use and none without.
[[nodiscard]] exchange::ExportPlan withoutPositions(exchange::ExportPlan plan);

using TextWriter = std::function<void(const sessions::Session&, const compound::ByteSink&)>;
[[nodiscard]] std::string textOf(const sessions::Session& session, const TextWriter& write);

using ArchiveWriter = std::function<void(const sessions::Session&, const sessions::PlacedSink&)>;
[[nodiscard]] Bytes archiveOf(const sessions::Session& session, const ArchiveWriter& write);

}  // namespace trellant::testing
