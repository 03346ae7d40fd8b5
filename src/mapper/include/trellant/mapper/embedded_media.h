// SPDX-License-Identifier: Apache-2.0
// Audio inside the interchange file that a timeline alone does not account for: media that no
// source of it is, and sources that were written over one another because their names left no free
// one.
#pragma once

#include <trellant/model/timeline.h>
#include <trellant/omf/document.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace [[gnu::visibility("default")]] trellant {

struct UnusedMedia {
    std::size_t count = 0;
    /// Bytes of all of them; those that lie over one another count each, as far as numbers go.
    std::uint64_t bytes = 0;
    /// Of the first few, each fit for one line; "object 12" for one without a name.
    std::vector<std::string> names{};
};

/// The audio media of `document` that no embedded essence of `timeline` is.
[[nodiscard]] UnusedMedia unusedMedia(const OMFDocument& document, const AAFTimeline& timeline);

/// How much audio an embedded essence holds.
struct MediaLength {
    std::string essenceID{};
    /// Samples of one channel.
    std::uint64_t frames = 0;
};

/// Of the embedded essences of `timeline` whose audio's own header tells, in their order. Reads
/// headers, nothing more.
[[nodiscard]] std::vector<MediaLength> mediaLengths(const OMFDocument& document,
                                                    const AAFTimeline& timeline);

/// An essence whose file is shared, and the file that holds its audio alone.
struct SeparatedSource {
    std::string essenceID{};
    /// Absent when its audio could not be written.
    std::optional<std::string> path{};
};

/// Takes the audio of all embedded essences that name a common file out of `document` once more,
/// each into a new file beside it: nobody knows whose audio the common one holds. What is
/// damaged, or beyond the bounds of a mapping's extraction, is left without a file. Throws
/// FileSystemError.
[[nodiscard]] std::vector<SeparatedSource> separateSources(const OMFDocument& document,
                                                           const AAFTimeline& timeline);

}  // namespace trellant
