// SPDX-License-Identifier: Apache-2.0
// What a WAVE file says of where its sound comes from: the chunks "bext" and "iXML", made of plain
// values. All texts may be a stranger's.
//
//   "bext", version 1, little endian
//
//   offset  size  meaning
//        0   256  description
//      256    32  originator
//      288    32  the originator's reference
//      320    10  date, "2026-11-22"
//      330     8  time, "22:38:41"
//      338     8  time reference: samples from midnight to the first sample
//      346     2  version, 1
//      348   254  zeros: no identifier of the material
//      602        coding history
//
// Its texts are ASCII, filled up with zeros. "iXML" is a document in UTF-8.
#pragma once

#include <trellant/base/bytes.h>
#include <trellant/model/rational.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace [[gnu::visibility("default")]] trellant {
namespace audio {

inline constexpr std::string_view broadcastChunkID = "bext";
inline constexpr std::string_view productionChunkID = "iXML";
/// Of "bext", without its coding history.
inline constexpr std::size_t broadcastHeadBytes = 602;

/// What "bext" holds. Of each text what is not printable ASCII becomes "?", a run of control
/// characters a blank, and what does not fit is cut.
struct BroadcastValues {
    std::string description{};
    std::string originator{};
    std::string originatorReference{};
    /// Seconds from 1970-01-01 00:00:00, of whichever clock. Absent, or beyond the years 1 to 9999:
    /// date and time stay empty.
    std::optional<std::int64_t> originated{};
    /// Samples of one channel from midnight to the first one.
    std::uint64_t timeReference = 0;
    /// Lines, which keep their ends (CR LF); the first 64 KiB are written.
    std::string codingHistory{};
    bool operator==(const BroadcastValues&) const = default;
};

/// How a file's timecode counts.
struct TimecodeForm {
    /// Frames in a second of real time, above 0 (30000/1001).
    AAFRational rate{25, 1};
    bool dropFrame = false;
    bool operator==(const TimecodeForm&) const = default;
};

/// What "iXML" holds. Each text is written in one line as XML can hold it, of its first 4 KiB; an
/// absent one is not written.
struct ProductionValues {
    std::optional<std::string> project{};
    std::optional<std::string> scene{};
    std::optional<std::string> take{};
    /// The reel.
    std::optional<std::string> tape{};
    std::optional<std::string> note{};
    /// Hz.
    std::uint32_t sampleRate = 48'000;
    std::optional<std::uint32_t> bitDepth{};
    std::optional<TimecodeForm> timecode{};
    /// As in "bext"; in samples at `sampleRate`.
    std::optional<std::uint64_t> timeReference{};
    /// Of each channel in the order of the file; an empty name is not written. No names: no list.
    std::vector<std::string> trackNames{};
    bool operator==(const ProductionValues&) const = default;
};

/// The content of a chunk "bext".
[[nodiscard]] Bytes broadcastChunk(const BroadcastValues& values);

/// The content of a chunk "iXML". Throws std::bad_alloc.
[[nodiscard]] Bytes productionChunk(const ProductionValues& values);

/// A chunk of RIFF: `id` (four characters), the number of bytes, little endian, `content` (less
/// than 4 GiB), and a zero where that leaves an odd number.
[[nodiscard]] Bytes riffChunk(std::string_view id, ByteView content);

}  // namespace audio
}  // namespace trellant
