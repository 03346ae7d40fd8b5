// SPDX-License-Identifier: Apache-2.0
#include <trellant/model/timeline_problem.h>

namespace trellant {

std::string AAFTimelinePlace::text() const {
    std::string text(rawValue(kind));
    if (index) {
        text.append("[").append(std::to_string(*index)).append("]");
    }
    return text;
}

}  // namespace trellant
