// SPDX-License-Identifier: Apache-2.0

#include <trellant/handoff/loss_index.h>

#include <algorithm>

namespace trellant {

LossIndex::LossIndex(const std::vector<PlacedLoss>& losses) {
    for (std::size_t i = 0; i < losses.size(); ++i) {
        const PlacedLoss& loss = losses[i];
        if (loss.trackID && loss.start) {
            const AAFRational end = *loss.start + loss.duration.value_or(AAFRational::zero());
            byTrack_[*loss.trackID].push_back({*loss.start, end, end, i});
        }
    }
    for (auto& [track, spans] : byTrack_) {
        std::stable_sort(spans.begin(), spans.end(), [](const Span& left, const Span& right) {
            return left.start < right.start;
        });
        for (std::size_t i = 1; i < spans.size(); ++i) {
            spans[i].latestEnd = std::max(spans[i].end, spans[i - 1].latestEnd);
        }
    }
}

std::vector<std::size_t> LossIndex::touching(const AAFClipEvent& event) const {
    std::vector<std::size_t> positions;
    const auto track = byTrack_.find(event.trackID);
    if (track == byTrack_.end()) {
        return positions;
    }
    const AAFRational start = event.timelineStart;
    const AAFRational end = event.timelineEnd();
    const std::vector<Span>& spans = track->second;
    // The first that begins after the clip; a cut at the clip's very end still belongs to it.
    auto span = std::upper_bound(
        spans.begin(), spans.end(), end,
        [](const AAFRational& time, const Span& candidate) { return time < candidate.start; });
    while (span != spans.begin() && !((span - 1)->latestEnd < start)) {
        --span;
        const bool isCut = span->start == span->end;
        if (isCut ? !(span->start < start) : span->start < end && start < span->end) {
            positions.push_back(span->position);
        }
    }
    std::sort(positions.begin(), positions.end());
    return positions;
}

}  // namespace trellant
