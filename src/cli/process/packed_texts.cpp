// SPDX-License-Identifier: Apache-2.0
#include "packed_texts.h"

#include <cstdint>
#include <cstring>

namespace trellant::cli {

namespace {

using Length = std::uint64_t;

}  // namespace

std::string packedTexts(const std::vector<std::string>& texts) {
    std::size_t size = 0;
    for (const std::string& text : texts) {
        size += sizeof(Length) + text.size();
    }
    std::string packed;
    packed.reserve(size);
    for (const std::string& text : texts) {
        const Length length = text.size();
        packed.append(reinterpret_cast<const char*>(&length), sizeof length).append(text);
    }
    return packed;
}

std::optional<std::vector<std::string>> unpackedTexts(std::string_view packed) {
    std::vector<std::string> texts;
    while (!packed.empty()) {
        Length length = 0;
        if (packed.size() < sizeof length) {
            return std::nullopt;
        }
        std::memcpy(&length, packed.data(), sizeof length);
        packed.remove_prefix(sizeof length);
        if (length > packed.size()) {
            return std::nullopt;
        }
        texts.emplace_back(packed.substr(0, length));
        packed.remove_prefix(length);
    }
    return texts;
}

}  // namespace trellant::cli
