#include "sources.h"

#include <trellant/base/precondition.h>

#include <unordered_set>

namespace trellant::cli {

std::string_view stateText(SourceState state) noexcept {
    switch (state) {
        case SourceState::embedded:
            return "embedded";
        case SourceState::located:
            return "located";
        case SourceState::missing:
            return "missing";
        case SourceState::severalCandidates:
            return "several candidates";
    }
    preconditionFailure("enumeration value outside its cases");
}

Sources::Sources(const AAFTimeline& timeline, const std::vector<std::string>& ambiguous) {
    const std::unordered_set<std::string_view> several(ambiguous.begin(), ambiguous.end());
    sources_.reserve(timeline.essences.size());
    for (const AAFSourceEssence& essence : timeline.essences) {
        SourceState state = SourceState::missing;
        if (essence.embedded) {
            state = SourceState::embedded;
        } else if (essence.fileURL) {
            state = SourceState::located;
        } else if (several.contains(essence.id)) {
            state = SourceState::severalCandidates;
        }
        byID_.emplace(essence.id, sources_.size());
        sources_.push_back({&essence, state, 0});
    }
    for (const AAFClipEvent& event : timeline.events) {
        if (const auto found = byID_.find(event.essenceID); found != byID_.end()) {
            ++sources_[found->second].clips;
        }
    }
}

const Source* Sources::of(const AAFClipEvent& event) const {
    const auto found = byID_.find(event.essenceID);
    return found == byID_.end() ? nullptr : &sources_[found->second];
}

std::string sourceName(const AAFSourceEssence& essence) {
    if (essence.sourceName) {
        return *essence.sourceName;
    }
    return essence.originalPath.value_or(essence.id);
}

}  // namespace trellant::cli
