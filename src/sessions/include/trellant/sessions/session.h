// SPDX-License-Identifier: Apache-2.0
// What a session file is written from: a plan cut down to what the format carries, where its media
// lie, and marks at places of the timeline. Writers write all of it and know no timeline.
#pragma once

#include <trellant/compound/byte_source.h>
#include <trellant/exchange/export_plan.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace [[gnu::visibility("default")]] trellant {
namespace sessions {

/// A plain WAVE file (no extensible header) that lies where it can be read now.
struct WaveFile {
    std::string path{};
    std::uint64_t byteCount = 0;
    /// Where its samples lie: little-endian, channels interleaved.
    std::uint64_t dataOffset = 0;
    std::uint64_t dataByteCount = 0;
    /// As the file says them; 0 where nobody looked.
    std::uint16_t bitsOfSample = 0;
    std::uint16_t channels = 0;
    bool isFloatingPoint = false;
};

struct SessionMedia {
    /// Where the file lies once the session is in its place; absolute. Empty for offline media.
    std::string path{};
    /// The same as seen from the session file's folder where it lies in or below that ("Song.media/
    /// Anna.wav", always with "/"), else equal to `path`.
    std::string reference{};
    /// The file goes into the session itself.
    bool isEmbedded = false;
    /// Absent for offline media, and for linked files that are no plain WAVE.
    std::optional<WaveFile> wave{};
};

/// What a remark is about; each has a colour of its own.
enum class MarkerKind {
    /// Something does not sound as meant: yellow, or orange.
    soundsDifferent,
    /// Something was left out: red.
    dropped,
    /// Something is there as something else that sounds the same: green.
    changed
};

/// A remark at a place, such as a loss.
struct SessionMarker {
    exchange::Samples position = 0;
    /// 0 for a place without extent.
    exchange::Samples length = 0;
    std::string text{};
    /// Position in ExportPlan::tracks; absent for what is about the whole session.
    std::optional<std::size_t> track{};
    /// Position in the timeline's events; absent for what is about no clip in particular.
    std::optional<std::size_t> event{};
    MarkerKind kind = MarkerKind::soundsDifferent;
};

/// Names and other texts are UTF-8, paths are bytes.
struct Session {
    exchange::ExportPlan plan{};
    /// What the session is called where the plan has no name.
    std::string name{};
    /// Seconds since 1970-01-01 00:00:00 UTC; the same input is to give the same bytes, so no clock
    /// is asked.
    std::int64_t date = 0;
    /// By position in ExportPlan::media.
    std::vector<SessionMedia> media{};
    /// By ascending position.
    std::vector<SessionMarker> markers{};
};

/// Takes bytes of a file at their place, counted from its start. Places need not ascend: an archive
/// says in front of a member what is known behind it. What it throws ends the writing.
using PlacedSink = std::function<void(std::uint64_t offset, ByteView bytes)>;

/// A sink that writes to a descriptor of a file, which has to stay open while the sink is used. The
/// descriptor's own place in the file stays where it is. It throws SystemCallError.
[[nodiscard]] PlacedSink descriptorPlacedSink(int descriptor);

/// Each writes one session file in one go, or throws what the sink throws, what its format cannot
/// hold whatever is left out (AafError), and SystemCallError for audio that cannot be read.
void writeAafSession(const Session& session, const compound::ByteSink& sink);
void writeOtioSession(const Session& session, const compound::ByteSink& sink);
/// The session and its embedded media in one archive; other media stay where they lie.
void writeOtioBundle(const Session& session, const PlacedSink& sink);
void writeReaperSession(const Session& session, const compound::ByteSink& sink);
/// An archive too.
void writeDawProject(const Session& session, const PlacedSink& sink);

/// Marks alone, without media: what lies where, and what was lost there.
void writeAudacityLabels(const Session& session, const compound::ByteSink& sink);
void writeReaperMarkers(const Session& session, const compound::ByteSink& sink);
/// A silent WAVE file with a cue point for each mark. Its silence is not written: places that the
/// sink gets nothing for are zeros.
void writeCuePoints(const Session& session, const PlacedSink& sink);

/// What a WAVE file, which counts its bytes in 32 bits, holds of a session's marks.
struct CueFileShare {
    /// How long the file is; of a session of more than twelve hours at 48,000 samples in a second
    /// the beginning.
    exchange::Samples length = 0;
    /// Marks in it, and those that lie behind its end or whose texts have no room.
    std::size_t held = 0;
    std::size_t leftOut = 0;
    bool operator==(const CueFileShare&) const = default;
};

/// Marks and their texts leave the sound what is above this.
inline constexpr std::uint64_t mostCueBytes = 1U << 30U;

/// `mostMarkBytes`: of marks and their texts there are no more than these in the file.
[[nodiscard]] CueFileShare cueFileShare(const Session& session,
                                        std::uint64_t mostMarkBytes = mostCueBytes);

}  // namespace sessions
}  // namespace trellant
