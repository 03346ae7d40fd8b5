#include "bento_block_cache.h"

#include <algorithm>
#include <cstring>
#include <new>

namespace trellant {

bool BentoBlockCache::allocate() noexcept {
    if (!storage_) {
        // Left uninitialised: pages of slots that are never used are never touched.
        storage_.reset(new (std::nothrow) std::byte[slotCount * blockSize]);
        blocks_.fill(noBlock);
    }
    return storage_ != nullptr;
}

std::span<const std::byte> BentoBlockCache::block(std::uint64_t block) noexcept {
    const std::size_t slot = block % slotCount;
    const std::uint64_t start = block * blockSize;
    const std::size_t length = std::min(blockSize, file_.size() - start);
    const std::span<std::byte> bytes(storage_.get() + slot * blockSize, length);
    if (blocks_[slot] != block) {
        blocks_[slot] = noBlock;
        if (file_.readAvailable(start, bytes) != length) {
            return {};
        }
        blocks_[slot] = block;
    }
    return bytes;
}

bool BentoBlockCache::read(std::uint64_t offset, std::span<std::byte> into) noexcept {
    if (offset > file_.size() || into.size() > file_.size() - offset) {
        return false;
    }
    const std::lock_guard lock(mutex_);
    if (!allocate()) {
        return false;
    }
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
