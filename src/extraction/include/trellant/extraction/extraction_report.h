// SPDX-License-Identifier: Apache-2.0
// What an extraction has come to: each audio file, where it is, who plays it, and what is missing.
#pragma once

#include <trellant/extraction/audio_store.h>
#include <trellant/extraction/placed_file.h>
#include <trellant/handoff/audio_facts.h>
#include <trellant/handoff/hand_off.h>
#include <trellant/handoff/missing_media.h>
#include <trellant/protocol/extensions.h>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace [[gnu::visibility("default")]] trellant {

enum class AudioState {
    /// In the folder, out of the interchange file.
    takenOut,
    /// The same, made into WAVE.
    converted,
    /// A file of its own, which stays where it is.
    found,
    missing,
    /// Files bear its name, and not exactly one of them fits.
    undecided,
    /// Inside the interchange file, but it could not be taken out.
    failed
};

/// In one word, for machines: "takenOut", "converted", "found", "missing", "undecided", "failed".
[[nodiscard]] std::string_view stateWord(AudioState state) noexcept;

struct AudioEntry {
    AudioState state = AudioState::missing;
    /// The sources that it is the audio of, at least one; indices of the timeline's essences.
    std::vector<std::size_t> essences{};
    std::size_t clips = 0;
    /// Absolute; absent without a file.
    std::optional<std::string> path{};
    std::optional<AudioFacts> facts{};
    /// Of files in the folder, and of those in the store that have no name there.
    std::optional<PlacedFile> placed{};
    /// Where the store has it.
    std::optional<StoredFile> stored{};
    /// Files that bear its name, where none was taken: the first of them, and how many there are.
    std::vector<MediaCandidate> candidates{};
    std::size_t filesOfName = 0;
    /// It is called after a master mob.
    bool isNamedByMasterMob = false;
    /// Why it was not made into WAVE although that was asked for.
    std::optional<std::string> notConverted{};

    /// No file was found, or none that was certain.
    [[nodiscard]] bool isMissing() const noexcept {
        return state == AudioState::missing || state == AudioState::undecided;
    }
    /// An earlier run has put it into the folder.
    [[nodiscard]] bool wasThere() const noexcept { return placed && placed->wasThere; }
    /// There is a file, and no audio that can be read in it.
    [[nodiscard]] bool isUnreadable() const noexcept { return path && !facts; }
};

struct ExtractionReport {
    /// As the request names them.
    std::string file;
    std::string directory;
    /// With the files as they are now.
    HandOff handOff;
    std::vector<AudioEntry> audio;
    PlacedFile timeline;
    PlacedFile manifest;
    /// Audio inside the file that no clip plays; absent when the worker did not say.
    std::optional<AAFWorkerExtensions::EmbeddedMedia> embedded;

    [[nodiscard]] std::size_t count(AudioState state) const;
};

}  // namespace trellant
