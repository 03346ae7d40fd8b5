// SPDX-License-Identifier: Apache-2.0
// An OMF 1.x document under construction, in any byte order: values in one, the container and the
// references in another. A fixture built with it reads as a description of the file:
//
//     Omf1Builder omf;
//     const MobID voice{1, 2, 3};
//     omf.audioFile({.id = voice, .name = "Voice", .media = aiffImage({...}), .length = 48000});
//     omf.mob({.name = "Song", .tracks = {omf.track(1, omf.sequence({
//         omf.filler(100), omf.clip({.length = 500, .source = voice})}))}});
//     writeFile(path, omf.build());
//
// Objects are numbered from 1 (the header) in the order of their making.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <trellant_testing/object_builder.h>
#include <vector>

namespace trellant::testing {

class Omf1Builder {
  public:
    struct Options {
        OMFByteOrder container = OMFByteOrder::little;
        OMFByteOrder values = OMFByteOrder::big;
    };

    static constexpr std::int16_t pictureKind = 1;
    static constexpr std::int16_t soundKind = 2;
    static constexpr std::int16_t timecodeKind = 3;
    static constexpr std::int32_t masterUsage = 7;

    struct ClipSpec {
        /// In edit units, here and below.
        std::int32_t length = 0;
        MobID source{};
        std::int16_t track = 1;
        std::int32_t position = 0;
        std::optional<std::string> name{};
    };
    struct MobSpec {
        MobID id{0xC0, 0, 1};
        std::optional<std::string> name{};
        std::vector<ObjectID> tracks{};
        std::int32_t usage = 0;
        /// The descriptor of a source.
        std::optional<ObjectID> media{};
    };
    struct AudioFileSpec {
        MobID id{};
        std::string name{};
        /// Embedded AIFC; absent for external media.
        std::optional<Bytes> media{};
        std::int32_t length = 0;
        std::vector<ObjectID> locators{};
    };

    Omf1Builder() : Omf1Builder(Options{}) {}
    explicit Omf1Builder(const Options& options);

    [[nodiscard]] ContainerBuilder& container() noexcept { return container_; }
    [[nodiscard]] ObjectBuilder head() { return at(head_); }
    ObjectBuilder object(std::string_view classID);
    [[nodiscard]] ObjectBuilder at(ObjectID id);
    /// A value of 8 bytes, and a counted list of them.
    void ref(ObjectID object, std::string_view property, ObjectID target);
    void refs(ObjectID object, std::string_view property, const std::vector<ObjectID>& targets);
    [[nodiscard]] Bytes refsValue(const std::vector<ObjectID>& targets) const;

    /// Of the components made from now on; at first 48000 and sound.
    void setEditRate(Ratio rate) { editRate_ = rate; }
    void setKind(std::int16_t kind) { kind_ = kind; }

    /// Of any class, with kind, rate and length.
    ObjectBuilder component(std::string_view classID, std::int32_t length);
    ObjectBuilder clip(const ClipSpec& given);
    ObjectBuilder filler(std::int32_t length) { return component("FILL", length); }
    ObjectBuilder sequence(const std::vector<ObjectID>& components,
                           std::optional<std::string> name = std::nullopt);
    ObjectBuilder transition(std::int32_t length, std::int32_t cutPoint);
    /// Of 25 frames a second unless the rate says otherwise.
    ObjectBuilder timecode(std::int16_t fps, std::int32_t start, std::int32_t flags = 0,
                           Ratio rate = Ratio{25});
    ObjectBuilder track(std::int16_t label, ObjectID component);
    /// Listed in the header's index of compositions, or of sources.
    ObjectBuilder mob(const MobSpec& given);
    ObjectBuilder descriptor(std::string_view classID, Ratio sampleRate = Ratio{48'000});
    ObjectBuilder media(std::string_view classID, MobID id, Bytes data);
    /// A source mob of one sound track, with its media when embedded.
    ObjectBuilder audioFile(const AudioFileSpec& given);

    /// Header lists that a test set itself stay.
    [[nodiscard]] Bytes build() const;

  private:
    struct Indexed {
        MobID id;
        ObjectID object;
    };

    [[nodiscard]] Bytes index(const std::vector<Indexed>& entries) const;

    Options options_;
    ContainerBuilder container_;
    ObjectID head_ = 0;
    Ratio editRate_{48'000};
    std::int16_t kind_ = soundKind;
    std::vector<Indexed> compositions_;
    std::vector<Indexed> sources_;
    std::vector<Indexed> media_;
};

}  // namespace trellant::testing
