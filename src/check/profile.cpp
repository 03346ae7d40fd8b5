// SPDX-License-Identifier: Apache-2.0
#include "profile_reader.h"

#include <trellant/base/printable_text.h>
#include <trellant/check/profile.h>

#include <algorithm>
#include <array>
#include <utility>

namespace trellant::check {

namespace {

constexpr std::string_view post = R"({
  "profileVersion": 1,
  "name": "post"
}
)";

constexpr std::string_view film = R"({
  "profileVersion": 1,
  "name": "film",
  "extends": "post",
  "rules": {
    "depth-expected": { "depths": [24] },
    "frame-rate": { "rates": [23.976, 24], "counting": "non-drop" },
    "handles": { "seconds": 8 },
    "loss-sound": { "severity": "error" },
    "effects": { "severity": "error" }
  }
}
)";

constexpr std::string_view broadcast25 = R"({
  "profileVersion": 1,
  "name": "broadcast-25",
  "extends": "post",
  "rules": {
    "frame-rate": { "rates": [25] },
    "start-timecode": { "timecode": "10:00:00:00" },
    "pop-head": { "timecode": "09:59:58:00" }
  }
}
)";

constexpr std::string_view music = R"({
  "profileVersion": 1,
  "name": "music",
  "extends": "post",
  "rules": {
    "rate-expected": { "rates": [44100, 48000, 88200, 96000, 176400, 192000] },
    "rate-mixed": { "severity": "error" },
    "depth-expected": { "depths": [16, 24, 32] },
    "channels-mono": { "severity": "off" },
    "handles": { "severity": "off" },
    "start-timecode": { "severity": "off" },
    "frame-rate": { "severity": "off" },
    "rate-label": { "severity": "info" },
    "off-frame": { "severity": "off" },
    "pop-head": { "severity": "off" }
  }
}
)";

constexpr std::string_view archive = R"({
  "profileVersion": 1,
  "name": "archive",
  "extends": "post",
  "rules": {
    "media-unused": { "severity": "warning" },
    "loss-sound": { "severity": "error" },
    "effects": { "severity": "error" },
    "rate-expected": { "severity": "off" },
    "rate-mixed": { "severity": "off" },
    "depth-expected": { "severity": "off" },
    "depth-mixed": { "severity": "off" },
    "channels-mono": { "severity": "off" },
    "handles": { "severity": "off" },
    "start-timecode": { "severity": "off" },
    "frame-rate": { "severity": "off" },
    "off-frame": { "severity": "off" },
    "overlap": { "severity": "off" },
    "tiny-clip": { "severity": "off" },
    "duplicate": { "severity": "off" },
    "pairs": { "severity": "off" },
    "track-names": { "severity": "off" },
    "muted": { "severity": "off" },
    "gain-range": { "severity": "off" },
    "pop-head": { "severity": "off" },
    "silent": { "severity": "off" },
    "clipped": { "severity": "off" }
  }
}
)";

constexpr std::array builtIn{
    BuiltInProfile{"post", "a post house: 48 kHz, 16 or 24 bits, handles of 5 s", post},
    BuiltInProfile{"film", "a film: 24 bits, 23.976 or 24 fps, handles of 8 s", film},
    BuiltInProfile{"broadcast-25", "television at 25 fps, programs from 10:00:00:00", broadcast25},
    BuiltInProfile{"music", "music: any usual rate, but one; no picture", music},
    BuiltInProfile{"archive", "an archive: what is lost, and what the file is", archive},
};

const BuiltInProfile* builtInNamed(std::string_view name) {
    const auto found =
        std::find_if(builtIn.begin(), builtIn.end(),
                     [name](const BuiltInProfile& profile) { return profile.name == name; });
    return found == builtIn.end() ? nullptr : found;
}

Profile readAt(std::string_view text, const std::string& name, const ProfileFinder& finder,
               std::size_t depth) {
    if (depth > mostExtended) {
        throw ProfileError("profile \"" + printableText(name) + "\": more than " +
                           std::to_string(mostExtended) +
                           " profiles extend one another; do two of them extend each other?");
    }
    const ProfileReader reader(text, name);
    const auto extended = reader.extended();
    if (!extended) {
        return reader.over(standardProfile());
    }
    const BuiltInProfile* const known = builtInNamed(*extended);
    const std::string base = known != nullptr ? std::string(known->text) : finder(*extended);
    return reader.over(readAt(base, *extended, finder, depth + 1));
}

}  // namespace

std::span<const BuiltInProfile> builtInProfiles() {
    return builtIn;
}

std::optional<Profile> builtInProfile(std::string_view name) {
    const BuiltInProfile* const known = builtInNamed(name);
    if (known == nullptr) {
        return std::nullopt;
    }
    return readProfile(known->text, std::string(name), [](const std::string& other) -> std::string {
        throw ProfileError("there is no profile \"" + printableText(other) + "\"");
    });
}

Profile readProfile(std::string_view text, const std::string& name, const ProfileFinder& finder) {
    return readAt(text, name, finder, 1);
}

}  // namespace trellant::check
