// SPDX-License-Identifier: Apache-2.0
// One scalar at a time out of UTF-8, and back. Strict: overlong forms, surrogates and what lies
// beyond U+10FFFF are broken.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace [[gnu::visibility("default")]] trellant {

struct UTF8Step {
    /// U+FFFD for a broken sequence.
    char32_t scalar = U'\uFFFD';
    /// Bytes of the scalar, or of the longest head of one that the bytes make; at least 1.
    std::size_t length = 1;
    bool valid = false;
};

/// The step at `position`, which lies inside `text`.
[[nodiscard]] UTF8Step utf8Step(std::string_view text, std::size_t position) noexcept;

/// Bytes of the well-formed UTF-8 sequence at the head of `text`; 0 when there is none (the empty
/// text, a stray or cut sequence, an overlong form, a surrogate, a value beyond U+10FFFF).
[[nodiscard]] inline std::size_t utf8SequenceLength(std::string_view text) noexcept {
    if (text.empty()) {
        return 0;
    }
    const UTF8Step step = utf8Step(text, 0);
    return step.valid ? step.length : 0;
}

/// Appends a scalar value (no surrogate, at most U+10FFFF).
void appendUTF8(std::string& text, char32_t scalar);

/// How many bytes at the head of `text` are ASCII.
[[nodiscard]] std::size_t asciiPrefixLength(std::string_view text) noexcept;

/// How many bytes at the head of `text` are printable ASCII, blanks among them.
[[nodiscard]] std::size_t printablePrefixLength(std::string_view text) noexcept;

}  // namespace trellant
