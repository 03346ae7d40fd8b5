// SPDX-License-Identifier: Apache-2.0
// The shapes that are worst for a reader: much of one thing.
#include "shape_parts.h"

namespace trellant::bench {

namespace {

/// Clips where the many are something else.
constexpr std::uint32_t fewClips = 10;
constexpr std::uint64_t smallPiece = 16;
/// Levels that the sequence below the scopes and its selectors take themselves.
constexpr std::uint32_t levelsBelowScopes = 4;

}  // namespace

void oneSequence(CompositionWriter& writer, const ShapeRequest& request) {
    files(writer, sourcesFor(request.count), request.media);
    writer.beginComposition("One sequence");
    TrackFiller tracks(writer, request.count, request.count);
    for (std::uint32_t i = 0; i < request.count; ++i) {
        tracks.add(writer.clip(clipOf(i, request.count)));
    }
}

void manyMobs(CompositionWriter& writer, const ShapeRequest& request) {
    files(writer, fewClips, request.media);
    for (std::uint32_t i = 0; i < request.count; ++i) {
        writer.unusedMob({44, i}, takeName(i));
    }
    writer.beginComposition("Many mobs");
    oneClipEach(writer, fewClips);
}

void manyPieces(CompositionWriter& writer, const ShapeRequest& request) {
    MediaSpec media = request.media;
    media.bytesInPiece = smallPiece;
    media.byteCount = smallPiece * request.count;
    files(writer, 1, media);
    writer.beginComposition("Many pieces");
    oneClipEach(writer, 1);
}

void oneName(CompositionWriter& writer, const ShapeRequest& request) {
    for (std::uint32_t i = 0; i < request.count; ++i) {
        writer.file({.id = fileID(i), .name = "Take", .media = request.media});
    }
    writer.beginComposition("One name");
    oneClipEach(writer, request.count);
}

void manyInputs(CompositionWriter& writer, const ShapeRequest& request) {
    files(writer, sourcesFor(request.count), request.media);
    writer.beginComposition("Many inputs");
    const auto gain = writer.effect(CompositionWriter::EffectKind::gain, clipLength);
    writer.track(1, "All at once", gain.object);
    writer.control(gain, writer.constantValue(50));
    for (std::uint32_t i = 0; i < request.count; ++i) {
        writer.input(gain, writer.clip(clipOf(i, request.count)));
    }
}

void manyLevels(CompositionWriter& writer, const ShapeRequest& request) {
    files(writer, sourcesFor(request.count), request.media);
    writer.beginComposition("Many levels");
    const std::uint32_t length = request.count * clipLength;
    auto scope = writer.nestedScope(length);
    writer.track(1, "Deep", scope.object);
    for (std::uint32_t level = levelsBelowScopes + 1; level < request.levels; ++level) {
        writer.append(scope.list, writer.filler(length));
        const auto inner = writer.nestedScope(length);
        writer.append(scope.list, inner.object);
        scope = inner;
    }
    const auto sequence = writer.sequence(length);
    writer.append(scope.list, sequence.object);
    for (std::uint32_t i = 0; i < request.count; ++i) {
        const ObjectID clip = writer.clip(clipOf(i, request.count));
        writer.append(sequence.list, writer.selector(clipLength, clip));
    }
}

void manyTracks(CompositionWriter& writer, const ShapeRequest& request) {
    files(writer, sourcesFor(request.count), request.media);
    writer.beginComposition("Many tracks");
    TrackFiller tracks(writer, request.count, 1);
    for (std::uint32_t i = 0; i < request.count; ++i) {
        tracks.add(writer.clip(clipOf(i, request.count)));
    }
}

void manyLosses(CompositionWriter& writer, const ShapeRequest& request) {
    files(writer, sourcesFor(request.count), request.media);
    writer.beginComposition("Many losses");
    TrackFiller tracks(writer, request.count, clipsInTrack);
    for (std::uint32_t i = 0; i < request.count; ++i) {
        tracks.addGap(writer.transition(20));
        tracks.add(writer.clip(clipOf(i, request.count)));
    }
}

void manyForeignSlots(CompositionWriter& writer, const ShapeRequest& request) {
    files(writer, fewClips, request.media);
    writer.beginComposition("Many foreign slots");
    const auto gain = writer.effect(CompositionWriter::EffectKind::gain, clipLength);
    writer.track(1, "One", gain.object);
    const ObjectID level = writer.constantValue(50);
    for (std::uint32_t i = 0; i < request.count; ++i) {
        writer.foreign(gain, level);
    }
    writer.control(gain, level);
    writer.input(gain, writer.clip(clipOf(0, fewClips)));
}

void lossesAtOnce(CompositionWriter& writer, const ShapeRequest& request) {
    files(writer, sourcesFor(request.count), request.media);
    writer.beginComposition("Losses at once");
    const auto all = writer.effect(CompositionWriter::EffectKind::gain, clipLength);
    writer.track(1, "All at once", all.object);
    writer.control(all, writer.constantValue(50));
    // No level: each of these settings is lost.
    const ObjectID noLevel = writer.filler(clipLength);
    for (std::uint32_t i = 0; i < request.count; ++i) {
        const ObjectID clip = writer.clip(clipOf(i, request.count));
        const auto gain = writer.effect(CompositionWriter::EffectKind::gain, clipLength);
        writer.control(gain, noLevel);
        writer.input(gain, clip);
        writer.input(all, gain.object);
    }
}

}  // namespace trellant::bench
