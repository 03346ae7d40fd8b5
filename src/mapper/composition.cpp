// SPDX-License-Identifier: Apache-2.0
#include "composition.h"

#include <trellant/io/errors.h>
#include <trellant/mapper/compositions.h>

#include <algorithm>

namespace trellant {

namespace {

std::optional<OMFObject> firstComposition(const BoundedReads& reads,
                                          const std::vector<OMFObject>& mobs) {
    const auto found = std::find_if(mobs.begin(), mobs.end(), [&](OMFObject mob) {
        return reads.classOf(mob) == OMFClass::compositionMob;
    });
    if (found == mobs.end()) {
        return std::nullopt;
    }
    return *found;
}

std::optional<CompositionClock> clockOfTimecode(const BoundedReads& reads, OMFObject slot,
                                                OMFObject timecode) {
    const auto storedFPS = reads.int16(timecode, {OMFProperty::timecodeFPS}).value_or(25);
    const std::int64_t fps = storedFPS < 2 ? 1 : storedFPS;
    const bool drop = reads.int16(timecode, {OMFProperty::timecodeDrop}).value_or(0) != 0;
    if (drop && fps != 30 && fps != 60) {
        return std::nullopt;
    }
    const AAFRational exactRate = drop ? AAFRational(fps * 1000, 1001) : AAFRational(fps);
    AAFRational editRate = exactRate;
    AAFRational timecodeRate = exactRate;
    if (const auto stored = reads.rational(slot, {OMFProperty::slotEditRate})) {
        editRate = stored->aaf();
        if (editRate.numerator() / editRate.denominator() == fps) {
            timecodeRate = editRate;
        }
    }
    const AAFTimecodeRate rate(timecodeRate, fps, drop);
    const auto start =
        std::max<std::int64_t>(reads.int64(timecode, {OMFProperty::timecodeStart}).value_or(0), 0);
    const auto address = AAFTimecodeAddress::fromAbsoluteFrameNumber(start, rate);
    return CompositionClock{
        .clock = {.editRate = editRate, .timecodeRate = rate, .timelineZero = address},
        .explicitProgramStart = address};
}

AAFComposition describe(BoundedReads& reads, OMFObject object) {
    AAFComposition result{.object = object,
                          .name = reads.string(object, {OMFProperty::mobName}),
                          .slotCount = reads.objectRefs(object, {OMFProperty::mobSlots}).size()};
    if (const auto id = reads.uid(object, {OMFProperty::mobID})) {
        result.mobID = id->description();
    }
    return result;
}

}  // namespace

OMFObject chooseComposition(const OMFDocument& document) {
    // On bounds of its own, which two lists never reach.
    BoundedReads reads(document);
    const auto header = document.headerObject();
    for (const auto list : {OMFProperty::headPrimaryMobs, OMFProperty::headMobs}) {
        if (const auto mob = firstComposition(reads, reads.objectRefs(header, {list}))) {
            return *mob;
        }
    }
    const auto compositions = reads.objects("CMOB");
    if (compositions.empty()) {
        throw OMFIOError::malformed("no Composition Mob (CMOB) found");
    }
    return compositions.front();
}

std::vector<AAFComposition> compositions(const OMFDocument& document) {
    auto objects = document.objects("CMOB");
    if (objects.empty()) {
        return {};
    }
    const auto chosen = std::find(objects.begin(), objects.end(), chooseComposition(document));
    std::rotate(objects.begin(), chosen, chosen + 1);

    BoundedReads reads(document);
    std::vector<AAFComposition> result;
    result.reserve(objects.size());
    for (const auto object : objects) {
        result.push_back(describe(reads, object));
    }
    result.front().isRead = true;
    return result;
}

CompositionClock clockOf(const BoundedReads& reads, const std::vector<OMFObject>& slots,
                         const std::vector<OMFObject>& segments) {
    const CompositionClock standard{
        .clock = {.editRate = AAFRational(25),
                  .timecodeRate = AAFTimecodeRate::fps25(),
                  .timelineZero = AAFTimecodeAddress(0, 0, 0, 0, AAFTimecodeRate::fps25())},
        .explicitProgramStart = std::nullopt};
    const auto timecode = std::find_if(segments.begin(), segments.end(), [&](OMFObject segment) {
        return segment != OMFObject::none && reads.classOf(segment) == OMFClass::timecode;
    });
    if (timecode == segments.end()) {
        return standard;
    }
    const auto slot = slots[static_cast<std::size_t>(timecode - segments.begin())];
    return clockOfTimecode(reads, slot, *timecode).value_or(standard);
}

void CompositionSlots::read(OMFObject composition) {
    slots_ = reads_.objectRefs(composition, {OMFProperty::mobSlots});
    segments_.reserve(slots_.size());
    for (const auto slot : slots_) {
        segments_.push_back(
            reads_.objectRef(slot, {OMFProperty::slotSegment}).value_or(OMFObject::none));
    }
}

bool CompositionSlots::isAudio(std::size_t index) const {
    return segments_[index] != OMFObject::none && dataKinds_.mayBeAudio(segments_[index]);
}

std::optional<AAFRational> CompositionSlots::usableEditRate(std::size_t index) const {
    const auto stored = reads_.rational(slots_[index], {OMFProperty::slotEditRate});
    if (!stored || stored->aaf().numerator() < 1) {
        return std::nullopt;
    }
    return stored->aaf();
}

std::optional<std::string> CompositionSlots::trackName(std::size_t index) const {
    const auto description = reads_.objectRef(slots_[index], {OMFProperty::slotTrackDesc});
    return description ? reads_.string(*description, {OMFProperty::trackName}) : std::nullopt;
}

}  // namespace trellant
