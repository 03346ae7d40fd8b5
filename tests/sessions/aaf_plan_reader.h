// SPDX-License-Identifier: Apache-2.0
// A session out of an AAF file, by the rules of AAF and without a look at what writes it. Each slot
// of sound becomes a track of one lane; media are numbered as clips play them, lane by lane. What
// does not hold together is noted down.
#pragma once

#include <trellant/sessions/session.h>

#include <cstdint>
#include <map>
#include <string>
#include <trellant_testing/stored_objects.h>
#include <vector>

namespace trellant::sessions {

struct ReadMedia {
    /// "WAVE" or "PCM".
    std::string kind{};
    std::vector<std::string> urls{};
    /// Bytes in the file; absent for media that lie elsewhere.
    std::optional<std::uint64_t> embeddedBytes{};
    bool operator==(const ReadMedia&) const = default;
};

struct ReadMarker {
    std::int64_t position = 0;
    std::int64_t length = 0;
    std::string text{};
    /// Names of the slots that it describes.
    std::vector<std::string> tracks{};
    bool operator==(const ReadMarker&) const = default;
};

struct ReadAafSession {
    exchange::ExportPlan plan{};
    /// By position in the plan's media.
    std::vector<ReadMedia> media{};
    std::vector<ReadMarker> markers{};
    std::vector<std::string> problems{};
};

[[nodiscard]] ReadAafSession readAafSession(const testing::FileImage& image);

}  // namespace trellant::sessions
