// SPDX-License-Identifier: Apache-2.0
#include "song.h"

#include <trellant_testing/wave_builder.h>

namespace trellant::testing {

Bytes shortWave(std::uint32_t sampleRate, std::uint16_t channels) {
    return waveImage({.channels = channels, .sampleRate = sampleRate, .samples = patternBytes(96)});
}

Song::Song(const OmfBuilder::Options& options) : omf(options) {
    omf.audioFile({.id = kick, .name = "Kick", .media = shortWave(), .length = 48});
}

ObjectBuilder Song::clip(std::int64_t length, std::int64_t start) {
    return omf.clip({.length = length, .source = kick, .start = start});
}

ObjectBuilder Song::clip(std::int64_t length, std::optional<FadeSpec> fadeIn,
                         std::optional<FadeSpec> fadeOut) {
    return omf.clip({.length = length, .source = kick, .fadeIn = fadeIn, .fadeOut = fadeOut});
}

ObjectBuilder Song::addSlot(ObjectID segment) {
    return addSlot({.editRate = Ratio{unitsPerSecond}, .segment = segment});
}

ObjectBuilder Song::addSlot(ObjectID segment, const std::string& trackName) {
    return addSlot({.editRate = Ratio{unitsPerSecond},
                    .segment = segment,
                    .track = omf.track({.name = trackName})});
}

ObjectBuilder Song::addSlot(const SlotSpec& given) {
    ObjectBuilder slot = omf.slot(given);
    slots_.push_back(slot);
    return slot;
}

ObjectBuilder Song::composition() {
    if (!composition_) {
        composition_ = omf.composition({.name = name, .slots = slots_});
    }
    return omf.at(*composition_);
}

std::string Song::path(std::size_t slot) {
    return "CMOB[" + std::to_string(composition().id()) + "]/slot[" +
           std::to_string(slots_.at(slot)) + "]";
}

Bytes Song::image() {
    composition();
    return omf.build();
}

Mapped Song::map(const MappingPlaces& places) {
    return mapImage(image(), places);
}

}  // namespace trellant::testing
