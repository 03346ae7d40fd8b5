// SPDX-License-Identifier: Apache-2.0
#include <trellant/handoff/loss_index.h>

#include <algorithm>

namespace trellant {

namespace {

/// Spans that are looked at for one clip. Only where many short losses lie under one long loss are
/// there more between a clip's start and what touches it.
constexpr std::size_t mostLooks = 256;

/// How many of the ascending `times` lie before `time`.
std::size_t before(const std::vector<AAFRational>& times, const AAFRational& time) {
    return static_cast<std::size_t>(std::lower_bound(times.begin(), times.end(), time) -
                                    times.begin());
}

/// How many of them lie before `time` or at it.
std::size_t upTo(const std::vector<AAFRational>& times, const AAFRational& time) {
    return static_cast<std::size_t>(std::upper_bound(times.begin(), times.end(), time) -
                                    times.begin());
}

}  // namespace

LossIndex::LossIndex(const std::vector<PlacedLoss>& losses) {
    for (std::size_t i = 0; i < losses.size(); ++i) {
        const PlacedLoss& loss = losses[i];
        if (loss.trackID && loss.start) {
            const AAFRational length = loss.duration.value_or(AAFRational::zero());
            const AAFRational end = *loss.start + std::max(length, AAFRational::zero());
            byTrack_[*loss.trackID].spans.push_back({*loss.start, end, end, i});
        }
    }
    for (auto& [id, track] : byTrack_) {
        std::stable_sort(
            track.spans.begin(), track.spans.end(),
            [](const Span& left, const Span& right) { return left.start < right.start; });
        for (std::size_t i = 0; i < track.spans.size(); ++i) {
            Span& span = track.spans[i];
            if (i > 0) {
                span.latestEnd = std::max(span.end, track.spans[i - 1].latestEnd);
            }
            if (span.start == span.end) {
                track.cuts.push_back(span.start);
            } else {
                track.starts.push_back(span.start);
                track.ends.push_back(span.end);
            }
        }
        std::sort(track.ends.begin(), track.ends.end());
    }
}

std::size_t LossIndex::countTouching(const AAFClipEvent& event) const {
    const auto found = byTrack_.find(event.trackID);
    if (found == byTrack_.end()) {
        return 0;
    }
    const Track& track = found->second;
    const AAFRational start = event.timelineStart;
    const AAFRational end = event.timelineEnd();
    // What has ended by the clip's start began before its end.
    return before(track.starts, end) - upTo(track.ends, start) + upTo(track.cuts, end) -
           before(track.cuts, start);
}

std::vector<std::size_t> LossIndex::touching(const AAFClipEvent& event) const {
    std::vector<std::size_t> positions;
    const auto found = byTrack_.find(event.trackID);
    if (found == byTrack_.end()) {
        return positions;
    }
    const AAFRational start = event.timelineStart;
    const AAFRational end = event.timelineEnd();
    const std::vector<Span>& spans = found->second.spans;
    // Ends do not ascend, the latest so far does: all before this one have ended.
    auto span = std::lower_bound(
        spans.begin(), spans.end(), start,
        [](const Span& candidate, const AAFRational& time) { return candidate.latestEnd < time; });
    for (std::size_t looks = 0; looks < mostLooks && span != spans.end() && !(end < span->start) &&
                                positions.size() < mostPositions;
         ++looks, ++span) {
        const bool isCut = span->start == span->end;
        if (isCut ? !(span->start < start) : span->start < end && start < span->end) {
            positions.push_back(span->position);
        }
    }
    std::sort(positions.begin(), positions.end());
    return positions;
}

}  // namespace trellant
