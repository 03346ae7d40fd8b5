// SPDX-License-Identifier: Apache-2.0
#include "bento_names.h"

#include <utility>

namespace trellant {

std::size_t BentoNames::add(std::uint32_t object, ByteView value) {
    std::string text = asciiCString(value);
    if (text.empty()) {
        return 0;
    }
    const auto [entry, isNew] = names_.try_emplace(object, std::move(text));
    if (isNew) {
        objects_.try_emplace(entry->second, object);
    }
    return entry->second.size();
}

std::optional<std::string_view> BentoNames::name(std::uint32_t object) const {
    const auto found = names_.find(object);
    return found == names_.end() ? std::nullopt : std::optional<std::string_view>(found->second);
}

std::optional<std::uint32_t> BentoNames::object(std::string_view name) const {
    const auto found = objects_.find(name);
    return found == objects_.end() ? std::nullopt : std::optional(found->second);
}

}  // namespace trellant
