// SPDX-License-Identifier: Apache-2.0
#include "sequence_length.h"

#include <trellant/aaf/errors.h>

#include <algorithm>

namespace trellant::aaf {

namespace {

[[noreturn]] void outOfRange() {
    throw AafError(AafError::LengthOutOfRange{});
}

std::int64_t sum(std::int64_t left, std::int64_t right) {
    std::int64_t result = 0;
    if (__builtin_add_overflow(left, right, &result)) {
        outOfRange();
    }
    return result;
}

std::int64_t difference(std::int64_t left, std::int64_t right) {
    std::int64_t result = 0;
    if (__builtin_sub_overflow(left, right, &result)) {
        outOfRange();
    }
    return result;
}

bool isTransition(const Component& component) noexcept {
    return std::holds_alternative<Transition>(component);
}

void checkTransitions(const std::vector<Component>& components) {
    if (components.empty()) {
        return;
    }
    const bool pair = std::adjacent_find(components.begin(), components.end(),
                                         [](const Component& left, const Component& right) {
                                             return isTransition(left) && isTransition(right);
                                         }) != components.end();
    if (pair || isTransition(components.front()) || isTransition(components.back())) {
        throw AafError(AafError::MisplacedTransition{});
    }
}

}  // namespace

std::int64_t lengthOf(const std::vector<Component>& components) {
    checkTransitions(components);
    std::int64_t total = 0;
    for (const Component& component : components) {
        const std::int64_t length =
            std::visit([](const auto& one) { return one.length; }, component);
        if (length < 0) {
            outOfRange();
        }
        total = isTransition(component) ? difference(total, length) : sum(total, length);
    }
    if (total < 0) {
        outOfRange();
    }
    return total;
}

std::int64_t extentOf(const std::vector<DescriptiveMarker>& markers) {
    if (markers.empty()) {
        return 0;
    }
    std::int64_t first = markers.front().position;
    std::int64_t end = first;
    for (const DescriptiveMarker& marker : markers) {
        first = std::min(first, marker.position);
        end = std::max(end, sum(marker.position, marker.length.value_or(0)));
    }
    return difference(end, first);
}

}  // namespace trellant::aaf
