#include "report.h"

#include <trellant/model/precondition.h>

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

std::string shellWord(const std::string& word) {
    const auto isPlain = [](char letter) {
        return (letter >= 'a' && letter <= 'z') || (letter >= 'A' && letter <= 'Z') ||
               (letter >= '0' && letter <= '9') ||
               std::string_view("_-./+:@%,=").find(letter) != std::string_view::npos;
    };
    if (!word.empty() && std::all_of(word.begin(), word.end(), isPlain)) {
        return word;
    }
    std::string quoted = "'";
    for (const char letter : word) {
        if (letter == '\'') {
            quoted += "'\\''";
        } else {
            quoted += letter;
        }
    }
    return quoted + "'";
}

}  // namespace trellant::cli
