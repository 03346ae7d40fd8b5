// SPDX-License-Identifier: Apache-2.0
#include "property_values.h"

#include <algorithm>
#include <array>
#include <limits>
#include <trellant_testing/aiff_builder.h>
#include <trellant_testing/byte_writer.h>
#include <trellant_testing/wave_builder.h>

namespace trellant::fuzzing {

namespace {

using testing::bytesOf;
using testing::ByteWriter;
using testing::ObjectID;

/// Classes of objects that the program only follows, beside those that it tells apart.
constexpr std::array<std::string_view, 8> furtherClasses{"DDEF", "EDEF", "ESLT", "CTLP",
                                                         "MSLT", "TRKD", "ATTB", "ATTR"};

constexpr std::array<std::string_view, 22> texts{"",
                                                 "Name",
                                                 "Kick.wav",
                                                 "Snare.wav",
                                                 "../../Tone.wav",
                                                 "/",
                                                 "..",
                                                 "a\nb\x7f\x1b[1m",
                                                 "\xe2\x80\xae\xc3\xa9\xcc\x81",
                                                 "\xff\xfe\xc3",
                                                 "C:\\media\\TOM.AIF",
                                                 "file:///media/Snare.wav",
                                                 "file://localhost/%00%zz",
                                                 "FILE:Tone.wav",
                                                 "omfi:data:Sound",
                                                 "omfi:data:StereoSound",
                                                 "omfi:data:Timecode",
                                                 "omfi:data:Picture",
                                                 "omfi:effect:MonoAudioGain",
                                                 "omfi:effect:MonoAudioPan",
                                                 "omfi:effect:SimpleMonoAudioDissolve",
                                                 "omfi:effect:StereoAudioGain"};

constexpr std::array<std::int64_t, 24> numbers{-3,
                                               -2,
                                               -1,
                                               0,
                                               1,
                                               2,
                                               3,
                                               24,
                                               25,
                                               30,
                                               60,
                                               100,
                                               48'000,
                                               30'000,
                                               1'001,
                                               90'000,
                                               32'767,
                                               65'535,
                                               std::numeric_limits<std::int32_t>::max(),
                                               std::numeric_limits<std::int32_t>::min(),
                                               std::numeric_limits<std::uint32_t>::max(),
                                               std::numeric_limits<std::int64_t>::max() / 48'000,
                                               std::numeric_limits<std::int64_t>::max(),
                                               std::numeric_limits<std::int64_t>::min()};

constexpr std::size_t shortList = 8;
/// Beyond what the program takes for a long one.
constexpr std::size_t longList = 80;

}  // namespace

ValueKind kindOf(OMFProperty property) {
    using enum ValueKind;
    constexpr std::array<ValueKind, omfPropertyCount> kinds{
        classID,    byteOrder,  references, references, int32,      uid,       text,
        references, uid,        reference,  rational,   reference,  text,      int32,
        position,   int32,      position,   reference,  text,       reference, text,
        int16,      int16,      position,   references, text,       text,      reference,
        uid,        int32,      position,   position,   int32,      position,  int32,
        references, reference,  reference,  references, reference,  text,      int32,
        reference,  references, int32,      int32,      position,   reference, rational,
        int16,      references, rational,   rational,   reference,  rational,  references,
        references, references, text,       text,       text,       text,      text,
        text,       media,      media,      int16,      references, text,      text,
        text};
    return kinds.at(static_cast<std::size_t>(property));
}

ObjectID PropertyValues::anyObject() {
    return choices_.any(model_.values).object;
}

Bytes PropertyValues::reference(ObjectID target) const {
    return ByteWriter(model_.valueOrder).u32(target).written();
}

Bytes PropertyValues::references(const std::vector<ObjectID>& targets) const {
    ByteWriter list(model_.valueOrder);
    list.u16(static_cast<std::uint16_t>(targets.size()));
    for (const ObjectID target : targets) {
        list.u32(target);
    }
    return list.written();
}

std::vector<ObjectID> PropertyValues::targetsOf(ByteView list) const {
    std::vector<ObjectID> targets;
    for (std::size_t offset = 2; offset + 4 <= list.size(); offset += 4) {
        targets.push_back(u32(list, static_cast<std::int64_t>(offset), model_.valueOrder));
    }
    return targets;
}

Bytes PropertyValues::classID() {
    const std::size_t index = choices_.below(omfClassIDs.size() + furtherClasses.size());
    return bytesOf(index < omfClassIDs.size() ? omfClassIDs.at(index)
                                              : furtherClasses.at(index - omfClassIDs.size()));
}

Bytes PropertyValues::text() {
    const std::string_view chosen = choices_.any(texts);
    ByteWriter written(model_.valueOrder);
    const bool isWide = choices_.oneIn(4);
    for (const char character : chosen) {
        const auto unit = static_cast<std::uint8_t>(character);
        static_cast<void>(isWide ? written.u16(unit) : written.u8(unit));
    }
    return written.zeros(isWide ? 2 : 1).written();
}

Bytes PropertyValues::uid() {
    std::vector<const Bytes*> known;
    for (const ObjectValue& value : model_.values) {
        if (value.property.ends_with("MobID")) {
            known.push_back(&value.bytes);
        }
    }
    if (known.empty() || choices_.oneIn(8)) {
        return ByteWriter(model_.valueOrder).u32(0).u32(0).u32(choices_.oneIn(2) ? 0 : 1).written();
    }
    return *choices_.any(known);
}

Bytes PropertyValues::media() {
    constexpr std::array<std::uint16_t, 4> depths{8, 16, 24, 32};
    const auto channels = static_cast<std::uint16_t>(choices_.below(4));
    const std::uint16_t depth = choices_.any(depths);
    if (choices_.oneIn(2)) {
        return testing::aiffImage(
            {.channels = channels, .bitsPerSample = depth, .samples = Bytes(8)});
    }
    return testing::waveImage({.channels = channels, .bitsPerSample = depth, .samples = Bytes(8)});
}

std::int64_t PropertyValues::number() {
    constexpr std::size_t smallNumbers = 200;
    return choices_.oneIn(3) ? static_cast<std::int64_t>(choices_.below(smallNumbers))
                             : choices_.any(numbers);
}

Bytes PropertyValues::numberOf(std::size_t width) {
    const auto value = static_cast<std::uint64_t>(number());
    ByteWriter written(model_.valueOrder);
    switch (width) {
        case 2:
            return written.u16(static_cast<std::uint16_t>(value)).written();
        case 4:
            return written.u32(static_cast<std::uint32_t>(value)).written();
        default:
            return written.u64(value).written();
    }
}

Bytes PropertyValues::valueFor(OMFProperty property) {
    switch (kindOf(property)) {
        case ValueKind::classID:
            return classID();
        case ValueKind::byteOrder:
            return bytesOf(choices_.oneIn(2) ? "II" : "MM");
        case ValueKind::reference:
            return reference(anyObject());
        case ValueKind::references: {
            std::vector<ObjectID> targets(choices_.below(choices_.oneIn(8) ? longList : shortList));
            std::generate(targets.begin(), targets.end(), [this] { return anyObject(); });
            return references(targets);
        }
        case ValueKind::text:
            return text();
        case ValueKind::int16:
            return numberOf(2);
        case ValueKind::int32:
            return numberOf(4);
        case ValueKind::position:
            return numberOf(choices_.oneIn(2) ? 4 : 8);
        case ValueKind::rational:
            return testing::joined({numberOf(4), numberOf(4)});
        case ValueKind::uid:
            return uid();
        case ValueKind::media:
            return media();
    }
    return {};
}

}  // namespace trellant::fuzzing
