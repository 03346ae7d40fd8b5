// SPDX-License-Identifier: Apache-2.0
// Hand-offs to make pages of, built in code.
#pragma once

#include <trellant/handoff/hand_off.h>
#include <trellant/json/json_writer.h>
#include <trellant/page/page.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace trellant::page {

/// At 25 frames in a second, from 01:00:00:00, without tracks.
[[nodiscard]] HandOff emptyHandOff();
AAFTrackState& addTrack(HandOff& handOff, const std::string& name);
/// Mono, 48 kHz, 24 bits, embedded.
AAFSourceEssence& addSource(HandOff& handOff, const std::string& name);
/// `track` and `source` by name; seconds.
AAFClipEvent& addClip(HandOff& handOff, const std::string& name, const std::string& track,
                      const std::string& source, const AAFRational& start,
                      const AAFRational& duration);
AAFFade fadeOf(AAFFade::Direction direction, const AAFRational& duration,
               AAFAutomationInterpolation curve);
/// On the track of that name, over those seconds.
void addLoss(HandOff& handOff, AAFUnsupportedFeature::Severity severity,
             const std::string& sentence, const std::string& track, const AAFRational& start,
             const AAFRational& duration);

/// A clip for each curve of a fade, 10 s each with a fade-in and a fade-out of 4 s, and one with
/// automation, on tracks of their own; two that cross; a loss of each kind; one file missing.
[[nodiscard]] HandOff handOffOfEverything();

/// Every text that a file can bring holds `name`.
[[nodiscard]] HandOff handOffNamed(const std::string& name);

/// As reels are: `clips` clips of 0.5 to 3 s on 24 tracks, names of takes, fades on every fourth,
/// a gain on every third.
[[nodiscard]] HandOff reelOf(std::size_t clips);

/// Sixteen-bit noise of ten seconds as the audio of the first source of `handOff`, in two pieces
/// of a WAVE file each, which browsers decode without loss.
struct Noise {
    std::vector<std::int16_t> samples{};
    PageSound sound{};
};
[[nodiscard]] Noise noiseFor(const HandOff& handOff);

/// The mix of ten seconds at 48 kHz, left and right by turns, of clips that play `noise`: summed
/// from what src/audio says of fades, automation and pans.
[[nodiscard]] std::vector<float> mixOf(const HandOff& handOff, const Noise& noise);

[[nodiscard]] std::string pageOf(const HandOff& handOff);

}  // namespace trellant::page
