// SPDX-License-Identifier: Apache-2.0
// What a worker has written so far: tens of megabytes for a large session. It is read to where it
// stays, and grows by remapping its pages, where a string would copy it and hold it twice
// meanwhile.
#pragma once

#include <cstddef>
#include <cstdlib>
#include <memory>
#include <span>
#include <string_view>
#include <utility>

namespace trellant {

class AnswerText {
  public:
    AnswerText() = default;
    ~AnswerText() = default;
    AnswerText(AnswerText&& other) noexcept
        : bytes_(std::move(other.bytes_)),
          size_(std::exchange(other.size_, 0)),
          capacity_(std::exchange(other.capacity_, 0)) {}
    AnswerText(const AnswerText&) = delete;
    AnswerText& operator=(const AnswerText&) = delete;
    AnswerText& operator=(AnswerText&&) = delete;

    /// Room for `count` bytes behind the text, until the next call. Throws std::bad_alloc, the text
    /// as it was.
    [[nodiscard]] std::span<char> room(std::size_t count);
    /// Adds `count` bytes, which stand at the head of the room.
    void add(std::size_t count) noexcept { size_ += count; }

    [[nodiscard]] std::size_t size() const noexcept { return size_; }
    [[nodiscard]] std::string_view view() const noexcept { return {bytes_.get(), size_}; }

  private:
    struct Freer {
        void operator()(char* bytes) const noexcept { std::free(bytes); }
    };

    std::unique_ptr<char, Freer> bytes_;
    std::size_t size_ = 0;
    std::size_t capacity_ = 0;
};

}  // namespace trellant
