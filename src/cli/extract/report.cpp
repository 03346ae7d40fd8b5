// SPDX-License-Identifier: Apache-2.0
#include "report.h"

#include <trellant/base/precondition.h>

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

}  // namespace trellant::cli
