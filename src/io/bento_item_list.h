// SPDX-License-Identifier: Apache-2.0
// A growing array of packed items. It grows by remapping its pages, where a vector would copy tens
// of megabytes again and again and hold them twice meanwhile.
#pragma once

#include <trellant/base/large_pages.h>
#include <trellant/io/bento_packed_item.h>

#include <cstddef>
#include <cstdlib>
#include <memory>
#include <new>
#include <span>
#include <type_traits>
#include <utility>

namespace trellant {

class BentoItemList {
  public:
    BentoItemList() = default;
    ~BentoItemList() = default;
    BentoItemList(BentoItemList&& other) noexcept
        : storage_(std::move(other.storage_)),
          size_(std::exchange(other.size_, 0)),
          capacity_(std::exchange(other.capacity_, 0)) {}
    BentoItemList(const BentoItemList&) = delete;
    BentoItemList& operator=(const BentoItemList&) = delete;
    BentoItemList& operator=(BentoItemList&& other) noexcept {
        storage_ = std::move(other.storage_);
        size_ = std::exchange(other.size_, 0);
        capacity_ = std::exchange(other.capacity_, 0);
        return *this;
    }

    /// Sets room aside if it can be had: what comes may need less.
    void reserve(std::size_t count) noexcept {
        if (count > capacity_) {
            static_cast<void>(resizeStorage(count));
        }
    }

    /// The reference holds until the next call. Throws std::bad_alloc, the list as it was.
    BentoPackedItem& append(const BentoPackedItem& item) {
        if (size_ == capacity_ && !resizeStorage(capacity_ + capacity_ / 2 + firstCapacity)) {
            throw std::bad_alloc();
        }
        return *std::construct_at(storage_.get() + size_++, item);
    }

    /// Gives back what was reserved for nothing.
    void trim() noexcept {
        if (size_ > 0 && size_ < capacity_) {
            static_cast<void>(resizeStorage(size_));
        }
    }

    [[nodiscard]] std::size_t size() const noexcept { return size_; }
    [[nodiscard]] std::span<BentoPackedItem> items() noexcept { return {storage_.get(), size_}; }
    [[nodiscard]] std::span<const BentoPackedItem> items() const noexcept {
        return {storage_.get(), size_};
    }

  private:
    static constexpr std::size_t firstCapacity = 256;
    static_assert(std::is_trivially_copyable_v<BentoPackedItem>);

    struct Freer {
        void operator()(BentoPackedItem* items) const noexcept { std::free(items); }
    };

    /// False when there is not so much memory; nothing has changed then.
    [[nodiscard]] bool resizeStorage(std::size_t capacity) noexcept {
        if (capacity > static_cast<std::size_t>(-1) / sizeof(BentoPackedItem)) {
            return false;
        }
        auto* const moved = static_cast<BentoPackedItem*>(
            std::realloc(storage_.get(), capacity * sizeof(BentoPackedItem)));
        if (moved == nullptr) {
            return false;
        }
        static_cast<void>(storage_.release());
        storage_.reset(moved);
        capacity_ = capacity;
        preferLargePages(std::as_writable_bytes(std::span(moved, capacity)));
        return true;
    }

    std::unique_ptr<BentoPackedItem, Freer> storage_;
    std::size_t size_ = 0;
    std::size_t capacity_ = 0;
};

}  // namespace trellant
