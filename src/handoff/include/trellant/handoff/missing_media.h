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

#include <cstddef>
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

/// The files of a source's name, where none or several fit.
struct OpenChoice {
    /// The first of them, with one that fits if any does.
    std::vector<MediaCandidate> candidates{};
    /// How many there are.
    std::size_t files = 0;
};

/// What could not be decided.
struct OpenChoices {
    /// Files that are listed for one source: thousands of sources may bear a name that thousands of
    /// files have.
    static constexpr std::size_t listedFiles = 64;

    /// By essence id.
    std::map<std::string, OpenChoice> bySource{};
    /// All files that were read for the search.
    std::vector<std::string> read{};
};

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
/// several the one beside the hand-off. Where that does not decide, files of the name are in the
/// result.
[[nodiscard]] OpenChoices findMissing(AAFTimeline& timeline, const MediaFolders& folders);

}  // namespace trellant
