// SPDX-License-Identifier: Apache-2.0
// Whether JSON is a timeline that programs may rely on. The reading of it and the look for its
// audio are two steps: the first is a child's, with nothing in reach but the document.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace trellant::cli {

/// An audio file that a timeline names.
struct NamedAudio {
    /// A path, or the text of what is none.
    std::string name;
    bool isPath = false;
    bool operator==(const NamedAudio&) const = default;
};

struct TimelineCheck {
    /// What validation says of a timeline that could be decoded.
    struct Failure {
        std::string code;
        std::string object;
        bool operator==(const Failure&) const = default;
    };

    bool valid = false;
    std::optional<Failure> failure{};
    /// The failure's track or clip for people; empty when there is no more to say.
    std::string place{};
    /// Why it could not even be decoded.
    std::string fault{};
    std::size_t tracks = 0;
    std::size_t clips = 0;
    std::vector<NamedAudio> audio{};
    bool operator==(const TimelineCheck&) const = default;
};

/// `text`: a timeline, or a result of the worker with one. `folder` (absolute): where it lies, for
/// a document that names files by the way from there. Looks at no file.
[[nodiscard]] TimelineCheck checkTimeline(const std::string& text, const std::string& folder);

/// The names of audio that is not there.
[[nodiscard]] std::vector<std::string> missingAudio(const TimelineCheck& check);

/// A check as the answer of a child, and back; absent when `packed` is no such answer.
[[nodiscard]] std::string packedCheck(const TimelineCheck& check);
[[nodiscard]] std::optional<TimelineCheck> unpackedCheck(std::string_view packed);

}  // namespace trellant::cli
