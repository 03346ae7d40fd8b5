// SPDX-License-Identifier: Apache-2.0
#include "answer_text.h"

#include <trellant/base/large_pages.h>

#include <limits>
#include <new>

namespace trellant {

std::span<char> AnswerText::room(std::size_t count) {
    if (count > capacity_ - size_) {
        constexpr std::size_t most = std::numeric_limits<std::size_t>::max();
        if (count > most / 2 - size_) {
            throw std::bad_alloc();
        }
        const std::size_t capacity = 2 * (size_ + count);
        auto* const moved = static_cast<char*>(std::realloc(bytes_.get(), capacity));
        if (moved == nullptr) {
            throw std::bad_alloc();
        }
        static_cast<void>(bytes_.release());
        bytes_.reset(moved);
        capacity_ = capacity;
        preferLargePages(std::as_writable_bytes(std::span(moved, capacity)));
    }
    return {bytes_.get() + size_, count};
}

}  // namespace trellant
