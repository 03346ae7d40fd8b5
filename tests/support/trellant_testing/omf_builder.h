// SPDX-License-Identifier: Apache-2.0
// An OMF 2.x document under construction: objects with classes, and makers for the ones that a
// composition needs. A fixture built with it reads as a description of the file:
//
//     OmfBuilder omf;
//     const MobID kick{1, 2, 3};
//     omf.audioFile({.id = kick, .name = "Kick.wav", .media = waveImage({...}), .length = 48000});
//     omf.composition({.name = "Song", .slots = {omf.slot({
//         .editRate = Ratio{48'000}, .segment = omf.sequence({omf.filler(100),
//             omf.clip({.length = 500, .source = kick})})})}});
//     writeFile(path, omf.build());
//
// Objects are numbered from 1 (the header) in the order of their making. Within braces that is the
// written order, but the arguments of one call, gain(clip, constant), are made in an order of the
// compiler's choice: where the numbers matter, make one of them before. Every maker gives the
// object, so that a test may set, replace or remove single properties.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <trellant_testing/object_builder.h>
#include <vector>

namespace trellant::testing {

struct FadeSpec {
    /// In edit units.
    std::int64_t length = 0;
    /// 1 linear, 2 equal power, 3 logarithmic; absent when the file does not say.
    std::optional<std::int32_t> type{};
};

struct ClipSpec {
    /// Lengths and positions in edit units, here and below.
    std::int64_t length = 0;
    MobID source{};
    std::uint32_t track = 1;
    std::int64_t start = 0;
    std::optional<FadeSpec> fadeIn{};
    std::optional<FadeSpec> fadeOut{};
    std::optional<std::string> name{};
};

struct TransitionSpec {
    std::int64_t length = 0;
    std::int64_t cutPoint = 0;
    std::optional<ObjectID> effect{};
};

struct TrackSpec {
    std::uint32_t id = 1;
    std::optional<std::string> name{};
    std::optional<std::int32_t> physicalTrack{};
    std::optional<std::int64_t> origin{};
};

struct SlotSpec {
    std::optional<Ratio> editRate{};
    std::optional<ObjectID> segment{};
    std::optional<ObjectID> track{};
};

struct CompositionSpec {
    std::optional<std::string> name{};
    std::vector<ObjectID> slots{};
    MobID id{0xC0, 0, 1};
    bool isPrimary = true;
};

struct MobSpec {
    MobID id{};
    std::optional<std::string> name{};
    std::vector<ObjectID> slots{};
    std::optional<ObjectID> descriptor{};
};

struct DescriptorSpec {
    std::string classID = "WAVD";
    std::optional<Ratio> sampleRate{};
    std::optional<std::int64_t> length{};
    std::vector<ObjectID> locators{};
};

enum class MediaKind { wave, aifc };

/// A Source Mob that describes an audio file, with its one track, and the media when embedded.
struct AudioFileSpec {
    MobID id{};
    std::optional<std::string> name{};
    MediaKind kind = MediaKind::wave;
    /// Absent for external media.
    std::optional<Bytes> media{};
    Ratio sampleRate{48'000};
    /// In samples.
    std::int64_t length = 0;
    std::vector<ObjectID> locators{};
    TrackSpec track{.id = 1, .physicalTrack = 1};
};

struct EffectSlotSpec {
    std::int32_t argument = 0;
    std::optional<ObjectID> value{};
};

struct EffectSpec {
    std::optional<std::string> effectID{};
    std::int64_t length = 0;
    std::vector<EffectSlotSpec> slots{};
};

struct PointSpec {
    Ratio time{};
    Ratio value{};
};

class OmfBuilder {
  public:
    struct Options {
        ContainerBuilder::Options container{};
        /// Of property values; the header says so unless it is told not to.
        OMFByteOrder valueOrder = OMFByteOrder::little;
        bool writesByteOrder = true;
    };

    OmfBuilder() : OmfBuilder(Options{}) {}
    explicit OmfBuilder(const Options& options);

    [[nodiscard]] ContainerBuilder& container() noexcept { return container_; }
    [[nodiscard]] ObjectBuilder head() { return at(head_); }
    /// A new object of a class of four characters.
    ObjectBuilder object(std::string_view classID);
    /// A new object without a class.
    ObjectBuilder classless();
    [[nodiscard]] ObjectBuilder at(ObjectID id);

    /// The definition of a data kind, made on first use.
    ObjectBuilder dataKind(std::string_view id);
    /// The data kind of the segments made from now on; none when absent. At first sound.
    void setSegmentKind(std::optional<std::string> dataKindID) { segmentKind_ = dataKindID; }

    // Segments
    ObjectBuilder clip(const ClipSpec& given);
    ObjectBuilder filler(std::int64_t length);
    /// Of any class, with nothing but data kind and length.
    ObjectBuilder segment(std::string_view classID, std::int64_t length);
    ObjectBuilder sequence(const std::vector<ObjectID>& components);
    ObjectBuilder transition(const TransitionSpec& given);
    /// A transition by a simple mono audio dissolve, cut in the middle.
    ObjectBuilder dissolve(std::int64_t length);
    ObjectBuilder timecode(std::int16_t fps, bool drop, std::int64_t start,
                           std::int64_t length = 0);
    ObjectBuilder selector(ObjectID selected);
    ObjectBuilder nestedScope(const std::vector<ObjectID>& slots);
    ObjectBuilder scopeReference(std::int64_t length, std::int32_t relativeScope,
                                 std::int32_t relativeSlot);

    // Effects
    ObjectBuilder effectDefinition(std::string_view effectID);
    ObjectBuilder effect(const EffectSpec& given);
    ObjectBuilder constantValue(Ratio value, std::int64_t length = 0);
    /// Interpolation 1 constant, 2 linear; absent when the file does not say.
    ObjectBuilder varyingValue(const std::vector<PointSpec>& points,
                               std::optional<std::int16_t> interpolation = 2,
                               std::int64_t length = 0);
    ObjectBuilder controlPoint(const PointSpec& given);
    /// Mono audio gain or pan of one input, as long as it; `control` is argument 1.
    ObjectBuilder gain(ObjectID input, ObjectID control);
    ObjectBuilder pan(ObjectID input, ObjectID control);

    // Slots and mobs
    ObjectBuilder track(const TrackSpec& given);
    ObjectBuilder slot(const SlotSpec& given);
    /// Listed in the header as they are made; lists that a test sets itself stay.
    ObjectBuilder composition(const CompositionSpec& given);
    ObjectBuilder masterMob(const MobSpec& given) { return mob("MMOB", given); }
    ObjectBuilder sourceMob(const MobSpec& given) { return mob("SMOB", given); }

    // Media
    ObjectBuilder descriptor(const DescriptorSpec& given);
    ObjectBuilder waveMedia(MobID id, Bytes data);
    ObjectBuilder aifcMedia(MobID id, Bytes data);
    ObjectBuilder audioFile(const AudioFileSpec& given);
    /// A locator of a class with one text: "UNXL" and "OMFI:UNXL:PathName".
    ObjectBuilder locator(std::string_view classID, std::string_view property,
                          std::string_view text);
    ObjectBuilder unixLocator(std::string_view path);
    ObjectBuilder dosLocator(std::string_view path);
    ObjectBuilder windowsLocator(std::string_view path);
    ObjectBuilder networkLocator(std::string_view url);
    ObjectBuilder textLocator(std::string_view name);
    ObjectBuilder macLocator(std::string_view fileName);

    // Attributes
    ObjectBuilder attribute(std::string_view name, std::optional<std::string> text,
                            std::optional<ObjectID> object = std::nullopt);
    ObjectBuilder attributeList(const std::vector<ObjectID>& attributes);

    [[nodiscard]] ContainerImage image() const;
    [[nodiscard]] Bytes build() const { return image().bytes(); }

  private:
    ObjectBuilder component(std::string_view classID, std::int64_t length);
    ObjectBuilder mob(std::string_view classID, const MobSpec& given);
    ObjectBuilder media(std::string_view classID, std::string_view property, MobID id, Bytes data);
    [[nodiscard]] std::int64_t lengthOf(ObjectID segment) const;

    Options options_;
    ContainerBuilder container_;
    ObjectID head_ = 0;
    std::optional<std::string> segmentKind_ = "omfi:data:Sound";
    std::map<std::string, ObjectID, std::less<>> dataKinds_;
    std::map<std::string, ObjectID, std::less<>> effectDefinitions_;
    /// Of the segments made so far, for those that contain them.
    std::map<ObjectID, std::int64_t> lengths_;
    std::vector<ObjectID> mobs_;
    std::vector<ObjectID> primaryMobs_;
    std::vector<ObjectID> mediaData_;
};

}  // namespace trellant::testing
