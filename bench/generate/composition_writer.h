// SPDX-License-Identifier: Apache-2.0
// The objects of a composition, written one after the other into a container.
#pragma once

#include "container_stream.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace trellant::bench {

struct MobID {
    std::uint32_t family = 0;
    std::uint32_t index = 0;
};

/// The edit rate of all tracks, and the sample rate of all media.
inline constexpr std::uint32_t unitsPerSecond = 48'000;

struct ClipSpec {
    /// Length and start in edit units.
    std::uint32_t length = 0;
    MobID source{};
    std::uint32_t start = 0;
    /// In edit units; 0 for none.
    std::uint32_t fadeIn = 0;
    std::string name{};
};

struct MediaSpec {
    /// With the header of 44 bytes.
    std::uint64_t byteCount = 108;
    /// The value begins at an offset that gives `remainder` when divided by `alignment`.
    std::uint64_t alignment = 1;
    std::uint64_t remainder = 0;
    /// 0: in one piece.
    std::uint64_t bytesInPiece = 0;
};

struct FileSpec {
    MobID id{};
    std::string name{};
    std::optional<MediaSpec> media{};
    std::optional<std::string> dosPath{};
};

struct PointSpec {
    /// Parts of 100.
    std::uint32_t time = 0;
    std::uint32_t value = 0;
};

class CompositionWriter {
  public:
    using List = ContainerStream::List;

    /// Writes the header and the definitions; `stream` must outlive this.
    explicit CompositionWriter(ContainerStream& stream);

    // Sources, before the composition
    /// A Source Mob that describes an audio file.
    void file(const FileSpec& given);
    /// A Source Mob with a descriptor and no track: one that no clip can play.
    void unusedMob(MobID id, const std::string& name);
    /// A mob that a clip passes through on its way to `target`.
    void passage(std::string_view classID, MobID id, const std::string& name, MobID target);

    // The composition
    void beginComposition(const std::string& name);
    void track(std::uint32_t number, const std::string& name, ObjectID segment);

    // Segments; lengths in edit units
    ObjectID clip(const ClipSpec& given);
    ObjectID filler(std::uint32_t length);
    ObjectID selector(std::uint32_t length, ObjectID selected);
    ObjectID scopeReference(std::uint32_t length, std::uint32_t scope, std::uint32_t slot);
    /// Without an effect, cut in its middle.
    ObjectID transition(std::uint32_t length);
    struct Parts {
        ObjectID object;
        List list;
    };
    Parts sequence(std::uint32_t length);
    Parts nestedScope(std::uint32_t length);
    void append(List list, ObjectID target) { stream_.append(list, target); }

    // Effects
    enum class EffectKind { gain, pan };
    /// Inputs and control are given to it with `argument`.
    Parts effect(EffectKind kind, std::uint32_t length);
    void input(const Parts& effect, ObjectID value) { argument(effect, -1, value); }
    void control(const Parts& effect, ObjectID value) { argument(effect, 1, value); }
    /// A slot that is nothing to the effect.
    void foreign(const Parts& effect, ObjectID value) { argument(effect, 7, value); }
    /// A fraction with the denominator 100.
    ObjectID constantValue(std::uint32_t hundredths);
    ObjectID varyingValue(std::uint32_t length, const std::vector<PointSpec>& points);

  private:
    ObjectID component(std::string_view classID, std::uint32_t length, ObjectID dataKind);
    ObjectID sound(std::string_view classID, std::uint32_t length) {
        return component(classID, length, sound_);
    }
    void argument(const Parts& effect, std::int32_t number, ObjectID value);
    [[nodiscard]] List beginMob(std::string_view classID, MobID id, const std::string& name,
                                std::optional<ObjectID> descriptor);
    void slot(List slots, std::uint32_t number, const std::string& name, ObjectID segment);
    ObjectID descriptor(const std::optional<std::string>& dosPath);
    void media(MobID id, const MediaSpec& given);
    void identifier(Property property, MobID id);
    void text(Property property, const std::string& text) { stream_.value(property, text + '\0'); }

    ContainerStream& stream_;
    List primaryMobs_ = 0;
    List mobs_ = 0;
    List mediaData_ = 0;
    List tracks_ = 0;
    ObjectID sound_ = 0;
    ObjectID timecode_ = 0;
    ObjectID gain_ = 0;
    ObjectID pan_ = 0;
};

}  // namespace trellant::bench
