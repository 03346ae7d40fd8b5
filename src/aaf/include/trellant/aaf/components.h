// SPDX-License-Identifier: Apache-2.0
// What slots are made of. Lengths and positions are in edit units of the slot, which also says of
// what kind (DataKind) all of its components are. Texts are UTF-8.
#pragma once

#include <trellant/aaf/definitions.h>
#include <trellant/aaf/identifiers.h>
#include <trellant/aaf/values.h>

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace [[gnu::visibility("default")]] trellant {
namespace aaf {

/// Nothing, for a while.
struct Filler {
    std::int64_t length = 0;
    bool operator==(const Filler&) const = default;
};

struct ControlPoint {
    /// From 0 at the start of the operation to 1 at its end.
    Rational time{};
    Rational value{};
    bool operator==(const ControlPoint&) const = default;
};

struct VaryingValue {
    Interpolation interpolation = Interpolation::linear;
    /// By ascending time.
    std::vector<ControlPoint> points{};
    bool operator==(const VaryingValue&) const = default;
};

struct Parameter {
    ParameterKind definition = ParameterKind::amplitude;
    /// A Rational is a ConstantValue.
    std::variant<Rational, VaryingValue> value{};
    bool operator==(const Parameter&) const = default;
};

/// A value by name that no property of its own exists for.
struct TaggedValue {
    std::string name{};
    std::variant<std::string, std::int32_t> value{};
    bool operator==(const TaggedValue&) const = default;
};

/// An effect on one input, as long as what it stands around. In a Transition it has no input of its
/// own: it acts on the neighbours.
struct OperationGroup {
    Operation operation = Operation::monoAudioGain;
    /// One at most of each kind.
    std::vector<Parameter> parameters{};
    /// What some programs say of an effect beyond its parameters.
    std::vector<TaggedValue> componentAttributes{};
    bool operator==(const OperationGroup&) const = default;
};

/// A piece of another mob's slot.
struct SourceClip {
    std::int64_t length = 0;
    /// Within the other slot, in this slot's edit units.
    std::int64_t startTime = 0;
    /// All zero, with slot 0: there is nothing before this, the material was made here.
    MobID sourceID{};
    std::uint32_t sourceMobSlotID = 0;
    /// Around the clip, the innermost first.
    std::vector<OperationGroup> operationGroups{};
    bool operator==(const SourceClip&) const = default;
};

/// Overlaps its two neighbours in a Sequence by its length.
struct Transition {
    std::int64_t length = 0;
    /// Where a reader without the effect cuts, from the start of the overlap.
    std::int64_t cutPoint = 0;
    OperationGroup operationGroup{};
    bool operator==(const Transition&) const = default;
};

/// What a Sequence may consist of.
using Component = std::variant<Filler, SourceClip, Transition>;

/// One after the other. As long as its fillers and clips together, less its transitions.
struct Sequence {
    /// No transition stands at an end, nor beside another.
    std::vector<Component> components{};
    /// Around the whole, the innermost first.
    std::vector<OperationGroup> operationGroups{};
    bool operator==(const Sequence&) const = default;
};

/// Labels for the whole slot.
struct Timecode {
    std::int64_t length = 0;
    /// The first label, in frames from 00:00:00:00 with the labels that drop-frame leaves out not
    /// counted.
    std::int64_t start = 0;
    /// Frames in a second, rounded up: 30 for 29.97.
    std::uint16_t fps = 0;
    bool drop = false;
    bool operator==(const Timecode&) const = default;
};

/// What a TimelineMobSlot consists of.
using Segment = std::variant<Sequence, SourceClip, Timecode>;

/// A remark at a place of the timeline; belongs into an EventMobSlot.
struct DescriptiveMarker {
    std::int64_t position = 0;
    /// Absent for a marker without extent.
    std::optional<std::int64_t> length{};
    std::string comment{};
    /// Who made it; absent when nobody is named.
    std::optional<std::string> user{};
    std::optional<Colour> colour{};
    /// Slots of the same mob that it is about; empty for all of them.
    std::vector<std::uint32_t> describedSlotIDs{};
    bool operator==(const DescriptiveMarker&) const = default;
};

}  // namespace aaf
}  // namespace trellant
