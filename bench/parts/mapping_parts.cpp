// SPDX-License-Identifier: Apache-2.0
// From the opened document to the timeline, whole and in its two halves: segments to drafts, clips
// to sources.
#include "bounded_reads.h"
#include "composition.h"
#include "data_kinds.h"
#include "mapping_notes.h"
#include "opened.h"
#include "segment_walk.h"
#include "source_resolution.h"

#include <benchmark/benchmark.h>
#include <cstdint>

namespace trellant::bench {

namespace {

void perClip(benchmark::State& state, std::size_t clips) {
    state.SetItemsProcessed(static_cast<std::int64_t>(clips) *
                            static_cast<std::int64_t>(state.iterations()));
}

/// The composition's tracks.
struct Tracks {
    explicit Tracks(const OMFDocument& document)
        : composition(chooseComposition(document)),
          slots(document.objectRefs(composition, {OMFProperty::mobSlots})) {
        for (const OMFObject slot : slots) {
            segments.push_back(
                document.objectRef(slot, {OMFProperty::slotSegment}).value_or(OMFObject::none));
            rates.push_back(document.rational(slot, {OMFProperty::slotEditRate})->aaf());
        }
    }
    OMFObject composition;
    std::vector<OMFObject> slots;
    std::vector<OMFObject> segments{};
    std::vector<AAFRational> rates{};
};

EventDrafts flattened(SegmentWalk& walk, const Tracks& tracks) {
    EventDrafts drafts;
    const ObjectPath root("CMOB", tracks.composition);
    for (std::size_t i = 0; i < tracks.slots.size(); ++i) {
        const ObjectPath path(root, "slot", tracks.slots[i]);
        const ScopeFrame scope{.segments = &tracks.segments,
                               .currentIndex = static_cast<std::int64_t>(i)};
        walk.flatten(tracks.segments[i], {tracks.rates[i], AAFRational::zero(), path, &scope, 0},
                     drafts);
    }
    return drafts;
}

void flatten(benchmark::State& state, const std::string& path) {
    const OMFDocument document(path);
    const Tracks tracks(document);
    std::size_t clips = 0;
    for (auto _ : state) {
        BoundedReads reads(document);
        MappingNotes notes;
        SegmentWalk walk(reads, notes, [] {});
        clips = flattened(walk, tracks).size();
        benchmark::DoNotOptimize(clips);
    }
    perClip(state, clips);
}

void resolve(benchmark::State& state, const std::string& path) {
    const OMFDocument document(path);
    const Tracks tracks(document);
    BoundedReads reads(document);
    MappingNotes notes;
    SegmentWalk walk(reads, notes, [] {});
    const EventDrafts drafts = flattened(walk, tracks);
    for (auto _ : state) {
        const auto mobs = document.mobMap();
        DataKinds kinds(reads);
        SourceResolution sources(reads, mobs, kinds);
        for (const EventDraft& draft : drafts) {
            benchmark::DoNotOptimize(sources.resolveSourceClip(draft.object, tracks.rates.back(),
                                                               draft.sourceTrimStart));
        }
    }
    perClip(state, drafts.size());
}

void map(benchmark::State& state, const std::string& path) {
    const OMFDocument document(path);
    std::size_t clips = 0;
    for (auto _ : state) {
        clips = mapped(document, path).timeline.events.size();
        benchmark::DoNotOptimize(clips);
    }
    perClip(state, clips);
}

}  // namespace

AAFWorkerProtocol::Result mapped(const OMFDocument& document, const std::string& path) {
    MappingPlaces places;
    places.sourcePath = path;
    places.workDirectory = "/nowhere";
    Mapper mapper(document, std::move(places));
    AAFWorkerProtocol::Result result;
    result.timeline = mapper.makeTimeline([](double) {});
    result.diagnostics = mapper.diagnostics();
    return result;
}

void registerMappingParts(const PartsFiles& files) {
    const auto add = [&](const char* name, auto* measure) {
        benchmark::RegisterBenchmark(name, [&, measure](benchmark::State& state) {
            measure(state, files.omf);
        })->Unit(benchmark::kMicrosecond);
    };
    add("flatten", flatten);
    add("resolve", resolve);
    add("map", map);
}

}  // namespace trellant::bench
