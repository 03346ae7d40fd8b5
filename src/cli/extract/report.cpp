#include "report.h"

#include <trellant/base/precondition.h>

#include <algorithm>

namespace trellant::cli {

std::string_view stateText(AudioState state) noexcept {
    switch (state) {
        case AudioState::takenOut:
            return "taken out";
        case AudioState::converted:
            return "taken out as WAVE";
        case AudioState::found:
            return "found";
        case AudioState::missing:
            return "missing";
        case AudioState::undecided:
            return "missing, files of its name do not decide";
        case AudioState::failed:
            return "could not be taken out";
    }
    preconditionFailure("enumeration value outside its cases");
}

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

std::size_t ExtractReport::count(AudioState state) const {
    return static_cast<std::size_t>(
        std::count_if(audio.begin(), audio.end(),
                      [state](const AudioEntry& entry) { return entry.state == state; }));
}

}  // namespace trellant::cli
