// SPDX-License-Identifier: Apache-2.0
#include "bento_block_cache.h"

#include <algorithm>
#include <cstring>
#include <new>

namespace trellant {

std::span<const std::byte> BentoBlockCache::block(std::uint64_t block) noexcept {
    Slot& slot = slots_[block % slotCount];
    if (!slot.bytes) {
        slot.bytes.reset(new (std::nothrow) Storage);
        if (!slot.bytes) {
            return {};
        }
    }
    const std::uint64_t start = block * blockSize;
    const std::span<std::byte> bytes =
        std::span(*slot.bytes).first(std::min(blockSize, file_.size() - start));
    if (slot.block != block) {
        slot.block = noBlock;
        if (file_.readAvailable(start, bytes) != bytes.size()) {
            return {};
        }
        slot.block = block;
    }
    return bytes;
}

bool BentoBlockCache::read(std::uint64_t offset, std::span<std::byte> into) noexcept {
    if (offset > file_.size() || into.size() > file_.size() - offset) {
        return false;
    }
    const std::lock_guard lock(mutex_);
    while (!into.empty()) {
        const std::uint64_t within = offset % blockSize;
        const std::span<const std::byte> bytes = block(offset / blockSize);
        if (bytes.empty()) {
            return false;
        }
        const std::size_t count = std::min(into.size(), bytes.size() - within);
        std::memcpy(into.data(), bytes.data() + within, count);
        into = into.subspan(count);
        offset += count;
    }
    return true;
}

}  // namespace trellant
