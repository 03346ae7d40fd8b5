// SPDX-License-Identifier: Apache-2.0
#include "shapes.h"

#include "shape_parts.h"

#include <algorithm>
#include <array>

namespace trellant::bench {

namespace {

void plain(CompositionWriter& writer, const ShapeRequest& request) {
    files(writer, sourcesFor(request.count), request.media);
    writer.beginComposition("Plain");
    TrackFiller tracks(writer, request.count, clipsInTrack);
    for (std::uint32_t i = 0; i < request.count; ++i) {
        tracks.add(writer.clip(clipOf(i, request.count)));
    }
}

/// Master mobs before the files, fades, names, gaps and a gain now and then.
void real(CompositionWriter& writer, const ShapeRequest& request) {
    const std::uint32_t sources = sourcesFor(request.count);
    for (std::uint32_t i = 0; i < sources; ++i) {
        writer.passage("MMOB", masterID(i), takeName(i), fileID(i));
        writer.file({.id = fileID(i), .name = takeName(i), .media = request.media});
    }
    writer.beginComposition("Real");
    TrackFiller tracks(writer, request.count, clipsInTrack);
    for (std::uint32_t i = 0; i < request.count; ++i) {
        ClipSpec clip = clipOf(i, request.count);
        clip.source = masterID(i % sources);
        clip.fadeIn = i % 4 == 0 ? 10 : 0;
        clip.name = i % 5 == 0 ? "clip " + std::to_string(i) : "";
        const ObjectID object = writer.clip(clip);
        if (i % 7 == 0) {
            const auto gain = writer.effect(CompositionWriter::EffectKind::gain, clip.length);
            writer.input(gain, object);
            writer.control(gain, writer.constantValue(50));
            tracks.add(gain.object);
        } else {
            tracks.add(object);
        }
        if (i % 3 == 0) {
            tracks.addGap(writer.filler(20));
        }
    }
}

void effects(CompositionWriter& writer, const ShapeRequest& request) {
    files(writer, sourcesFor(request.count), request.media);
    writer.beginComposition("Effects");
    TrackFiller tracks(writer, request.count, clipsInTrack);
    for (std::uint32_t i = 0; i < request.count; ++i) {
        const ClipSpec clip = clipOf(i, request.count);
        const auto gain = writer.effect(CompositionWriter::EffectKind::gain, clip.length);
        writer.input(gain, writer.clip(clip));
        writer.control(gain, writer.varyingValue(
                                 clip.length, {{0, 100}, {30, 80}, {60, 20 + i % 50}, {100, 100}}));
        const auto pan = writer.effect(CompositionWriter::EffectKind::pan, clip.length);
        writer.input(pan, gain.object);
        writer.control(pan, writer.constantValue(25));
        tracks.add(pan.object);
    }
}

/// As a mixed session is: a gain line of ten points on every clip, a hundred clips of each file.
void automation(CompositionWriter& writer, const ShapeRequest& request) {
    constexpr std::uint32_t pointCount = 10;
    const std::uint32_t sources = std::max(request.count / 100, 1U);
    files(writer, sources, request.media);
    writer.beginComposition("Automation");
    TrackFiller tracks(writer, request.count, clipsInTrack);
    for (std::uint32_t i = 0; i < request.count; ++i) {
        ClipSpec clip = clipOf(i, request.count);
        clip.source = fileID(i % sources);
        std::vector<PointSpec> points;
        for (std::uint32_t point = 0; point < pointCount; ++point) {
            points.push_back({100 * point / (pointCount - 1), 20 + (7 * i + 31 * point) % 80});
        }
        const auto gain = writer.effect(CompositionWriter::EffectKind::gain, clip.length);
        writer.input(gain, writer.clip(clip));
        writer.control(gain, writer.varyingValue(clip.length, points));
        tracks.add(gain.object);
    }
}

/// As one workstation writes a panned clip: the clip is one slot of a scope, the effect the other
/// and refers back to it.
void scopes(CompositionWriter& writer, const ShapeRequest& request) {
    files(writer, sourcesFor(request.count), request.media);
    writer.beginComposition("Scopes");
    TrackFiller tracks(writer, request.count, clipsInTrack);
    for (std::uint32_t i = 0; i < request.count; ++i) {
        const ClipSpec clip = clipOf(i, request.count);
        const auto scope = writer.nestedScope(clip.length);
        writer.append(scope.list, writer.clip(clip));
        const auto pan = writer.effect(CompositionWriter::EffectKind::pan, clip.length);
        writer.append(scope.list, pan.object);
        writer.input(pan, writer.scopeReference(clip.length, 0, 1));
        writer.control(pan, writer.constantValue(25));
        tracks.add(scope.object);
    }
}

/// Every source lies behind `levels` mobs.
void chains(CompositionWriter& writer, const ShapeRequest& request) {
    const std::uint32_t sources = sourcesFor(request.count);
    files(writer, sources, request.media);
    const auto linkID = [&](std::uint32_t source, std::uint32_t level) {
        return level == 0 ? fileID(source) : MobID{100 + level, source};
    };
    for (std::uint32_t i = 0; i < sources; ++i) {
        for (std::uint32_t level = 1; level <= request.levels; ++level) {
            writer.passage("MMOB", linkID(i, level), takeName(i), linkID(i, level - 1));
        }
    }
    writer.beginComposition("Chains");
    TrackFiller tracks(writer, request.count, clipsInTrack);
    for (std::uint32_t i = 0; i < request.count; ++i) {
        ClipSpec clip = clipOf(i, request.count);
        clip.source = linkID(i % sources, request.levels);
        tracks.add(writer.clip(clip));
    }
}

/// One clip for each external file, which is known by a path of another machine.
void external(CompositionWriter& writer, const ShapeRequest& request) {
    for (std::uint32_t i = 0; i < request.count; ++i) {
        writer.file({.id = fileID(i),
                     .name = takeName(i),
                     .dosPath = "D:\\Session\\Audio Files\\" + externalName(i)});
    }
    writer.beginComposition("External");
    oneClipEach(writer, request.count);
}

/// Tracks that each play an external file of 24 bits and as many bytes as media are to have, in
/// clips of ten seconds that fade in, of which every fourth has a gain.
void reels(CompositionWriter& writer, const ShapeRequest& request) {
    constexpr std::uint32_t frames = 10 * unitsPerSecond;
    constexpr std::uint64_t headBytes = 44;
    constexpr std::uint64_t clipBytes = std::uint64_t{3} * frames;
    const auto clips = static_cast<std::uint32_t>(std::clamp<std::uint64_t>(
        (request.media.byteCount - headBytes) / clipBytes, 1, clipsInTrack));
    for (std::uint32_t i = 0; i < request.count; ++i) {
        writer.file({.id = fileID(i),
                     .name = takeName(i),
                     .dosPath = "D:\\Session\\Audio Files\\" + externalName(i)});
    }
    writer.beginComposition("Reels");
    for (std::uint32_t i = 0; i < request.count; ++i) {
        const auto sequence = writer.sequence(clips * frames);
        writer.track(i + 1, "Track " + std::to_string(i + 1), sequence.object);
        for (std::uint32_t k = 0; k < clips; ++k) {
            const ObjectID clip = writer.clip(
                {.length = frames, .source = fileID(i), .start = k * frames, .fadeIn = 480});
            if (k % 4 != 0) {
                writer.append(sequence.list, clip);
                continue;
            }
            const auto gain = writer.effect(CompositionWriter::EffectKind::gain, frames);
            writer.input(gain, clip);
            writer.control(gain, writer.constantValue(50));
            writer.append(sequence.list, gain.object);
        }
    }
}

void embedded(CompositionWriter& writer, const ShapeRequest& request) {
    files(writer, request.count, request.media);
    writer.beginComposition("Embedded");
    oneClipEach(writer, request.count);
}

constexpr std::array shapes{
    Shape{"plain", "clips", FileLayout::plain, plain},
    Shape{"real", "clips as workstations write them", FileLayout::real, real},
    Shape{"effects", "clips with gain automation and pan", FileLayout::real, effects},
    Shape{"automation", "clips with ten points of gain", FileLayout::real, automation},
    Shape{"scopes", "clips within nested scopes", FileLayout::real, scopes},
    Shape{"chains", "clips behind chains of mobs", FileLayout::real, chains},
    Shape{"external", "external files", FileLayout::real, external},
    Shape{"reels", "tracks of clips of ten seconds from one external file", FileLayout::real,
          reels},
    Shape{"embedded", "embedded files", FileLayout::plain, embedded},
    Shape{"sequence", "clips in one sequence", FileLayout::real, oneSequence},
    Shape{"mobs", "mobs that no clip plays", FileLayout::plain, manyMobs},
    Shape{"pieces", "pieces of one audio value", FileLayout::plain, manyPieces},
    Shape{"names", "embedded files of one name", FileLayout::plain, oneName},
    Shape{"inputs", "inputs of one effect", FileLayout::real, manyInputs},
    Shape{"levels", "clips below levels of scopes", FileLayout::real, manyLevels},
    Shape{"tracks", "tracks of one clip", FileLayout::plain, manyTracks},
    Shape{"losses", "clips with a loss at each", FileLayout::plain, manyLosses},
    Shape{"foreign", "slots of one effect that are nothing to it", FileLayout::plain,
          manyForeignSlots},
    Shape{"together", "clips at one time with a loss at each", FileLayout::real, lossesAtOnce},
};

}  // namespace

std::span<const Shape> allShapes() {
    return shapes;
}

std::string externalName(std::uint32_t source) {
    return "Take " + std::to_string(source) + ".wav";
}

}  // namespace trellant::bench
