// SPDX-License-Identifier: Apache-2.0
// A hand-off that breaks no rule, to be changed in one place at a time.
#pragma once

#include <trellant/check/verdict.h>

#include <cstdint>
#include <string>
#include <vector>

namespace trellant::check {

/// 25 fps from 01:00:00:00 with timecode of its own; two tracks, "Dialog" and "Effects", with a
/// clip of 2 s each from second 10 on. Their sources, "Voice.wav" and "Steps.wav", are embedded,
/// mono, 24 bits, 48 kHz, 100 s long; each clip plays its own from second 10 on.
struct SoundHandOff {
    SoundHandOff();

    AAFTrackState& addTrack(const std::string& name);
    /// Takes the frames of the source too.
    AAFSourceEssence& addSource(const std::string& name, std::int64_t frames = 4'800'000);
    /// Plays the source from second 10 on; seconds of the timeline.
    AAFClipEvent& addClip(const std::string& track, const std::string& source,
                          const AAFRational& start, const AAFRational& duration);
    /// A loss of the first clip's, of that kind.
    void addLoss(LossKind kind, AAFUnsupportedFeature::Severity severity);

    [[nodiscard]] Verdict verdict(const Profile& profile) const;
    /// By the profile "post".
    [[nodiscard]] Verdict verdict() const;
    /// What counts by the profile "post": "handles 2", in the order of the rules.
    [[nodiscard]] std::vector<std::string> broken() const;
    [[nodiscard]] std::vector<std::string> broken(const Profile& profile) const;
    /// The findings of one rule by the profile "post".
    [[nodiscard]] std::vector<Finding> findings(const std::string& rule) const;

    HandOff handOff;
    FileFacts file{.name = "mix.omf", .bytes = 1'000'000};
    SoundFacts sound{};
    bool isHeard = false;
};

/// The profile "post" with one rule's settings, as JSON has them.
[[nodiscard]] Profile postWith(const std::string& rule, const std::string& settings);

}  // namespace trellant::check
