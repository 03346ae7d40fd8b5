// SPDX-License-Identifier: Apache-2.0
#include "shape_parts.h"

#include <algorithm>

namespace trellant::bench {

std::string takeName(std::uint32_t source) {
    return "Take " + std::to_string(source);
}

ClipSpec clipOf(std::uint32_t index, std::uint32_t count) {
    return {
        .length = clipLength, .source = fileID(index % sourcesFor(count)), .start = index % 1000};
}

void files(CompositionWriter& writer, std::uint32_t count, const MediaSpec& media) {
    for (std::uint32_t i = 0; i < count; ++i) {
        writer.file({.id = fileID(i), .name = takeName(i), .media = media});
    }
}

void oneClipEach(CompositionWriter& writer, std::uint32_t count) {
    TrackFiller tracks(writer, count, clipsInTrack);
    for (std::uint32_t i = 0; i < count; ++i) {
        tracks.add(writer.clip({.length = clipLength, .source = fileID(i)}));
    }
}

TrackFiller::TrackFiller(CompositionWriter& writer, std::uint32_t clips,
                         std::uint32_t clipsPerTrack)
    : writer_(writer), clipsLeft_(clips), clipsPerTrack_(clipsPerTrack) {
    begin();
}

void TrackFiller::begin() {
    const std::uint32_t length = std::min(clipsLeft_, clipsPerTrack_) * clipLength;
    const auto sequence = writer_.sequence(length);
    components_ = sequence.list;
    inTrack_ = 0;
    ++track_;
    writer_.track(track_, "Track " + std::to_string(track_), sequence.object);
}

void TrackFiller::add(ObjectID component) {
    writer_.append(components_, component);
    --clipsLeft_;
    ++inTrack_;
    if (inTrack_ == clipsPerTrack_ && clipsLeft_ > 0) {
        begin();
    }
}

void TrackFiller::addGap(ObjectID component) {
    writer_.append(components_, component);
}

}  // namespace trellant::bench
