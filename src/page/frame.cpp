// SPDX-License-Identifier: Apache-2.0
#include "frame.h"

#include "say.h"

#include <trellant/base/precondition.h>

namespace trellant::page {

void writeFrame(Markup& markup, std::string_view frame,
                const std::function<void(std::string_view)>& fill) {
    constexpr std::string_view opening = "{{";
    constexpr std::string_view closing = "}}";
    constexpr std::string_view saying = "say ";
    while (true) {
        const auto slot = frame.find(opening);
        markup.raw(frame.substr(0, slot));
        if (slot == std::string_view::npos) {
            return;
        }
        frame.remove_prefix(slot + opening.size());
        const auto end = frame.find(closing);
        precondition(end != std::string_view::npos, "slot of a frame without an end");
        const std::string_view name = frame.substr(0, end);
        if (name.starts_with(saying)) {
            markup.text(say(name.substr(saying.size())));
        } else {
            fill(name);
        }
        frame.remove_prefix(end + closing.size());
    }
}

}  // namespace trellant::page
