// SPDX-License-Identifier: Apache-2.0
// Mobs and their slots, and where the essence of source mobs lies. Texts are UTF-8.
#pragma once

#include <trellant/aaf/components.h>
#include <trellant/base/bytes.h>

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace [[gnu::visibility("default")]] trellant {
namespace aaf {

struct TimelineMobSlot {
    /// Unique in its mob.
    std::uint32_t slotID = 0;
    std::string slotName{};
    std::optional<std::uint32_t> physicalTrackNumber{};
    /// Edit units in a second, above 0.
    Rational editRate{};
    /// Where the slot's zero lies within its segment, in edit units.
    std::int64_t origin = 0;
    /// Of the segment and of all that it is made of; a Timecode is of the kind timecode always.
    DataKind dataKind = DataKind::sound;
    Segment segment{};
    /// What some programs say of a track beyond its properties.
    std::vector<TaggedValue> attributes{};
    bool operator==(const TimelineMobSlot&) const = default;
};

/// Markers by ascending position.
struct EventMobSlot {
    std::uint32_t slotID = 0;
    std::string slotName{};
    std::optional<std::uint32_t> physicalTrackNumber{};
    /// Edit units in a second, above 0.
    Rational editRate{};
    std::vector<DescriptiveMarker> markers{};
    bool operator==(const EventMobSlot&) const = default;
};

using MobSlot = std::variant<TimelineMobSlot, EventMobSlot>;

/// What a composition is to the file.
enum class UsageCode { topLevel, lowerLevel, subClip, adjustedClip, templateOfOthers };

/// A CompositionMob or a MasterMob, as the list says that it stands in.
struct Mob {
    /// Unique in its file.
    MobID mobID{};
    /// Empty for a mob without a name.
    std::string name{};
    TimeStamp creationTime{};
    TimeStamp lastModified{};
    std::optional<UsageCode> usageCode{};
    /// Texts: readers take a number here for damage.
    std::vector<TaggedValue> userComments{};
    std::vector<MobSlot> slots{};
    bool operator==(const Mob&) const = default;
};

/// A file elsewhere.
struct NetworkLocator {
    /// "file:///..." percent-encoded.
    std::string urlString{};
    bool operator==(const NetworkLocator&) const = default;
};

/// A WAVE file, elsewhere or whole in the essence data of the same MobID.
struct WAVEDescriptor {
    Rational sampleRate{};
    /// In sample frames.
    std::int64_t length = 0;
    Container containerFormat = Container::aaf;
    /// The head of the file up to its samples: RIFF, WAVE, the true `fmt ` chunk.
    Bytes summary{};
    std::vector<NetworkLocator> locators{};
    bool operator==(const WAVEDescriptor&) const = default;
};

/// How channels belong together.
enum class ElectroSpatial : std::uint8_t {
    standard = 0,
    twoChannelMode = 1,
    singleChannelMode = 2,
    primarySecondaryMode = 3,
    stereophonicMode = 4,
    multiChannelMode = 15,
};

/// Samples alone, in the essence data of the same MobID: little-endian, channels interleaved.
struct PCMDescriptor {
    Rational sampleRate{};
    /// In sample frames.
    std::int64_t length = 0;
    Container containerFormat = Container::aafKLV;
    Rational audioSamplingRate{};
    std::uint32_t channels = 1;
    std::uint32_t quantizationBits = 0;
    /// Bytes of one sample frame.
    std::uint16_t blockAlign = 0;
    /// Bytes in a second.
    std::uint32_t averageBPS = 0;
    bool locked = false;
    ElectroSpatial electroSpatial = ElectroSpatial::singleChannelMode;
    std::vector<NetworkLocator> locators{};
    bool operator==(const PCMDescriptor&) const = default;
};

/// A reel; its slots are its timecode and its tracks.
struct TapeDescriptor {
    std::vector<NetworkLocator> locators{};
    bool operator==(const TapeDescriptor&) const = default;
};

struct SourceMob {
    Mob mob{};
    std::variant<WAVEDescriptor, PCMDescriptor, TapeDescriptor> essenceDescription{};
    bool operator==(const SourceMob&) const = default;
};

}  // namespace aaf
}  // namespace trellant
