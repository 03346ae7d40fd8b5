// SPDX-License-Identifier: Apache-2.0
#include <trellant/base/precondition.h>
#include <trellant/check/rule.h>

#include <algorithm>

namespace trellant::check {

namespace {

template <class T>
const T& valueIn(const RuleSettings& settings, std::string_view key) {
    const auto found = std::find_if(settings.values.begin(), settings.values.end(),
                                    [key](const auto& value) { return value.first == key; });
    precondition(found != settings.values.end(), "the rule has no such parameter");
    const T* const value = std::get_if<T>(&found->second);
    precondition(value != nullptr, "the parameter is of another kind");
    return *value;
}

}  // namespace

const AAFRational& RuleSettings::number(std::string_view key) const {
    return valueIn<AAFRational>(*this, key);
}

const std::vector<AAFRational>& RuleSettings::numbers(std::string_view key) const {
    return valueIn<std::vector<AAFRational>>(*this, key);
}

const std::string& RuleSettings::text(std::string_view key) const {
    return valueIn<std::string>(*this, key);
}

const std::vector<std::string>& RuleSettings::texts(std::string_view key) const {
    return valueIn<std::vector<std::string>>(*this, key);
}

}  // namespace trellant::check
