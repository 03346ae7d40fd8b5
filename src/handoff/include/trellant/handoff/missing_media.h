// SPDX-License-Identifier: Apache-2.0
// Audio files that lie outside of the interchange file, not where it says: which of the files that
// bear the name it can be.
//
// Where the clips begin in a file was computed with the rate that the interchange file gives the
// source. A file of another rate never fits: its clips would begin elsewhere.
#pragma once

#include <trellant/handoff/audio_facts.h>
#include <trellant/handoff/media_folders.h>
#include <trellant/model/timeline.h>

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace [[gnu::visibility("default")]] trellant {

/// A file that bears the name of a source.
struct MediaCandidate {
    std::string path{};
    /// It lies beside the hand-off itself.
    bool isBeside = false;
    /// Absent when it is no readable audio file.
    std::optional<AudioFacts> facts{};
    /// Why it is not what the clips need; absent when it fits.
    std::optional<std::string> misfit{};
};

/// By essence id: the files of that name, where none or several fit.
using OpenChoices = std::map<std::string, std::vector<MediaCandidate>>;

/// What the clips of a source play of it.
struct SourceNeeds {
    AAFRational sampleRate{};
    std::int64_t channels = 1;
    /// Samples of one channel.
    std::int64_t frames = 0;
};

/// What keeps the clips from playing such a file, for people ("too short, the clips need 48000
/// samples"); absent when nothing does.
[[nodiscard]] std::optional<std::string> misfit(const AudioFacts& facts, const SourceNeeds& needs);

/// Gives each external source without a file the one file of its name that fits, and its format; of
/// several the one beside the hand-off. Where that does not decide, all files of the name are in
/// the result.
[[nodiscard]] OpenChoices findMissing(AAFTimeline& timeline, const MediaFolders& folders);

}  // namespace trellant
