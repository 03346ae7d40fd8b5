// SPDX-License-Identifier: Apache-2.0
#include "track_pan.h"

#include <trellant/base/text.h>

#include <algorithm>
#include <array>
#include <cmath>

namespace trellant {

namespace {

/// Pans closer than this are one pan.
constexpr double panTolerance = 1e-6;
/// A pan this close to an end lies on it.
constexpr double endTolerance = 1e-9;

}  // namespace

AAFChannelRole roleFromName(const std::optional<std::string>& name) {
    if (!name) {
        return AAFChannelRole::mono;
    }
    const auto lower = lowerCased(*name);
    for (const char separator : {'_', '-', '.', ' '}) {
        for (const auto& [letter, role] :
             {std::pair{'l', AAFChannelRole::left}, std::pair{'r', AAFChannelRole::right}}) {
            if (lower.ends_with(std::string{separator, letter})) {
                return role;
            }
        }
    }
    return AAFChannelRole::mono;
}

TrackPan trackPan(const EventDrafts& drafts, const std::optional<std::string>& name) {
    TrackPan result{.role = roleFromName(name)};
    std::optional<double> first;
    double least = 0;
    double greatest = 0;
    bool someLack = false;
    for (const auto& draft : drafts) {
        if (!draft.fixedPan) {
            someLack = true;
        } else if (!first) {
            first = least = greatest = *draft.fixedPan;
        } else {
            least = std::min(least, *draft.fixedPan);
            greatest = std::max(greatest, *draft.fixedPan);
        }
    }
    if (!first) {
        return result;
    }
    if (someLack || greatest - least >= panTolerance) {
        result.differs = true;
        return result;
    }
    result.fixedPan = first;
    if (std::abs(*first) < endTolerance) {
        result.role = AAFChannelRole::left;
    } else if (std::abs(*first - 1) < endTolerance) {
        result.role = AAFChannelRole::right;
    }
    return result;
}

}  // namespace trellant
