// SPDX-License-Identifier: Apache-2.0
#include "memory_file.h"
#include "require.h"
#include "targets.h"

#include <trellant/salvage/sound_search.h>

#include <algorithm>
#include <array>
#include <vector>

namespace trellant::fuzzing {

namespace {

void judge(const salvage::FoundSound& sound, std::uint64_t size, std::vector<BentoRange>& all) {
    require(!sound.ranges.empty() && sound.bytes() != 0, "a sound has bytes");
    require(sound.isWhole ? sound.mends.empty() && !sound.isPadded : sound.ranges.size() == 1,
            "what is whole is copied as it is");
    for (const BentoRange& range : sound.ranges) {
        require(range.offset <= size && range.length <= size - range.offset, "ranges lie inside");
        all.push_back(range);
    }
    std::uint64_t copied = 0;
    for (const BentoValueSegment& segment : sound.copied()) {
        const auto* const range = std::get_if<BentoRange>(&segment.storage);
        copied +=
            range != nullptr ? range->length : std::get<BentoImmediate>(segment.storage).count;
    }
    require(copied == sound.bytes() + (sound.isPadded ? 1 : 0), "a copy is as long as its sound");
}

}  // namespace

void runSalvage(ByteView input) {
    const MemoryFile memory(input);
    const RandomAccessFile file(memory.path());
    const auto table = salvage::FoundTable::in(file);
    const salvage::FoundTable* const found = table ? &*table : nullptr;
    const std::array<const salvage::FoundTable*, 2> tables{found, nullptr};
    for (const salvage::FoundTable* const used : tables) {
        salvage::SoundSearch search(file, used);
        std::vector<BentoRange> all;
        while (const auto sound = search.next()) {
            judge(*sound, file.size(), all);
        }
        std::sort(all.begin(), all.end(), [](const BentoRange& left, const BentoRange& right) {
            return left.offset < right.offset;
        });
        for (std::size_t i = 1; i < all.size(); ++i) {
            require(all[i].offset - all[i - 1].offset >= all[i - 1].length,
                    "no byte is taken twice");
        }
    }
}

}  // namespace trellant::fuzzing
