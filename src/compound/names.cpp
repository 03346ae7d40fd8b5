// SPDX-License-Identifier: Apache-2.0
#include "names.h"

#include <trellant/base/text.h>
#include <trellant/compound/errors.h>

#include <string>

namespace trellant::compound {

namespace {

using NameProblem = CompoundError::NameProblem;

constexpr bool isHighSurrogate(char16_t unit) noexcept {
    return unit >= 0xD800 && unit <= 0xDBFF;
}

constexpr bool isLowSurrogate(char16_t unit) noexcept {
    return unit >= 0xDC00 && unit <= 0xDFFF;
}

constexpr bool isForbidden(char16_t unit) noexcept {
    return unit == u'/' || unit == u'\\' || unit == u':' || unit == u'!' || unit == u'\0';
}

/// Half of a pair at `index` without the other half behind or before it.
bool isUnpaired(std::u16string_view name, std::size_t index) noexcept {
    if (isHighSurrogate(name[index])) {
        return index + 1 == name.size() || !isLowSurrogate(name[index + 1]);
    }
    return isLowSurrogate(name[index]) && (index == 0 || !isHighSurrogate(name[index - 1]));
}

[[noreturn]] void refuse(std::u16string_view name, NameProblem problem) {
    throw CompoundError(CompoundError::InvalidName{std::u16string(name), problem});
}

}  // namespace

void checkName(std::u16string_view name) {
    if (name.empty()) {
        refuse(name, NameProblem::empty);
    }
    if (name.size() > maximumNameLength) {
        refuse(name, NameProblem::moreThan31Units);
    }
    for (std::size_t index = 0; index < name.size(); ++index) {
        if (isForbidden(name[index])) {
            refuse(name, NameProblem::forbiddenCharacter);
        }
        if (isUnpaired(name, index)) {
            refuse(name, NameProblem::unpairedSurrogate);
        }
    }
}

std::weak_ordering compareNames(std::u16string_view left, std::u16string_view right) noexcept {
    if (left.size() != right.size()) {
        return left.size() <=> right.size();
    }
    for (std::size_t index = 0; index < left.size(); ++index) {
        if (left[index] == right[index]) {
            continue;
        }
        const char16_t leftUnit = upperCased(left[index]);
        const char16_t rightUnit = upperCased(right[index]);
        if (leftUnit != rightUnit) {
            return leftUnit <=> rightUnit;
        }
    }
    return std::weak_ordering::equivalent;
}

}  // namespace trellant::compound
