// SPDX-License-Identifier: Apache-2.0
// A composition under construction with one source at hand: a mono WAVE file inside the document,
// 48000 samples a second. Its slots have 100 edit units a second unless a test makes its own.
#pragma once

#include "mapped.h"

#include <optional>
#include <string>
#include <trellant_testing/omf_builder.h>
#include <vector>

namespace trellant::testing {

class Song {
  public:
    static constexpr MobID kick{.a = 1, .b = 2, .c = 3};
    static constexpr std::string_view kickID = "00000001-00000002-00000003";

    Song() : Song(OmfBuilder::Options{}) {}
    explicit Song(const OmfBuilder::Options& options);
    Song(const Song&) = delete;
    Song& operator=(const Song&) = delete;
    Song(Song&&) = delete;
    Song& operator=(Song&&) = delete;
    ~Song() = default;

    /// A clip of the kick; lengths and positions in units.
    ObjectBuilder clip(std::int64_t length, std::int64_t start = 0);
    ObjectBuilder clip(std::int64_t length, std::optional<FadeSpec> fadeIn,
                       std::optional<FadeSpec> fadeOut);

    /// A slot of the composition.
    ObjectBuilder addSlot(ObjectID segment);
    ObjectBuilder addSlot(ObjectID segment, const std::string& trackName);
    ObjectBuilder addSlot(const SlotSpec& given);

    /// The composition, with the slots added so far at the first call.
    ObjectBuilder composition();
    /// The object path of a slot: "CMOB[12]/slot[34]".
    [[nodiscard]] std::string path(std::size_t slot = 0);

    [[nodiscard]] Bytes image();
    [[nodiscard]] Mapped map(const MappingPlaces& places = {});

    OmfBuilder omf;
    std::optional<std::string> name{};

  private:
    std::vector<ObjectID> slots_;
    std::optional<ObjectID> composition_;
};

/// A mono WAVE file with 16 bits and 48 samples.
[[nodiscard]] Bytes shortWave(std::uint32_t sampleRate = 48'000, std::uint16_t channels = 1);

}  // namespace trellant::testing
