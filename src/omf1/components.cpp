// SPDX-License-Identifier: Apache-2.0
// What stands on tracks. A component counts in its own edit rate, which in real files is that of
// its track; one of another rate is silent, its length converted.
#include "presentation.h"

#include <trellant/model/rational.h>
#include <trellant/omf/names.h>

#include <algorithm>
#include <array>
#include <limits>

namespace trellant {

namespace {

/// How groups of endless length say so.
constexpr std::int32_t endless = std::numeric_limits<std::int32_t>::max();

/// Leaves room for what is added, within the 16 bytes of a class.
constexpr std::size_t longestCutClass = 9;

constexpr std::uint16_t timecodeKind = 3;
constexpr std::array<std::string_view, 4> dataKindNames{"omfi:data:None", "omfi:data:Picture",
                                                        "omfi:data:Sound", "omfi:data:Timecode"};

/// Classes that mean the same in both models.
bool isShared(std::string_view classID) {
    constexpr std::array<std::string_view, 11> shared{
        "SEQU", "SCLP", "FILL", "TCCP", "TRAN", "MDES", "TIFF", "IDAT", "WAVD", "AIFD", "MACL"};
    return std::find(shared.begin(), shared.end(), classID) != shared.end();
}

bool isOfOMF2(std::string_view classID) {
    return std::find(omfClassIDs.begin(), omfClassIDs.end(), classID) != omfClassIDs.end();
}

std::string rateText(OMFRationalValue rate) {
    return std::to_string(rate.numerator) + "/" + std::to_string(rate.denominator);
}

AAFRational factor(OMFRationalValue own, OMFRationalValue ofTrack) {
    return ofTrack.aaf() / own.aaf();
}

}  // namespace

void Presentation::addSequences() {
    for (const std::uint32_t id : objects_.container().objectIDs()) {
        const OMFObject sequence{id};
        if (objects_.classOf(sequence) != "SEQU") {
            continue;
        }
        const auto components = objects_.references(sequence, OlderProperty::sequence);
        if (!components) {
            remarkUnreadable(sequence, OlderProperty::sequence);
            continue;
        }
        table_.references(sequence, OMFProperty::sequenceComponents, *components);
        if (std::find(components->begin(), components->end(), OMFObject::none) !=
            components->end()) {
            remark(sequence, "a sequence lists a component that cannot be told");
        }
        auto rate = objects_.rate(sequence, OlderProperty::editRate);
        for (const OMFObject component : *components) {
            const auto own = objects_.rate(component, OlderProperty::editRate);
            if (own && !rate) {
                rate = own;
                sequenceRates_.emplace(sequence, *own);
            } else if (own && own->aaf() != rate->aaf()) {
                otherRates_.try_emplace(component, OtherRate{*own, *rate});
            }
        }
    }
}

std::optional<OMFRationalValue> Presentation::rateOf(OMFObject component) const {
    if (const auto own = objects_.rate(component, OlderProperty::editRate)) {
        return own;
    }
    const auto known = sequenceRates_.find(component);
    return known == sequenceRates_.end() ? std::nullopt : std::optional(known->second);
}

std::string Presentation::presentedClass(OMFObject component, const std::string& own) const {
    if (otherRates_.contains(component) && own != "FILL") {
        return own.substr(0, longestCutClass) + " (rate)";
    }
    return isShared(own) || !isOfOMF2(own) ? own : own + " (OMF 1.x)";
}

void Presentation::addComponent(OMFObject component, const std::string& classID) {
    const std::string presented = presentedClass(component, classID);
    table_.classID(component, presented);
    addKind(component, classID);
    if (classID != "SEQU" && classID != "TCCP") {
        addLength(component, classID);
    }
    if (presented != classID && presented != "FILL") {
        return;
    }
    if (objects_.has(component, OlderProperty::effectID) ||
        objects_.has(component, OlderProperty::precomputed)) {
        remark(component, "an effect on a component of class " + classID + " is not rendered",
               LossKind::effectNotApplied);
    }
    if (objects_.has(component, OlderProperty::attributes)) {
        remark(component, "the attributes of a component of class " + classID + " are not read");
    }
    if (classID == "SCLP") {
        addClip(component);
    } else if (classID == "TCCP") {
        addTimecode(component);
    } else if (classID == "TRAN") {
        addTransition(component);
    }
}

void Presentation::addKind(OMFObject component, const std::string& classID) {
    auto kind = objects_.shortNumber(component, OlderProperty::trackKind);
    if (!kind && classID == "TCCP") {
        kind = timecodeKind;
    }
    if (!kind) {
        return;
    }
    const auto [known, isNew] = dataKinds_.try_emplace(*kind, OMFObject::none);
    if (isNew) {
        known->second = table_.newObject();
        table_.classID(known->second, "DDEF");
        table_.text(known->second, OMFProperty::dataKindID,
                    *kind < dataKindNames.size() ? std::string(dataKindNames.at(*kind))
                                                 : "track kind " + std::to_string(*kind));
    }
    table_.reference(component, OMFProperty::componentDataKind, known->second);
    if (*kind >= dataKindNames.size()) {
        remark(component, "track kind " + std::to_string(*kind) + " is not known");
    }
}

std::optional<std::int64_t> Presentation::lengthOf(OMFObject component) const {
    auto length = objects_.longNumber(component, OlderProperty::clipLength);
    if (!length) {
        length = objects_.longNumber(component, OlderProperty::groupLength);
        length = length == endless ? std::nullopt : length;
    }
    return length && *length >= 0 ? std::optional<std::int64_t>(*length) : std::nullopt;
}

void Presentation::addLength(OMFObject component, const std::string& classID) {
    const auto length = lengthOf(component);
    const bool isComponent = objects_.has(component, OlderProperty::trackKind) ||
                             classID == "SCLP" || classID == "FILL" || classID == "TRAN";
    if (!length) {
        if (isComponent) {
            remark(component, "the length of a component of class " + classID +
                                  " cannot be read: it counts as 0");
        }
        return;
    }
    const auto other = otherRates_.find(component);
    if (other == otherRates_.end()) {
        table_.number32(component, OMFProperty::componentLength,
                        static_cast<std::uint32_t>(*length));
        return;
    }
    const auto& [own, ofTrack] = other->second;
    const AAFRational converted = AAFRational(*length) * factor(own, ofTrack);
    table_.number64(component, OMFProperty::componentLength, converted.roundedInt64());
    if (classID != "FILL" || converted != AAFRational(converted.roundedInt64())) {
        remark(component, "a component of class " + classID + " counts in " + rateText(own) +
                              " edit units per second, its sequence in " + rateText(ofTrack));
    }
}

void Presentation::addClip(OMFObject clip) {
    copy(clip, OMFProperty::componentName, clip, OlderProperty::name);
    if (const auto source = objects_.uid(clip, OlderProperty::sourceID)) {
        table_.uid(clip, OMFProperty::clipSourceID, *source);
    }
    addSourceTrack(clip);
    copyLong(clip, OlderProperty::sourcePosition, OMFProperty::clipStartTime);
    addFade(clip, OlderProperty::fadeInLength, OMFProperty::clipFadeInLength,
            OlderProperty::fadeInType, OMFProperty::clipFadeInType);
    addFade(clip, OlderProperty::fadeOutLength, OMFProperty::clipFadeOutLength,
            OlderProperty::fadeOutType, OMFProperty::clipFadeOutType);
}

void Presentation::addFade(OMFObject clip, OlderProperty length, OMFProperty presentedLength,
                           OlderProperty type, OMFProperty presentedType) {
    if (!objects_.has(clip, length)) {
        return;
    }
    copyLong(clip, length, presentedLength);
    if (const auto number = objects_.longNumber(clip, type)) {
        table_.number32(clip, presentedType, static_cast<std::uint32_t>(*number));
    } else if (const auto shorter = objects_.shortNumber(clip, type)) {
        table_.number32(clip, presentedType, *shorter);
    } else {
        remarkUnreadable(clip, type);
    }
}

void Presentation::addTimecode(OMFObject timecode) {
    copyLong(timecode, OlderProperty::timecodeStart, OMFProperty::timecodeStart);
    if (const auto frames = objects_.shortNumber(timecode, OlderProperty::timecodeFPS)) {
        table_.number16(timecode, OMFProperty::timecodeFPS, *frames);
    } else {
        remarkUnreadable(timecode, OlderProperty::timecodeFPS);
    }
    const auto flags = objects_.longNumber(timecode, OlderProperty::timecodeFlags);
    if (!flags) {
        remarkUnreadable(timecode, OlderProperty::timecodeFlags);
        return;
    }
    table_.number16(timecode, OMFProperty::timecodeDrop, *flags == 1 ? 1 : 0);
    if (*flags != 0 && *flags != 1) {
        remark(timecode, "timecode flags " + std::to_string(*flags) +
                             " are not known: labels count without drop-frame");
    }
}

void Presentation::addTransition(OMFObject transition) {
    const auto length = lengthOf(transition);
    const auto cut = objects_.longNumber(transition, OlderProperty::cutPoint);
    if (!length) {
        return;
    }
    if (!cut || *cut < 0 || *cut > *length) {
        remarkUnreadable(transition, OlderProperty::cutPoint);
        return;
    }
    table_.number32(transition, OMFProperty::transitionCutPoint, static_cast<std::uint32_t>(*cut));
}

void Presentation::copyLong(OMFObject object, OlderProperty property, OMFProperty presented) {
    if (const auto value = objects_.longNumber(object, property)) {
        table_.number32(object, presented, static_cast<std::uint32_t>(*value));
    } else {
        remarkUnreadable(object, property);
    }
}

}  // namespace trellant
