// SPDX-License-Identifier: Apache-2.0
// What a rendered file says of itself: "bext", "iXML", and cue points where something was lost.
//
//   "cue "  a count, then of each mark: number, sample, "data", 0, 0, sample (24 bytes)
//   "LIST"  "adtl", then of each mark: "labl" with number and text, ended by a zero byte
#pragma once

#include <trellant/base/bytes.h>
#include <trellant/render/render.h>
#include <trellant/sessions/session.h>

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <vector>

namespace trellant::render {

/// Marks of one file, at most; the list of losses has all.
inline constexpr std::size_t mostMarks = 10'000;

/// Marks by what they are about, so that no file looks at those of others.
class MarkIndex {
  public:
    using Marks = std::vector<const sessions::SessionMarker*>;

    /// By ascending position, of a session of so many tracks; they must outlive this.
    MarkIndex(const std::vector<sessions::SessionMarker>& markers, std::size_t tracks);

    /// By ascending position: of a clip's file those about the clip, of a track's those about the
    /// track and about the whole, of the mix's all.
    [[nodiscard]] Marks of(const RenderedFile& file, const exchange::ExportPlan& plan) const;

  private:
    Marks all_;
    Marks ofTheWhole_;
    std::vector<Marks> ofTracks_;
    /// By position in the timeline's events.
    std::map<std::size_t, Marks> ofEvents_;
};

struct FileFacts {
    const exchange::ExportPlan& plan;
    const MarkIndex& marks;
    std::optional<std::int64_t> date{};
};

/// Whole chunks, one behind the other.
[[nodiscard]] Bytes fileChunks(const RenderedFile& file, const FileFacts& facts);

}  // namespace trellant::render
