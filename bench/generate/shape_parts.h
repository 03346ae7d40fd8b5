// SPDX-License-Identifier: Apache-2.0
// What several shapes have in common, and the shapes that are worst for a reader.
#pragma once

#include "shapes.h"

#include <cstdint>
#include <optional>
#include <string>

namespace trellant::bench {

/// Clips in one track of an ordinary composition.
inline constexpr std::uint32_t clipsInTrack = 5000;
/// Of every clip, in edit units.
inline constexpr std::uint32_t clipLength = 100;

[[nodiscard]] constexpr MobID fileID(std::uint32_t source) {
    return {42, source};
}
[[nodiscard]] constexpr MobID masterID(std::uint32_t source) {
    return {43, source};
}
[[nodiscard]] std::string takeName(std::uint32_t source);
/// One source for ten clips.
[[nodiscard]] constexpr std::uint32_t sourcesFor(std::uint32_t clips) {
    return clips / 10 + 1;
}
/// The i-th of `count` clips, from one source of sourcesFor(count).
[[nodiscard]] ClipSpec clipOf(std::uint32_t index, std::uint32_t count);

/// Embedded files 0 to `count` - 1.
void files(CompositionWriter& writer, std::uint32_t count, const MediaSpec& media);
/// Tracks with one clip of each of these files.
void oneClipEach(CompositionWriter& writer, std::uint32_t count);

/// Spreads components over tracks, a new one whenever the last is full. A track is written before
/// its components, so the first of them comes after the constructor.
class TrackFiller {
  public:
    TrackFiller(CompositionWriter& writer, std::uint32_t clips, std::uint32_t clipsPerTrack);
    /// A component that counts towards the track's clips. The next track begins right after the
    /// last clip of this one.
    void add(ObjectID component);
    /// A component beside.
    void addGap(ObjectID component);

  private:
    void begin();

    CompositionWriter& writer_;
    std::uint32_t clipsLeft_;
    std::uint32_t clipsPerTrack_;
    std::uint32_t inTrack_ = 0;
    std::uint32_t track_ = 0;
    CompositionWriter::List components_ = 0;
};

void oneSequence(CompositionWriter& writer, const ShapeRequest& request);
void manyMobs(CompositionWriter& writer, const ShapeRequest& request);
void manyPieces(CompositionWriter& writer, const ShapeRequest& request);
void oneName(CompositionWriter& writer, const ShapeRequest& request);
void manyInputs(CompositionWriter& writer, const ShapeRequest& request);
void manyLevels(CompositionWriter& writer, const ShapeRequest& request);
void manyTracks(CompositionWriter& writer, const ShapeRequest& request);
void manyLosses(CompositionWriter& writer, const ShapeRequest& request);
void manyForeignSlots(CompositionWriter& writer, const ShapeRequest& request);
void lossesAtOnce(CompositionWriter& writer, const ShapeRequest& request);

}  // namespace trellant::bench
