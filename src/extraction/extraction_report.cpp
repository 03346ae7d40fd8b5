// SPDX-License-Identifier: Apache-2.0
#include <trellant/base/precondition.h>
#include <trellant/extraction/extraction_report.h>

#include <algorithm>

namespace trellant {

std::string_view stateWord(AudioState state) noexcept {
    switch (state) {
        case AudioState::takenOut:
            return "takenOut";
        case AudioState::converted:
            return "converted";
        case AudioState::found:
            return "found";
        case AudioState::missing:
            return "missing";
        case AudioState::undecided:
            return "undecided";
        case AudioState::failed:
            return "failed";
    }
    preconditionFailure("enumeration value outside its cases");
}

std::size_t ExtractionReport::count(AudioState state) const {
    return static_cast<std::size_t>(
        std::count_if(audio.begin(), audio.end(),
                      [state](const AudioEntry& entry) { return entry.state == state; }));
}

}  // namespace trellant
