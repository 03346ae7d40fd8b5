// SPDX-License-Identifier: Apache-2.0
// Where the sound of a source lies on the tape that it was recorded from, by the tape's labels.
#pragma once

#include <trellant/base/keyed_hash.h>
#include <trellant/handoff/hand_off.h>
#include <trellant/model/timecode.h>
#include <trellant/protocol/extensions.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace [[gnu::visibility("default")]] trellant {

struct SourceTimecode {
    /// The tape's name.
    std::optional<std::string> reel{};
    AAFTimecodeRate rate{};
    /// From the label 00:00:00:00 to the source's first sample, in seconds of real time: from 0 to
    /// below the length of a day of labels.
    AAFRational sinceMidnight{};
    bool operator==(const SourceTimecode&) const = default;
};

/// Absent where the tape has no labels, or ones that nobody can count by. Its frames last as long
/// as its track says where that is a rate of such labels, else as labels of that kind last.
[[nodiscard]] std::optional<SourceTimecode> sourceTimecode(const AAFWorkerExtensions::Reel& reel);

/// The label at `seconds` into the source, to the nearest frame; "09:58:30:12".
[[nodiscard]] std::string labelAt(const SourceTimecode& timecode, const AAFRational& seconds);

/// Samples from midnight to the source's first sample, at `sampleRate` in Hz (above 0, else 0).
[[nodiscard]] std::uint64_t samplesSinceMidnight(const SourceTimecode& timecode,
                                                 const AAFRational& sampleRate);

/// Those of a hand-off's sources.
class SourceTimecodes {
  public:
    /// `handOff` must outlive this.
    explicit SourceTimecodes(const HandOff& handOff);

    /// Of the source of that id; null where it has none.
    [[nodiscard]] const SourceTimecode* of(std::string_view essenceID) const;

  private:
    KeyedMap<std::string_view, SourceTimecode> byEssence_;
};

}  // namespace trellant
