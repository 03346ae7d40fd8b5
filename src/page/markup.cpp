// SPDX-License-Identifier: Apache-2.0
#include "markup.h"

#include <trellant/base/printable_text.h>

#include <algorithm>
#include <array>

namespace trellant::page {

namespace {

constexpr std::size_t longestName = 200;
constexpr std::size_t gatheredBytes = 65'536;

/// Letters that are not seen and turn the direction of what follows, as UTF-8.
constexpr std::array<std::string_view, 12> turning{
    "\xD8\x9C",     "\xE2\x80\x8E", "\xE2\x80\x8F", "\xE2\x80\xAA", "\xE2\x80\xAB", "\xE2\x80\xAC",
    "\xE2\x80\xAD", "\xE2\x80\xAE", "\xE2\x81\xA6", "\xE2\x81\xA7", "\xE2\x81\xA8", "\xE2\x81\xA9"};

bool mayTurn(char byte) {
    return byte == '\xD8' || byte == '\xE2';
}

std::string_view entityOf(char byte) {
    switch (byte) {
        case '&':
            return "&amp;";
        case '<':
            return "&lt;";
        case '>':
            return "&gt;";
        case '"':
            return "&quot;";
        default:
            return {};
    }
}

}  // namespace

std::string shownText(std::string_view text) {
    std::string shown = printableText(text, longestName);
    if (std::none_of(shown.begin(), shown.end(), mayTurn)) {
        return shown;
    }
    std::string straight;
    for (std::size_t at = 0; at < shown.size();) {
        const std::string_view rest = std::string_view(shown).substr(at);
        const auto* const found =
            std::find_if(turning.begin(), turning.end(),
                         [rest](std::string_view each) { return rest.starts_with(each); });
        if (found != turning.end()) {
            straight += "\xEF\xBF\xBD";
            at += found->size();
        } else {
            straight += shown[at];
            ++at;
        }
    }
    return straight;
}

Markup& Markup::raw(std::string_view markup) {
    gathered_ += markup;
    if (gathered_.size() >= gatheredBytes) {
        flush();
    }
    return *this;
}

Markup& Markup::text(std::string_view text) {
    std::size_t written = 0;
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (const std::string_view entity = entityOf(text[at]); !entity.empty()) {
            raw(text.substr(written, at - written)).raw(entity);
            written = at + 1;
        }
    }
    return raw(text.substr(written));
}

void Markup::flush() {
    sink_.write(gathered_);
    gathered_.clear();
}

void ScriptSafeSink::write(std::string_view bytes) {
    for (std::size_t at = bytes.find('<'); at != std::string_view::npos; at = bytes.find('<')) {
        markup_.raw(bytes.substr(0, at)).raw("\\u003c");
        bytes.remove_prefix(at + 1);
    }
    markup_.raw(bytes);
}

}  // namespace trellant::page
