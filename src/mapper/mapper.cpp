// The assembly of the timeline: slot by slot, draft by draft.
#include "clip_names.h"
#include "composition.h"
#include "essences.h"
#include "mapping_notes.h"
#include "segment_walk.h"
#include "source_resolution.h"
#include "track_pan.h"

#include <trellant/io/errors.h>
#include <trellant/io/text.h>
#include <trellant/mapper/mapper.h>
#include <trellant/model/url.h>

#include <algorithm>
#include <array>
#include <cstdio>

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

}  // namespace

class Mapper::Assembly {
  public:
    Assembly(const OMFDocument& document, MappingPlaces places)
        : doc_(document),
          places_(std::move(places)),
          mobMap_(document.mobMap()),
          mediaMap_(document.mediaDataMap()),
          walk_(document, notes_),
          sources_(document, mobMap_, notes_),
          essences_(document, mediaMap_, places_, notes_),
          clipNames_(document) {}

    [[nodiscard]] AAFTimeline makeTimeline(const Progress& progress);
    [[nodiscard]] const std::vector<std::string>& diagnostics() const noexcept {
        return notes_.diagnostics();
    }

  private:
    /// A slot of the composition on its way to a track.
    struct Slot {
        std::size_t index;
        OMFObject object;
        OMFObject segment;
        const ObjectPath& path;
        /// Edit units per second, greater than zero.
        AAFRational editRate;
        std::optional<std::string> name;
        /// The name in quotes, or the slot's number counted from 1.
        std::string label;
    };

    void describeFile(OMFObject composition);
    void mapSlots(OMFObject composition, const std::vector<OMFObject>& slots,
                  const Progress& progress);
    void mapSlot(std::size_t index, OMFObject slot, const ObjectPath& path,
                 const std::vector<OMFObject>& segments);
    void mapAudioSlot(const Slot& slot, const std::vector<OMFObject>& segments);
    void buildTrack(const Slot& slot, EventDrafts& drafts, const AAFRational& duration);
    /// Appends the draft's event; false, with a loss recorded, when its audio cannot be resolved.
    bool buildEvent(const Slot& slot, AAFChannelRole role, EventDraft& draft);
    [[nodiscard]] bool isAudio(OMFObject segment);
    [[nodiscard]] bool isAudioKind(OMFObject dataKind) const;

    const OMFDocument& doc_;
    MappingPlaces places_;
    OMFDocument::MobMap mobMap_;
    OMFDocument::MobMap mediaMap_;
    MappingNotes notes_;
    SegmentWalk walk_;
    SourceResolution sources_;
    Essences essences_;
    ClipNames clipNames_;
    AAFTimeline timeline_;
    AAFRational compositionLength_;
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

AAFTimeline Mapper::Assembly::makeTimeline(const Progress& progress) {
    const auto composition = chooseComposition(doc_);
    describeFile(composition);
    const auto slots = doc_.objectRefs(composition, {OMFProperty::mobSlots});
    const auto clock = clockOf(doc_, slots);
    timeline_.sourceAAF = fileURL(places_.sourcePath);
    timeline_.clock = clock.clock;
    timeline_.hasNativeTimecode = clock.explicitProgramStart.has_value();
    timeline_.explicitProgramStart = clock.explicitProgramStart;
    timeline_.compositionName = doc_.string(composition, {OMFProperty::mobName});

    mapSlots(composition, slots, progress);
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
    return std::move(timeline_);
}

void Mapper::Assembly::describeFile(OMFObject composition) {
    const auto& footer = doc_.bento().footer();
    const auto* order = doc_.byteOrder() == OMFByteOrder::little ? "little" : "big";
    notes_.diagnose("OMF2/Bento " + std::to_string(footer.majorVersion) + "." +
                    std::to_string(footer.minorVersion) + ", " + order + "-endian");
    notes_.diagnose("Composition Mob object " + std::to_string(number(composition)) + " selected");
}

void Mapper::Assembly::mapSlots(OMFObject composition, const std::vector<OMFObject>& slots,
                                const Progress& progress) {
    std::vector<OMFObject> segments;
    segments.reserve(slots.size());
    for (const auto slot : slots) {
        segments.push_back(
            doc_.objectRef(slot, {OMFProperty::slotSegment}).value_or(OMFObject::none));
    }
    const ObjectPath compositionPath("CMOB", composition);
    for (std::size_t i = 0; i < slots.size(); ++i) {
        progress(progressAtFirstSlot +
                 progressOfAllSlots * static_cast<double>(i) / static_cast<double>(slots.size()));
        mapSlot(i, slots[i], ObjectPath(compositionPath, "slot", slots[i]), segments);
    }
}

void Mapper::Assembly::mapSlot(std::size_t index, OMFObject slot, const ObjectPath& path,
                               const std::vector<OMFObject>& segments) {
    const auto segment = segments[index];
    if (segment == OMFObject::none || !isAudio(segment)) {
        return;
    }
    const auto description = doc_.objectRef(slot, {OMFProperty::slotTrackDesc});
    auto name = description ? doc_.string(*description, {OMFProperty::trackName}) : std::nullopt;
    auto label = name ? "\u201C" + *name + "\u201D" : std::to_string(index + 1);
    const auto editRate = doc_.rational(slot, {OMFProperty::slotEditRate});
    if (!editRate || editRate->aaf().numerator() < 1) {
        notes_.addLoss(
            "whole audio track " + label + " dropped: the slot carries no usable edit rate",
            path.text());
        return;
    }
    mapAudioSlot({index, slot, segment, path, editRate->aaf(), std::move(name), std::move(label)},
                 segments);
}

void Mapper::Assembly::mapAudioSlot(const Slot& slot, const std::vector<OMFObject>& segments) {
    const ScopeFrame scope{.segments = &segments,
                           .currentIndex = static_cast<std::int64_t>(slot.index)};
    EventDrafts drafts;
    const auto duration = walk_.flatten(
        slot.segment, {slot.editRate, AAFRational::zero(), slot.path, &scope, 0}, drafts);
    compositionLength_ = std::max(compositionLength_, duration);
    buildTrack(slot, drafts, duration);
}

void Mapper::Assembly::buildTrack(const Slot& slot, EventDrafts& drafts,
                                  const AAFRational& duration) {
    const auto pan = trackPan(drafts, slot.name);
    if (pan.differs) {
        notes_.addUnsupported(
            "per-clip pan values differ on one track and cannot be expressed as a track pan",
            slot.path.text());
    }
    std::size_t built = 0;
    for (auto& draft : drafts) {
        if (buildEvent(slot, pan.role, draft)) {
            ++built;
        }
    }
    if (built == 0 && !drafts.empty()) {
        notes_.addLoss("whole audio track " + slot.label + " dropped: none of its " +
                           std::to_string(drafts.size()) + " clip(s) could be resolved",
                       slot.path.text());
        return;
    }
    timeline_.tracks.push_back({.id = "omf-track-" + std::to_string(number(slot.object)),
                                .index = static_cast<std::int64_t>(slot.index),
                                .name = slot.name,
                                .fixedPan = pan.fixedPan});
    notes_.diagnose("Track " + slot.name.value_or(std::to_string(slot.index + 1)) + ": " +
                    std::to_string(built) + " audio event(s), " + secondsText(duration) +
                    (pan.fixedPan ? ", pan " + fixedPoint(*pan.fixedPan, 2) : ""));
}

bool Mapper::Assembly::buildEvent(const Slot& slot, AAFChannelRole role, EventDraft& draft) {
    notes_.verlustGrund.reset();
    const auto source =
        sources_.resolveSourceClip(draft.object, slot.editRate, draft.sourceTrimStart);
    const auto* essence = source ? essences_.makeEssence(*source) : nullptr;
    if (essence == nullptr) {
        notes_.addLoss("audio clip dropped: " +
                           notes_.verlustGrund.value_or("the source could not be resolved"),
                       ObjectPath(slot.path, "SCLP", draft.object).text());
        return false;
    }
    if (role == AAFChannelRole::mono && essence->channelCount != 1) {
        role = AAFChannelRole::unknown;
    }
    AAFClipEvent event{.id = "omf-event-" + std::to_string(number(draft.object)) + "-" +
                             std::to_string(timeline_.events.size()),
                       .trackID = "omf-track-" + std::to_string(number(slot.object)),
                       .essenceID = essence->id,
                       .clipName = clipNames_.nameOf(draft.object),
                       .timelineStart = draft.timelineStart,
                       .duration = draft.duration,
                       .sourceStartSample = std::max<std::int64_t>(
                           (source->start * essence->sampleRate).roundedInt64(), 0),
                       .sourceChannel = source->channel,
                       .channelRole = role,
                       .fixedClipGain = draft.fixedClipGain,
                       .fadeIn = std::move(draft.fadeIn),
                       .fadeOut = std::move(draft.fadeOut)};
    if (draft.clipGainAutomation) {
        event.clipGainAutomation = *draft.clipGainAutomation;
    }
    timeline_.events.push_back(std::move(event));
    return true;
}

bool Mapper::Assembly::isAudio(OMFObject segment) {
    const auto dataKind = doc_.objectRef(segment, {OMFProperty::componentDataKind});
    return !dataKind || isAudioKind(*dataKind);
}

bool Mapper::Assembly::isAudioKind(OMFObject dataKind) const {
    const auto id = doc_.string(dataKind, {OMFProperty::dataKindID});
    if (!id) {
        // Writers leave the kind out of sound-only compositions: better to keep too much.
        return true;
    }
    const auto lower = lowerCased(*id);
    return lower.find("sound") != std::string::npos || lower.find("audio") != std::string::npos;
}

}  // namespace trellant
