// SPDX-License-Identifier: Apache-2.0
#include "extensions.h"

#include <trellant/io/errors.h>
#include <trellant/mapper/compositions.h>
#include <trellant/mapper/embedded_media.h>
#include <trellant/mapper/master_mobs.h>
#include <trellant/mapper/reels.h>
#include <trellant/omf/provenance.h>
#include <trellant/omf/sample_data.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <utility>

namespace trellant {

namespace {

using Extensions = AAFWorkerExtensions;

Extensions::LossPlace described(const LossPlace& place) {
    Extensions::LossPlace described{.kind = place.kind, .cut = place.cut};
    if (place.track) {
        described.trackID = place.track->id;
        described.trackName = place.track->name;
        described.trackIndex = place.track->index;
    }
    if (place.range) {
        described.start = place.range->start;
        described.duration = place.range->duration;
    }
    if (place.clip != OMFObject::none) {
        described.clipObject = number(place.clip);
    }
    if (place.clipName) {
        described.clipName = *place.clipName;
    }
    return described;
}

Extensions::LossPlaces lossPlacesOf(const Mapper& mapper) {
    Extensions::LossPlaces result;
    result.places.reserve(mapper.lossPlaces().size());
    std::transform(mapper.lossPlaces().begin(), mapper.lossPlaces().end(),
                   std::back_inserter(result.places), described);
    return result;
}

/// Names beyond all bounds cost the list, not the answer.
Boxed<Extensions::Compositions> compositionsOf(const OMFDocument& document) {
    Extensions::Compositions result;
    try {
        for (const AAFComposition& composition : compositions(document)) {
            result.compositions.push_back(
                {.object = number(composition.object),
                 .name = composition.name,
                 .mobID = composition.mobID,
                 .slotCount = static_cast<std::int64_t>(composition.slotCount),
                 .isRead = composition.isRead});
        }
    } catch (const OMFIOError&) {
        return {};
    }
    return result;
}

Extensions::EmbeddedMedia embeddedMediaOf(const OMFDocument& document, const AAFTimeline& timeline,
                                          bool extract) {
    UnusedMedia unused = unusedMedia(document, timeline);
    Extensions::EmbeddedMedia result{.unusedCount = static_cast<std::int64_t>(unused.count),
                                     .unusedNames = std::move(unused.names)};
    if (extract) {
        for (SeparatedSource& source : separateSources(document, timeline)) {
            result.separateFiles.push_back(
                {.essenceID = std::move(source.essenceID), .path = std::move(source.path)});
        }
    }
    return result;
}

/// Lists and names beyond all bounds cost the reels, not the answer.
Boxed<Extensions::Reels> reelsOf(const OMFDocument& document, const AAFTimeline& timeline) {
    Extensions::Reels result;
    try {
        for (Reel& reel : reels(document, timeline)) {
            Extensions::Reel described{.essenceID = std::move(reel.essenceID),
                                       .mobID = std::move(reel.mobID),
                                       .name = std::move(reel.name),
                                       .start = reel.start};
            if (reel.timecode) {
                described.timecode =
                    Extensions::ReelTimecode{reel.timecode->start, reel.timecode->framesPerSecond,
                                             reel.timecode->drop, reel.timecode->editRate};
            }
            result.reels.push_back(std::move(described));
        }
    } catch (const OMFIOError&) {
        return {};
    }
    return result;
}

/// Names beyond all bounds cost the names, not the answer.
Boxed<Extensions::MasterMobs> masterMobsOf(const OMFDocument& document,
                                           const AAFTimeline& timeline) {
    Extensions::MasterMobs result;
    try {
        MasterMobs played = masterMobs(document, timeline);
        for (MasterMob& mob : played.mobs) {
            result.masterMobs.push_back({std::move(mob.mobID), std::move(mob.name)});
        }
        result.ofEvents.reserve(played.ofEvents.size());
        for (const std::optional<std::size_t>& mob : played.ofEvents) {
            result.ofEvents.push_back(mob ? static_cast<std::int64_t>(*mob) : -1);
        }
    } catch (const OMFIOError&) {
        return {};
    }
    return result;
}

std::int64_t counted(std::uint64_t count) {
    constexpr auto most = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
    return static_cast<std::int64_t>(std::min(count, most));
}

std::int64_t renderedEffectsIn(const OMFDocument& document) {
    const std::vector<OMFObject> effects = document.objects("EFFE");
    return std::count_if(effects.begin(), effects.end(), [&document](OMFObject effect) {
        const auto rendering = document.objectRef(effect, {OMFProperty::effectFinalRendering});
        return rendering && document.classOf(*rendering) == OMFClass::sourceClip;
    });
}

Extensions::Contents contentsOf(const OMFDocument& document, const AAFTimeline& timeline) {
    UnusedMedia unused = unusedMedia(document, timeline);
    Extensions::Contents result{.unusedMedia = counted(unused.count),
                                .unusedNames = std::move(unused.names),
                                .unusedBytes = counted(unused.bytes),
                                .renderedEffects = renderedEffectsIn(document),
                                .nestedGroups = counted(document.objects("NEST").size())};
    for (MediaLength& length : mediaLengths(document, timeline)) {
        result.mediaLengths.push_back(
            {.essenceID = std::move(length.essenceID), .frames = counted(length.frames)});
    }
    return result;
}

Extensions::Dates datesOf(const OMFDocument& document) {
    // Four bytes of seconds; a fifth says whether they are in UTC, which writers do not agree on.
    const auto seconds = document.uint32(document.headerObject(), {OMFProperty::headLastModified});
    return {.lastModified = seconds ? std::optional<std::int64_t>(*seconds) : std::nullopt};
}

Extensions::Provenance provenanceOf(const OMFDocument& document, const MemoryUse& memory) {
    const BentoFooter& footer = document.bento().footer();
    Extensions::Provenance result{.containerVersion = std::to_string(footer.majorVersion) + "." +
                                                      std::to_string(footer.minorVersion),
                                  .modelVersion = modelVersion(document),
                                  .bigEndian = document.byteOrder() == OMFByteOrder::big,
                                  .peakMemory = memory.peak()};
    for (OMFApplication& application : applications(document)) {
        result.applications.push_back({.company = std::move(application.company),
                                       .product = std::move(application.product),
                                       .version = std::move(application.version)});
    }
    return result;
}

Extensions::SampleData sampleDataOf(const OMFDocument& document, const AAFTimeline& timeline) {
    Extensions::SampleData result;
    for (SampleData& found : sampleData(document, timeline)) {
        Extensions::Samples samples{.essenceID = std::move(found.essenceID),
                                    .sampleBytes = found.sampleBytes,
                                    .bigEndian = found.isBigEndian};
        samples.pieces.reserve(found.pieces.size());
        for (const SamplePiece& piece : found.pieces) {
            samples.pieces.push_back({counted(piece.offset), counted(piece.length)});
        }
        result.samples.push_back(std::move(samples));
    }
    return result;
}

}  // namespace

bool asksFor(const AAFWorkerProtocol::Request& request, std::string_view extension) {
    return request.extensions && std::find(request.extensions->begin(), request.extensions->end(),
                                           extension) != request.extensions->end();
}

Boxed<AAFWorkerExtensions> extensionsFor(const AAFWorkerProtocol::Request& request,
                                         const OMFDocument& document, const Mapper& mapper,
                                         const AAFTimeline& timeline, const MemoryUse& memory) {
    if (!request.extensions) {
        return {};
    }
    Extensions extensions;
    if (asksFor(request, Extensions::lossPlacesName)) {
        extensions.lossPlaces = lossPlacesOf(mapper);
    }
    if (asksFor(request, Extensions::compositionsName)) {
        extensions.compositions = compositionsOf(document);
    }
    if (asksFor(request, Extensions::embeddedMediaName)) {
        extensions.embeddedMedia = embeddedMediaOf(
            document, timeline,
            request.operation == AAFWorkerProtocol::Request::Operation::extractAndInspect);
    }
    if (asksFor(request, Extensions::datesName)) {
        extensions.dates = datesOf(document);
    }
    if (asksFor(request, Extensions::reelsName)) {
        extensions.reels = reelsOf(document, timeline);
    }
    if (asksFor(request, Extensions::contentsName)) {
        extensions.contents = contentsOf(document, timeline);
    }
    if (asksFor(request, Extensions::masterMobsName)) {
        extensions.masterMobs = masterMobsOf(document, timeline);
    }
    if (const auto& older = document.olderModel()) {
        extensions.omf1 = Extensions::OlderModel{.version = older->version()};
    }
    if (asksFor(request, Extensions::sampleDataName)) {
        extensions.sampleData = sampleDataOf(document, timeline);
    }
    // Goes last, with the memory that all the others took.
    if (asksFor(request, Extensions::provenanceName)) {
        extensions.provenance = provenanceOf(document, memory);
    }
    return extensions;
}

}  // namespace trellant
