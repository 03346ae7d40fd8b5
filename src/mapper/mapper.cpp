// The assembly of the timeline: slot by slot, draft by draft.
#include "bounded_reads.h"
#include "clip_names.h"
#include "composition.h"
#include "data_kinds.h"
#include "essences.h"
#include "mapping_notes.h"
#include "segment_walk.h"
#include "source_resolution.h"
#include "track_pan.h"

#include <trellant/base/text.h>
#include <trellant/base/url.h>
#include <trellant/io/errors.h>
#include <trellant/mapper/mapper.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <unordered_map>

namespace trellant {

namespace {

/// The fractions of a request's progress that the slots share.
constexpr double progressAtFirstSlot = 0.15;
constexpr double progressOfAllSlots = 0.8;

std::string fixedPoint(double value, int decimals) {
    // Room for the largest time: 20 digits, point, decimals.
    std::array<char, 64> text{};
    static_cast<void>(std::snprintf(text.data(), text.size(), "%.*f", decimals, value));
    return text.data();
}

std::string secondsText(const AAFRational& seconds) {
    return fixedPoint(seconds.doubleValue(), 3) + " s";
}

std::string trackIDOf(OMFObject slot) {
    return "omf-track-" + std::to_string(number(slot));
}

}  // namespace

class Mapper::Assembly {
  public:
    Assembly(const OMFDocument& document, MappingPlaces places)
        : doc_(document),
          places_(std::move(places)),
          mobMap_(document.mobMap()),
          mediaMap_(document.mediaDataMap()),
          notes_(places_.placesLosses),
          reads_(document),
          walk_(reads_, notes_, [this] { checkExpansion(); }),
          dataKinds_(reads_),
          sources_(reads_, mobMap_, dataKinds_, notes_),
          essences_(reads_, mediaMap_, places_, notes_),
          clipNames_(reads_) {}

    [[nodiscard]] AAFTimeline makeTimeline(const Progress& progress);
    [[nodiscard]] const std::vector<std::string>& diagnostics() const noexcept {
        return notes_.diagnostics();
    }
    [[nodiscard]] const std::vector<LossPlace>& lossPlaces() const noexcept { return lossPlaces_; }

  private:
    /// A slot of the composition on its way to a track.
    struct Slot {
        std::size_t index;
        OMFObject object;
        const ObjectPath& path;
        /// Edit units per second, greater than zero.
        AAFRational editRate;
        std::optional<std::string> name;
        /// The name in quotes, or the slot's number counted from 1.
        std::string label;
    };

    void describeFile();
    void readSlots();
    void mapSlots(const Progress& progress);
    void mapSlot(std::size_t index);
    void mapAudioSlot(const Slot& slot);
    /// Throws OMFIOError unsupported when all audio slots together expand beyond bounds.
    void checkExpansion();
    AAFRational walkSlot(SegmentWalk& walk, std::size_t index, const AAFRational& editRate,
                         const ObjectPath& path, EventDrafts& drafts);
    [[nodiscard]] bool isAudioSlot(std::size_t index);
    /// Absent when the slot has none that can measure: missing, zero or negative.
    [[nodiscard]] std::optional<AAFRational> usableEditRate(std::size_t index) const;
    void buildTrack(const Slot& slot, EventDrafts& drafts, const AAFRational& duration);
    /// Appends the draft's event; false, with a loss recorded, when its audio cannot be resolved.
    bool buildEvent(const Slot& slot, AAFChannelRole role, EventDraft& draft);
    void nameClips(std::vector<LossPlace>& places);

    const OMFDocument& doc_;
    MappingPlaces places_;
    OMFDocument::MobMap mobMap_;
    OMFDocument::MobMap mediaMap_;
    MappingNotes notes_;
    BoundedReads reads_;
    SegmentWalk walk_;
    DataKinds dataKinds_;
    SourceResolution sources_;
    Essences essences_;
    ClipNames clipNames_;
    OMFObject composition_ = OMFObject::none;
    std::vector<OMFObject> slots_;
    /// By slot; none where a slot has no segment.
    std::vector<OMFObject> segments_;
    AAFTimeline timeline_;
    AAFRational compositionLength_;
    std::vector<LossPlace> lossPlaces_;
};

Mapper::Mapper(const OMFDocument& document, MappingPlaces places)
    : assembly_(std::make_unique<Assembly>(document, std::move(places))) {}
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
    composition_ = chooseComposition(doc_);
    describeFile();
    readSlots();
    const auto clock = clockOf(doc_, slots_, segments_);
    timeline_.sourceAAF = fileURL(places_.sourcePath);
    timeline_.clock = clock.clock;
    timeline_.hasNativeTimecode = clock.explicitProgramStart.has_value();
    timeline_.explicitProgramStart = clock.explicitProgramStart;
    timeline_.compositionName = reads_.string(composition_, {OMFProperty::mobName});

    mapSlots(progress);
    if (timeline_.events.empty()) {
        throw OMFIOError::malformed("composition contains no resolvable audio Source Clips");
    }
    timeline_.essences = essences_.takeSorted();
    notes_.diagnose("Resolved " + std::to_string(timeline_.events.size()) + " event(s) to " +
                    std::to_string(timeline_.essences.size()) + " audio essence(s)");
    if (compositionLength_ > AAFRational::zero()) {
        timeline_.compositionLength = compositionLength_;
        notes_.diagnose("Composition length: " + secondsText(compositionLength_));
    }
    timeline_.unsupportedFeatures = notes_.takeUnsupported();
    auto places = notes_.takePlaces();
    nameClips(places);
    lossPlaces_ = std::move(places);
    return std::move(timeline_);
}

void Mapper::Assembly::describeFile() {
    const auto& footer = doc_.bento().footer();
    const auto* order = doc_.byteOrder() == OMFByteOrder::little ? "little" : "big";
    notes_.diagnose("OMF2/Bento " + std::to_string(footer.majorVersion) + "." +
                    std::to_string(footer.minorVersion) + ", " + order + "-endian");
    notes_.diagnose("Composition Mob object " + std::to_string(number(composition_)) + " selected");
}

void Mapper::Assembly::readSlots() {
    slots_ = reads_.objectRefs(composition_, {OMFProperty::mobSlots});
    segments_.reserve(slots_.size());
    for (const auto slot : slots_) {
        segments_.push_back(
            doc_.objectRef(slot, {OMFProperty::slotSegment}).value_or(OMFObject::none));
    }
}

void Mapper::Assembly::mapSlots(const Progress& progress) {
    for (std::size_t i = 0; i < slots_.size(); ++i) {
        progress(progressAtFirstSlot +
                 progressOfAllSlots * static_cast<double>(i) / static_cast<double>(slots_.size()));
        mapSlot(i);
    }
}

void Mapper::Assembly::mapSlot(std::size_t index) {
    if (!isAudioSlot(index)) {
        return;
    }
    const auto slot = slots_[index];
    const ObjectPath compositionPath("CMOB", composition_);
    const ObjectPath path(compositionPath, "slot", slot);
    const auto description = doc_.objectRef(slot, {OMFProperty::slotTrackDesc});
    auto name = description ? reads_.string(*description, {OMFProperty::trackName}) : std::nullopt;
    notes_.enterTrack({.slot = slot,
                       .index = static_cast<std::int64_t>(index),
                       .id = trackIDOf(slot),
                       .name = name});
    auto label = name ? "\u201C" + *name + "\u201D" : std::to_string(index + 1);
    const auto editRate = usableEditRate(index);
    if (!editRate) {
        notes_.addLoss(
            {.kind = LossKind::trackWithoutEditRate},
            "whole audio track " + label + " dropped: the slot carries no usable edit rate", path);
        return;
    }
    mapAudioSlot({index, slot, path, *editRate, std::move(name), std::move(label)});
}

void Mapper::Assembly::mapAudioSlot(const Slot& slot) {
    EventDrafts drafts;
    const auto duration = walkSlot(walk_, slot.index, slot.editRate, slot.path, drafts);
    compositionLength_ = std::max(compositionLength_, duration);
    buildTrack(slot, drafts, duration);
}

AAFRational Mapper::Assembly::walkSlot(SegmentWalk& walk, std::size_t index,
                                       const AAFRational& editRate, const ObjectPath& path,
                                       EventDrafts& drafts) {
    const ScopeFrame scope{.segments = &segments_,
                           .currentIndex = static_cast<std::int64_t>(index)};
    return walk.flatten(segments_[index], {editRate, AAFRational::zero(), path, &scope, 0}, drafts);
}

void Mapper::Assembly::checkExpansion() {
    BoundedReads reads(doc_);
    SegmentWalk counter(reads);
    const ObjectPath path("CMOB", composition_);
    EventDrafts none;
    for (std::size_t i = 0; i < slots_.size(); ++i) {
        if (const auto editRate = usableEditRate(i); editRate && isAudioSlot(i)) {
            walkSlot(counter, i, *editRate, path, none);
        }
    }
}

void Mapper::Assembly::buildTrack(const Slot& slot, EventDrafts& drafts,
                                  const AAFRational& duration) {
    const auto pan = trackPan(drafts, slot.name);
    const LossRange whole{AAFRational::zero(), duration};
    if (pan.differs) {
        notes_.addUnsupported(
            {.kind = LossKind::panDiffers, .range = whole},
            "per-clip pan values differ on one track and cannot be expressed as a track pan",
            slot.path);
    }
    std::size_t built = 0;
    if (const auto most = timeline_.events.size() + drafts.size();
        most > timeline_.events.capacity()) {
        timeline_.events.reserve(std::max(most, 2 * timeline_.events.capacity()));
    }
    for (auto& draft : drafts) {
        if (buildEvent(slot, pan.role, draft)) {
            ++built;
        }
    }
    if (built == 0 && !drafts.empty()) {
        notes_.addLoss({.kind = LossKind::trackWithoutAudio, .range = whole},
                       "whole audio track " + slot.label + " dropped: none of its " +
                           std::to_string(drafts.size()) + " clip(s) could be resolved",
                       slot.path);
        return;
    }
    timeline_.tracks.push_back({.id = trackIDOf(slot.object),
                                .index = static_cast<std::int64_t>(slot.index),
                                .name = slot.name,
                                .fixedPan = pan.fixedPan});
    notes_.diagnose("Track " + slot.name.value_or(std::to_string(slot.index + 1)) + ": " +
                    std::to_string(built) + " audio event(s), " + secondsText(duration) +
                    (pan.fixedPan ? ", pan " + fixedPoint(*pan.fixedPan, 2) : ""));
}

bool Mapper::Assembly::buildEvent(const Slot& slot, AAFChannelRole role, EventDraft& draft) {
    notes_.enterClip(draft.object, {draft.timelineStart, draft.duration});
    const auto source =
        sources_.resolveSourceClip(draft.object, slot.editRate, draft.sourceTrimStart);
    const auto* essence = source ? essences_.makeEssence(*source) : nullptr;
    if (essence == nullptr) {
        notes_.addLoss(notes_.lossOfClip(notes_.reasonKind),
                       "audio clip dropped: " +
                           notes_.verlustGrund.value_or("the source could not be resolved"),
                       ObjectPath(slot.path, "SCLP", draft.object));
        return false;
    }
    if (role == AAFChannelRole::mono && essence->channelCount != 1) {
        role = AAFChannelRole::unknown;
    }
    timeline_.events.push_back({.id = "omf-event-" + std::to_string(number(draft.object)) + "-" +
                                      std::to_string(timeline_.events.size()),
                                .trackID = trackIDOf(slot.object),
                                .essenceID = essence->id,
                                .clipName = clipNames_.nameOf(draft.object),
                                .timelineStart = draft.timelineStart,
                                .duration = draft.duration,
                                .sourceStartSample = std::max<std::int64_t>(
                                    (source->start * essence->sampleRate).roundedInt64(), 0),
                                .sourceChannel = source->channel,
                                .channelRole = role,
                                .fixedClipGain = draft.fixedClipGain,
                                .clipGainAutomation = std::move(draft.clipGainAutomation),
                                .fadeIn = std::move(draft.fadeIn),
                                .fadeOut = std::move(draft.fadeOut)});
    return true;
}

void Mapper::Assembly::nameClips(std::vector<LossPlace>& places) {
    std::unordered_map<OMFObject, Boxed<std::string>> names;
    for (auto& place : places) {
        if (place.clip == OMFObject::none) {
            continue;
        }
        const auto [known, isNew] = names.try_emplace(place.clip);
        if (isNew) {
            if (auto name = clipNames_.nameOf(place.clip)) {
                known->second = std::move(*name);
            }
        }
        place.clipName = known->second;
    }
}

std::optional<AAFRational> Mapper::Assembly::usableEditRate(std::size_t index) const {
    const auto stored = doc_.rational(slots_[index], {OMFProperty::slotEditRate});
    if (!stored || stored->aaf().numerator() < 1) {
        return std::nullopt;
    }
    return stored->aaf();
}

bool Mapper::Assembly::isAudioSlot(std::size_t index) {
    return segments_[index] != OMFObject::none && dataKinds_.mayBeAudio(segments_[index]);
}

}  // namespace trellant
