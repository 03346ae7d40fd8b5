// SPDX-License-Identifier: Apache-2.0
// Unicode as the reader needs it. Every text inside the program is UTF-8.
#pragma once

#include <trellant/base/bytes.h>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace [[gnu::visibility("default")]] trellant {

/// True when all of `text` is well-formed UTF-8.
[[nodiscard]] bool isValidUTF8(std::string_view text);

/// `text` with each maximal broken sequence replaced by U+FFFD.
[[nodiscard]] std::string madeValidUTF8(std::string_view text);

/// Bytes as ISO Latin 1.
[[nodiscard]] std::string fromLatin1(ByteView bytes);

/// Bytes as UTF-16; an odd last byte is ignored, an unpaired surrogate gives nothing.
[[nodiscard]] std::optional<std::string> fromUTF16(ByteView bytes, OMFByteOrder order);

/// `text` as UTF-16, with each maximal broken sequence replaced by U+FFFD.
[[nodiscard]] std::u16string toUTF16(std::string_view text);

/// `text` without the control characters (categories Cc and Cf) at both ends.
[[nodiscard]] std::string trimmedOfControls(std::string_view text);

/// `text` with a blank for each run of control characters (below 0x20, 0x7F to 0x9F) and of what
/// ends a line or a paragraph (U+2028, U+2029). Bytes that are not UTF-8 stay as they are.
[[nodiscard]] std::string plainLine(std::string_view text);

/// Lower-cased scalar by scalar, without locale. Bytes that are not UTF-8 stay as they are.
[[nodiscard]] std::string lowerCased(std::string_view text);

/// The unit upper-cased, without locale, where that is one unit too; halves of surrogate pairs and
/// U+00DF stay as they are.
[[nodiscard]] char16_t upperCased(char16_t unit) noexcept;

/// `text` with every scalar that is no letter, mark or number (general categories L, M, N) and not
/// one of `kept` (ASCII) replaced by `replacement`.
[[nodiscard]] std::string replacingNonAlphanumerics(std::string_view text, std::string_view kept,
                                                    char replacement);

/// The longest head of `text` that has at most `maxClusters` grapheme clusters and at most
/// `maxBytes` bytes, cut at a cluster boundary; at a scalar boundary when not even the first
/// cluster fits the bytes.
[[nodiscard]] std::string_view prefixOfClusters(std::string_view text, std::size_t maxClusters,
                                                std::size_t maxBytes);

}  // namespace trellant
