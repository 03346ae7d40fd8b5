// SPDX-License-Identifier: Apache-2.0
// A place in a text that lies in memory as a whole, and the one test for its end, which looks for a
// stop on the way: by bytes, since one string or one run of blanks may be as long as the text.
#pragma once

#include <trellant/base/cancellation.h>
#include <trellant/json/json_decode.h>

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace trellant::jsonDecoding {

/// `text` and `stop` must outlive the cursor. What looks at the text throws JsonDecodingStopped.
class TextCursor {
  public:
    TextCursor(std::string_view text, const StopToken& stop) noexcept
        : at_(text.data()), limit_(at_), end_(at_ + text.size()), stop_(stop) {
        raiseLimit();
    }

    [[nodiscard]] bool atEnd() {
        if (at_ != limit_) {
            return false;
        }
        if (at_ == end_) {
            return true;
        }
        if (stop_.stop_requested()) {
            throw JsonDecodingStopped();
        }
        raiseLimit();
        return false;
    }

    /// The byte to come; at the end a NUL, which JSON allows nowhere.
    [[nodiscard]] char peek() { return atEnd() ? '\0' : *at_; }

    /// The byte to come after blanks.
    [[nodiscard]] char peekToken() {
        char byte = peek();
        while (byte == ' ' || byte == '\n' || byte == '\r' || byte == '\t') {
            skipPeeked();
            byte = peek();
        }
        return byte;
    }

    [[nodiscard]] const char* position() const noexcept { return at_; }
    /// What lies between `start`, an earlier position, and here.
    [[nodiscard]] std::string_view since(const char* start) const noexcept {
        return {start, static_cast<std::size_t>(at_ - start)};
    }
    /// All that is to come.
    [[nodiscard]] std::string_view rest() const noexcept {
        return {at_, static_cast<std::size_t>(end_ - at_)};
    }

    /// Goes on by one byte, after a peek that was not at the end.
    void skipPeeked() noexcept { ++at_; }
    /// Goes on by bytes of `rest`.
    void skip(std::size_t count) noexcept {
        at_ += count;
        limit_ = std::max(limit_, at_);
    }
    /// Goes on over a run of bytes; `lengthOfRun` tells how many stand at the head of a text.
    template <class LengthOfRun>
    void skipRun(LengthOfRun lengthOfRun) {
        do {
            at_ += lengthOfRun(std::string_view(at_, static_cast<std::size_t>(limit_ - at_)));
        } while (at_ == limit_ && !atEnd());
    }

  private:
    static constexpr std::ptrdiff_t bytesBetweenLooks = 1'024;

    void raiseLimit() noexcept { limit_ += std::min(end_ - limit_, bytesBetweenLooks); }

    const char* at_;
    const char* limit_;
    const char* end_;
    const StopToken& stop_;
};

}  // namespace trellant::jsonDecoding
