// SPDX-License-Identifier: Apache-2.0
// The texts of the page, in the language of the process: those of the document and those that its
// script says. Each has a name; the catalogues have it under "page." and that name.
#pragma once

#include <array>
#include <span>
#include <string>
#include <string_view>

namespace trellant::page {

struct PageText {
    /// The key in the catalogues.
    const char* key;
    const char* english;
};

/// All of them, by ascending key.
[[nodiscard]] std::span<const PageText> pageTexts() noexcept;

/// The text of that name; a name that there is none of stops the process.
[[nodiscard]] std::string_view say(std::string_view name);

/// The same with "{0}" replaced by `value`.
[[nodiscard]] std::string say(std::string_view name, std::string_view value);

/// A sentence of the libraries (what a loss means) in the language of the process: catalogues have
/// it under its English text.
[[nodiscard]] std::string_view saySentence(const std::string& english);

}  // namespace trellant::page
