// SPDX-License-Identifier: Apache-2.0
// The assembly of the timeline: the composition, its clock, and slot by slot its tracks.
#include "bounded_reads.h"
#include "composition.h"
#include "data_kinds.h"
#include "external_media.h"
#include "mapping_notes.h"
#include "media_search.h"
#include "segment_walk.h"
#include "track_builder.h"

#include <trellant/base/url.h>
#include <trellant/io/errors.h>
#include <trellant/mapper/mapper.h>

#include <algorithm>
#include <string>
#include <utility>

namespace trellant {

namespace {

/// The fractions of a request's progress that the slots share.
constexpr double progressAtFirstSlot = 0.15;
constexpr double progressOfAllSlots = 0.8;

std::string trackID(OMFObject slot) {
    return "omf-track-" + std::to_string(number(slot));
}

}  // namespace

class Mapper::Assembly {
  public:
    Assembly(const OMFDocument& document, MappingPlaces places, TrackBuilder::Mobs mobs,
             std::unique_ptr<MediaSearch> search)
        : document_(document),
          places_(std::move(places)),
          mobs_(std::move(mobs)),
          search_(std::move(search)),
          notes_(places_.placesLosses),
          reads_(document),
          walk_(reads_, notes_, [this] { checkExpansion(); }),
          dataKinds_(reads_),
          slots_(reads_, dataKinds_),
          tracks_(reads_, mobs_, places_, *search_, dataKinds_, notes_, timeline_) {}

    [[nodiscard]] AAFTimeline makeTimeline(const Progress& progress);
    [[nodiscard]] const std::vector<std::string>& diagnostics() const noexcept {
        return notes_.diagnostics();
    }
    [[nodiscard]] const std::vector<LossPlace>& lossPlaces() const noexcept { return lossPlaces_; }

  private:
    void describeFile();
    void setClock();
    void mapSlots(const Progress& progress);
    void mapSlot(std::size_t index);
    /// Records what a document of an older model cannot tell of the whole file, or of a slot.
    void reportRemarks();
    void reportRemarks(std::size_t index);
    void finishTimeline();
    /// Throws OMFIOError unsupported when all audio slots together expand beyond bounds.
    void checkExpansion();
    AAFRational walkSlot(SegmentWalk& walk, std::size_t index, const AAFRational& editRate,
                         const ObjectPath& path, EventDrafts& drafts);

    const OMFDocument& document_;
    MappingPlaces places_;
    TrackBuilder::Mobs mobs_;
    std::unique_ptr<MediaSearch> search_;
    MappingNotes notes_;
    BoundedReads reads_;
    SegmentWalk walk_;
    DataKinds dataKinds_;
    CompositionSlots slots_;
    OMFObject composition_ = OMFObject::none;
    AAFTimeline timeline_;
    TrackBuilder tracks_;
    AAFRational compositionLength_;
    std::vector<LossPlace> lossPlaces_;
};

Mapper::Mapper(const OMFDocument& document, MappingPlaces places,
               const BeforeMapping& beforeMapping) {
    TrackBuilder::Mobs mobs{document.mobMap(), document.mediaDataMap()};
    auto search = std::make_unique<MediaSearch>(places.mediaSearchDirectory,
                                                places.extract ? places.workDirectory : "");
    if (beforeMapping) {
        const auto files = externalFiles(document, mobs.mobs, mobs.media, *search);
        beforeMapping(files);
        search->confineTo(files);
    }
    assembly_ =
        std::make_unique<Assembly>(document, std::move(places), std::move(mobs), std::move(search));
}
Mapper::~Mapper() = default;

AAFTimeline Mapper::makeTimeline(const Progress& progress) {
    return assembly_->makeTimeline(progress);
}

const std::vector<std::string>& Mapper::diagnostics() const noexcept {
    return assembly_->diagnostics();
}

const std::vector<LossPlace>& Mapper::lossPlaces() const noexcept {
    return assembly_->lossPlaces();
}

AAFTimeline Mapper::Assembly::makeTimeline(const Progress& progress) {
    composition_ = chooseComposition(document_);
    describeFile();
    slots_.read(composition_);
    timeline_.sourceAAF = fileURL(places_.sourcePath);
    setClock();
    timeline_.compositionName = reads_.string(composition_, {OMFProperty::mobName});
    reportRemarks();
    mapSlots(progress);
    if (timeline_.events.empty()) {
        throw OMFIOError::malformed("composition contains no resolvable audio Source Clips");
    }
    finishTimeline();
    return std::move(timeline_);
}

void Mapper::Assembly::describeFile() {
    const auto& footer = document_.bento().footer();
    const auto* order = document_.byteOrder() == OMFByteOrder::little ? "little" : "big";
    const auto& older = document_.olderModel();
    notes_.diagnose((older ? "OMF " + older->version() : "OMF2") + "/Bento " +
                    std::to_string(footer.majorVersion) + "." +
                    std::to_string(footer.minorVersion) + ", " + order + "-endian");
    notes_.diagnose("Composition Mob object " + std::to_string(number(composition_)) + " selected");
}

void Mapper::Assembly::setClock() {
    const auto clock = clockOf(reads_, slots_.slots(), slots_.segments());
    timeline_.clock = clock.clock;
    timeline_.hasNativeTimecode = clock.explicitProgramStart.has_value();
    timeline_.explicitProgramStart = clock.explicitProgramStart;
}

void Mapper::Assembly::finishTimeline() {
    timeline_.essences = tracks_.takeEssences();
    notes_.diagnose("Resolved " + std::to_string(timeline_.events.size()) + " event(s) to " +
                    std::to_string(timeline_.essences.size()) + " audio essence(s)");
    if (compositionLength_ > AAFRational::zero()) {
        timeline_.compositionLength = compositionLength_;
        notes_.diagnose("Composition length: " + secondsText(compositionLength_));
    }
    timeline_.unsupportedFeatures = notes_.takeUnsupported();
    auto places = notes_.takePlaces();
    tracks_.nameClips(places);
    lossPlaces_ = std::move(places);
}

void Mapper::Assembly::mapSlots(const Progress& progress) {
    const auto count = slots_.slots().size();
    for (std::size_t i = 0; i < count; ++i) {
        progress(progressAtFirstSlot +
                 progressOfAllSlots * static_cast<double>(i) / static_cast<double>(count));
        reportRemarks(i);
        if (slots_.isAudio(i)) {
            mapSlot(i);
        }
    }
}

void Mapper::Assembly::reportRemarks() {
    notes_.addRemarks({}, reads_.remarksOf(document_.headerObject()),
                      ObjectPath("HEAD", document_.headerObject()));
    notes_.addRemarks({}, reads_.remarksOf(composition_), ObjectPath("CMOB", composition_));
}

void Mapper::Assembly::reportRemarks(std::size_t index) {
    const auto slot = slots_.slots()[index];
    // The walk tells those of the segments of audio, with their places.
    const auto segment = slots_.isAudio(index) ? OMFObject::none : slots_.segments()[index];
    const auto ofSlot = reads_.remarksOf(slot);
    const auto ofSegment = reads_.remarksOf(segment);
    if (ofSlot.empty() && ofSegment.empty()) {
        return;
    }
    const ObjectPath compositionPath("CMOB", composition_);
    const ObjectPath path(compositionPath, "slot", slot);
    notes_.enterTrack({.slot = slot,
                       .index = static_cast<std::int64_t>(index),
                       .id = trackID(slot),
                       .name = slots_.trackName(index)});
    notes_.addRemarks({}, ofSlot, path);
    notes_.addRemarks({}, ofSegment,
                      ObjectPath(path, reads_.classID(segment).value_or("????"), segment));
}

void Mapper::Assembly::mapSlot(std::size_t index) {
    const auto slot = slots_.slots()[index];
    const ObjectPath compositionPath("CMOB", composition_);
    const ObjectPath path(compositionPath, "slot", slot);
    auto name = slots_.trackName(index);
    auto id = trackID(slot);
    notes_.enterTrack(
        {.slot = slot, .index = static_cast<std::int64_t>(index), .id = id, .name = name});
    auto label = name ? "\u201C" + *name + "\u201D" : std::to_string(index + 1);
    const auto editRate = slots_.usableEditRate(index);
    if (!editRate) {
        notes_.addLoss(
            {.kind = LossKind::trackWithoutEditRate},
            "whole audio track " + label + " dropped: the slot carries no usable edit rate", path);
        return;
    }
    EventDrafts drafts;
    const auto duration = walkSlot(walk_, index, *editRate, path, drafts);
    compositionLength_ = std::max(compositionLength_, duration);
    tracks_.build({index, std::move(id), path, *editRate, std::move(name), std::move(label)},
                  drafts, duration);
}

AAFRational Mapper::Assembly::walkSlot(SegmentWalk& walk, std::size_t index,
                                       const AAFRational& editRate, const ObjectPath& path,
                                       EventDrafts& drafts) {
    const auto& segments = slots_.segments();
    const ScopeFrame scope{.segments = &segments, .currentIndex = static_cast<std::int64_t>(index)};
    return walk.flatten(segments[index], {editRate, AAFRational::zero(), path, &scope, 0}, drafts);
}

void Mapper::Assembly::checkExpansion() {
    BoundedReads reads(document_);
    const auto stepsBefore = reads_.steps();
    reads.countSteps(stepsBefore);
    SegmentWalk counter(reads);
    const ObjectPath path("CMOB", composition_);
    EventDrafts none;
    for (std::size_t i = 0; i < slots_.slots().size(); ++i) {
        if (const auto editRate = slots_.usableEditRate(i); editRate && slots_.isAudio(i)) {
            walkSlot(counter, i, *editRate, path, none);
        }
    }
    reads_.countSteps(reads.steps() - stepsBefore);
}

}  // namespace trellant
