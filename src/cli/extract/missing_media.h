// Audio files that lie outside of the interchange file and were not found by the worker: which of
// the files that bear the name it can be.
#pragma once

#include "audio_facts.h"
#include "media_folders.h"

#include <trellant/model/timeline.h>

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace trellant::cli {

/// A file that bears the name of a source.
struct MediaCandidate {
    std::string path{};
    /// Absent when it is no readable audio file.
    std::optional<AudioFacts> facts{};
    /// Rate, channels and length are what the clips need.
    bool fits = false;
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

[[nodiscard]] bool fits(const AudioFacts& facts, const SourceNeeds& needs);

/// Gives each external source without a file the one file of its name that fits, and its format;
/// where not exactly one does, all of them are in the result.
[[nodiscard]] OpenChoices findMissing(AAFTimeline& timeline, const MediaFolders& folders);

}  // namespace trellant::cli
