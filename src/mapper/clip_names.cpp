// SPDX-License-Identifier: Apache-2.0
#include "clip_names.h"

namespace trellant {

namespace {

constexpr std::string_view wantedAttribute = "Name";
/// Searches that looked at fewer attributes are cheaper to repeat than to remember.
constexpr std::uint64_t cheapSearch = 16;

}  // namespace

std::optional<std::string> ClipNames::nameOf(OMFObject clip) {
    if (auto name = reads_.string(clip, {OMFProperty::componentName})) {
        return name;
    }
    const auto attributes = reads_.objectRef(clip, {OMFProperty::componentAttributes});
    return attributes ? attributeString(*attributes, 0) : std::nullopt;
}

std::optional<std::string> ClipNames::attributeString(OMFObject unter, int tiefe) {
    if (tiefe >= maximumLevels) {
        return std::nullopt;
    }
    const auto key = std::uint64_t{number(unter)} << 2U | static_cast<std::uint64_t>(tiefe);
    if (const auto known = remembered_.find(key); known != remembered_.end()) {
        reads_.countText(known->second ? known->second->size() : 0);
        return known->second;
    }
    const auto lookedBefore = looked_;
    auto result = searchList(unter, tiefe);
    if (looked_ - lookedBefore > cheapSearch) {
        remembered_.emplace(key, result);
    }
    return result;
}

std::optional<std::string> ClipNames::searchList(OMFObject unter, int tiefe) {
    for (const auto attribute : reads_.objectRefs(unter, {OMFProperty::attributeRefs})) {
        ++looked_;
        if (reads_.string(attribute, {OMFProperty::attributeName}) == wantedAttribute) {
            if (auto text = reads_.string(attribute, {OMFProperty::attributeString})) {
                return text;
            }
        }
        if (const auto list = reads_.objectRef(attribute, {OMFProperty::attributeObject})) {
            if (auto text = attributeString(*list, tiefe + 1)) {
                return text;
            }
        }
    }
    return std::nullopt;
}

}  // namespace trellant
