// SPDX-License-Identifier: Apache-2.0
#include "searched_bytes.h"

#include <trellant_testing/aiff_builder.h>
#include <trellant_testing/wave_builder.h>

namespace trellant::testing {

SearchedBytes::SearchedBytes(ByteView bytes) {
    file_.emplace(writeFile(folder_.file("searched"), bytes));
}

std::vector<salvage::FoundSound> SearchedBytes::sounds(bool withTable) const {
    const auto table = withTable ? salvage::FoundTable::in(*file_) : std::nullopt;
    salvage::SoundSearch search(*file_, table ? &*table : nullptr);
    std::vector<salvage::FoundSound> sounds;
    while (auto sound = search.next()) {
        sounds.push_back(std::move(*sound));
    }
    return sounds;
}

Bytes SearchedBytes::copyOf(const salvage::FoundSound& sound) const {
    const std::string path = folder_.file("copy");
    file_->copy(sound.copied(), path);
    return readFile(path);
}

Bytes aifcOf(std::size_t frames) {
    return aiffImage({.formType = "AIFC", .samples = patternBytes(2 * frames)});
}

Bytes waveOf(std::size_t frames) {
    return waveImage({.samples = patternBytes(2 * frames)});
}

}  // namespace trellant::testing
