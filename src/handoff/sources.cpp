// SPDX-License-Identifier: Apache-2.0

#include <trellant/base/precondition.h>
#include <trellant/handoff/sources.h>

#include <algorithm>

namespace trellant {

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
        case SourceState::misfit:
            return "does not fit";
    }
    preconditionFailure("enumeration value outside its cases");
}

std::string_view stateWord(SourceState state) noexcept {
    switch (state) {
        case SourceState::embedded:
            return "embedded";
        case SourceState::located:
            return "located";
        case SourceState::missing:
            return "missing";
        case SourceState::severalCandidates:
            return "severalCandidates";
        case SourceState::misfit:
            return "misfit";
    }
    preconditionFailure("enumeration value outside its cases");
}

namespace {

SourceState stateOf(const AAFSourceEssence& essence, const OpenChoices& open) {
    if (essence.embedded) {
        return SourceState::embedded;
    }
    if (essence.fileURL) {
        return SourceState::located;
    }
    const auto choice = open.bySource.find(essence.id);
    if (choice == open.bySource.end()) {
        return SourceState::missing;
    }
    const bool anyFits =
        std::any_of(choice->second.candidates.begin(), choice->second.candidates.end(),
                    [](const MediaCandidate& candidate) { return !candidate.misfit; });
    return anyFits ? SourceState::severalCandidates : SourceState::misfit;
}

}  // namespace

Sources::Sources(const HandOff& handOff) {
    const AAFTimeline& timeline = handOff.timeline;
    sources_.reserve(timeline.essences.size());
    for (const AAFSourceEssence& essence : timeline.essences) {
        const SourceState state = stateOf(essence, handOff.openChoices);
        byID_.emplace(essence.id, sources_.size());
        sources_.push_back({&essence, state, 0});
    }
    byEvent_.reserve(timeline.events.size());
    for (const AAFClipEvent& event : timeline.events) {
        const auto found = byID_.find(event.essenceID);
        byEvent_.push_back(found == byID_.end() ? none : found->second);
        if (found != byID_.end()) {
            ++sources_[found->second].clips;
        }
    }
}

const Source* Sources::of(const AAFClipEvent& event) const {
    const auto found = byID_.find(event.essenceID);
    return found == byID_.end() ? nullptr : &sources_[found->second];
}

const std::string& sourceName(const AAFSourceEssence& essence) {
    if (essence.sourceName) {
        return *essence.sourceName;
    }
    return essence.originalPath ? *essence.originalPath : essence.id;
}

}  // namespace trellant
