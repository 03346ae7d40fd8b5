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

bool hasUnpairedSurrogate(std::u16string_view name) noexcept {
    for (std::size_t index = 0; index < name.size(); ++index) {
        if (isLowSurrogate(name[index])) {
            return true;
        }
        if (isHighSurrogate(name[index])) {
            ++index;
            if (index == name.size() || !isLowSurrogate(name[index])) {
                return true;
            }
        }
    }
    return false;
}

[[noreturn]] void refuse(std::u16string_view name, NameProblem problem) {
    throw CompoundError(CompoundError::InvalidName{std::u16string(name), problem});
}

}  // namespace

void checkName(std::u16string_view name) {
    constexpr std::u16string_view forbidden(u"/\\:!\0", 5);
    if (name.empty()) {
        refuse(name, NameProblem::empty);
    }
    if (name.size() > maximumNameLength) {
        refuse(name, NameProblem::moreThan31Units);
    }
    if (name.find_first_of(forbidden) != std::u16string_view::npos) {
        refuse(name, NameProblem::forbiddenCharacter);
    }
    if (hasUnpairedSurrogate(name)) {
        refuse(name, NameProblem::unpairedSurrogate);
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
