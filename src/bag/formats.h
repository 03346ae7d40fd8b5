// SPDX-License-Identifier: Apache-2.0
// What the files of a bag are called in the registry PRONOM.
#pragma once

#include <trellant/handoff/audio_facts.h>

#include <optional>
#include <string>

namespace trellant::bag {

struct FileFormat {
    std::string name{};
    std::string version{};
    /// "fmt/1855"; empty where the registry has none for it.
    std::string pronom{};
    bool operator==(const FileFormat&) const = default;
};

/// `olderVersion`: as HandOff has it.
[[nodiscard]] FileFormat formatOfOmf(const std::optional<std::string>& olderVersion);
/// Of a WAVE, AIFF or AIFC file; "unknown" for any other.
[[nodiscard]] FileFormat formatOfAudio(const std::optional<AudioFacts>& facts);
[[nodiscard]] FileFormat formatOfTimeline();

}  // namespace trellant::bag
