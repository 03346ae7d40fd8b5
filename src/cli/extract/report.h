// What an extraction has come to: each audio file, where it is, who plays it, and what is missing.
#pragma once

#include "audio_facts.h"
#include "embedded_media.h"
#include "look/inspection.h"
#include "missing_media.h"
#include "placement.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace trellant::cli {

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

/// "taken out", "taken out as WAVE", "found", "missing", "missing, files of its name do not
/// decide", "could not be taken out".
[[nodiscard]] std::string_view stateText(AudioState state) noexcept;
/// The same in one word, for machines: "takenOut", "converted", "found", "missing", "undecided",
/// "failed".
[[nodiscard]] std::string_view stateWord(AudioState state) noexcept;

struct AudioEntry {
    AudioState state = AudioState::missing;
    /// The sources that it is the audio of, at least one; indices of the timeline's essences.
    std::vector<std::size_t> essences{};
    std::size_t clips = 0;
    /// Absolute; absent without a file.
    std::optional<std::string> path{};
    std::optional<AudioFacts> facts{};
    /// Of files in the folder.
    std::optional<PlacedFile> placed{};
    std::vector<MediaCandidate> candidates{};
    /// Why it was not made into WAVE although that was asked for.
    std::optional<std::string> notConverted{};

    /// An earlier run has put it into the folder.
    [[nodiscard]] bool wasThere() const noexcept { return placed && placed->wasThere; }
    /// There is a file, and no audio that can be read in it.
    [[nodiscard]] bool isUnreadable() const noexcept { return path && !facts; }
};

struct ExtractReport {
    /// As the person wrote them.
    std::string file;
    std::string directory;
    /// With the files as they are now.
    Inspection inspection;
    std::vector<AudioEntry> audio;
    PlacedFile timeline;
    PlacedFile manifest;
    /// Audio inside the file that no clip plays; absent when not known.
    std::optional<UnusedMedia> unused;

    [[nodiscard]] std::size_t count(AudioState state) const;
};

/// For a person. `columns` as for aligned().
[[nodiscard]] std::string summaryScreen(const ExtractReport& report, std::size_t columns,
                                        bool colour);
/// The same facts as one JSON object and a line feed.
[[nodiscard]] std::string summaryLine(const ExtractReport& report);

}  // namespace trellant::cli
