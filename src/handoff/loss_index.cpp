// SPDX-License-Identifier: Apache-2.0
// Losses with an extent lie in a list by their start, and that list is a tree: the middle of each
// part knows the latest end of the whole part, so that parts which end too early are passed over as
// one. What is found costs its number and the depth of the tree, however many losses there are.
#include <trellant/handoff/loss_index.h>

#include <algorithm>
#include <iterator>

namespace trellant {

LossIndex::LossIndex(const std::vector<PlacedLoss>& losses) {
    for (std::size_t i = 0; i < losses.size(); ++i) {
        const PlacedLoss& loss = losses[i];
        if (loss.trackID && loss.start) {
            const AAFRational length = loss.duration.value_or(AAFRational::zero());
            const AAFRational end = *loss.start + std::max(length, AAFRational::zero());
            Track& track = byTrack_[*loss.trackID];
            (end == *loss.start ? track.cuts : track.extended)
                .push_back({*loss.start, end, end, i});
        }
    }
    for (auto& [id, track] : byTrack_) {
        sortByStart(track.cuts);
        sortByStart(track.extended);
        findLatestEnds(track.extended);
        for (const Span& span : track.extended) {
            track.ends.push_back(span.end);
        }
        std::sort(track.ends.begin(), track.ends.end());
    }
}

void LossIndex::sortByStart(Spans& spans) {
    std::stable_sort(spans.begin(), spans.end(),
                     [](const Span& left, const Span& right) { return left.start < right.start; });
}

void LossIndex::findLatestEnds(std::span<Span> part) {
    if (part.empty()) {
        return;
    }
    const std::size_t middle = part.size() / 2;
    for (const auto half : {part.first(middle), part.subspan(middle + 1)}) {
        if (!half.empty()) {
            findLatestEnds(half);
            part[middle].latestEnd =
                std::max(part[middle].latestEnd, half[half.size() / 2].latestEnd);
        }
    }
}

void LossIndex::collect(std::span<const Span> part, const AAFClipEvent& event,
                        std::vector<const Span*>& found) {
    if (part.empty() || found.size() == mostTouching) {
        return;
    }
    const std::size_t middle = part.size() / 2;
    const Span& span = part[middle];
    if (!(event.timelineStart < span.latestEnd)) {
        return;
    }
    collect(part.first(middle), event, found);
    if (!(span.start < event.timelineEnd())) {
        return;
    }
    if (event.timelineStart < span.end && found.size() < mostTouching) {
        found.push_back(&span);
    }
    collect(part.subspan(middle + 1), event, found);
}

std::size_t LossIndex::countTouching(const AAFClipEvent& event) const {
    const auto startsBefore = [](const Span& candidate, const AAFRational& time) {
        return candidate.start < time;
    };
    const auto found = byTrack_.find(event.trackID);
    if (found == byTrack_.end()) {
        return 0;
    }
    const Track& track = found->second;
    const AAFRational start = event.timelineStart;
    const AAFRational end = event.timelineEnd();
    // What has ended by the clip's start began before its end.
    const auto begun =
        std::lower_bound(track.extended.begin(), track.extended.end(), end, startsBefore);
    const auto ended = std::upper_bound(track.ends.begin(), track.ends.end(), start);
    const auto firstCut =
        std::lower_bound(track.cuts.begin(), track.cuts.end(), start, startsBefore);
    const auto lastCut = std::upper_bound(
        track.cuts.begin(), track.cuts.end(), end,
        [](const AAFRational& time, const Span& candidate) { return time < candidate.start; });
    return static_cast<std::size_t>((begun - track.extended.begin()) -
                                    (ended - track.ends.begin()) + (lastCut - firstCut));
}

std::vector<std::size_t> LossIndex::touching(const AAFClipEvent& event) const {
    const auto track = byTrack_.find(event.trackID);
    if (track == byTrack_.end()) {
        return {};
    }
    std::vector<const Span*> found;
    collect(track->second.extended, event, found);
    const Spans& cuts = track->second.cuts;
    auto cut = std::lower_bound(
        cuts.begin(), cuts.end(), event.timelineStart,
        [](const Span& candidate, const AAFRational& time) { return candidate.start < time; });
    // A cut at the clip's very end still belongs to it.
    for (std::size_t count = 0;
         count < mostTouching && cut != cuts.end() && !(event.timelineEnd() < cut->start);
         ++cut, ++count) {
        found.push_back(&*cut);
    }
    std::stable_sort(found.begin(), found.end(), [](const Span* left, const Span* right) {
        return left->start < right->start;
    });
    found.resize(std::min(found.size(), mostTouching));
    std::vector<std::size_t> positions;
    positions.reserve(found.size());
    std::transform(found.begin(), found.end(), std::back_inserter(positions),
                   [](const Span* span) { return span->position; });
    std::sort(positions.begin(), positions.end());
    return positions;
}

}  // namespace trellant
