// SPDX-License-Identifier: Apache-2.0
#include "lanes.h"

#include <functional>
#include <map>
#include <optional>
#include <queue>
#include <set>
#include <tuple>
#include <utility>
#include <variant>

namespace trellant::exchange {

namespace {

std::string unknownName(const AAFAutomationInterpolation& curve) {
    const auto* unknown = std::get_if<AAFAutomationInterpolation::Unsupported>(&curve.curve);
    return unknown == nullptr ? std::string() : unknown->identifier;
}

/// Where a crossfade would be, and along which curve: start, end, kind of curve, its name.
using FadePlace = std::tuple<Samples, Samples, std::size_t, std::string>;

bool fadesAreApart(const PlannedClip& clip) {
    const Samples in = clip.fadeIn ? clip.fadeIn->length : 0;
    const Samples out = clip.fadeOut ? clip.fadeOut->length : 0;
    return in <= clip.length - out;
}

/// Where the clip's fade could be half of a crossfade; absent without such a fade.
std::optional<FadePlace> fadeOutPlace(const PlannedClip& clip) {
    if (!clip.fadeOut || !clip.fadeOut->shape.empty() || !fadesAreApart(clip)) {
        return std::nullopt;
    }
    return FadePlace(clip.end() - clip.fadeOut->length, clip.end(),
                     clip.fadeOut->curve.curve.index(), unknownName(clip.fadeOut->curve));
}

std::optional<FadePlace> fadeInPlace(const PlannedClip& clip) {
    if (!clip.fadeIn || !clip.fadeIn->shape.empty() || !fadesAreApart(clip)) {
        return std::nullopt;
    }
    return FadePlace(clip.start, clip.start + clip.fadeIn->length, clip.fadeIn->curve.curve.index(),
                     unknownName(clip.fadeIn->curve));
}

class Lanes {
  public:
    /// Most tracks need one lane, for which there is room at once.
    Lanes(std::string name, std::size_t clipCount) : name_(std::move(name)) {
        addLane();
        lanes_.front().clips.reserve(clipCount);
        free_.insert(0);
    }

    void add(PlannedClip clip) {
        release(clip.start);
        std::size_t lane = 0;
        if (const auto place = fadeInPlace(clip); place && crossfadesAt(*place, lane)) {
            clip.crossfadesIn = true;
        } else {
            lane = freeLane();
        }
        occupy(lane, clip);
        lanes_[lane].clips.push_back(std::move(clip));
    }

    [[nodiscard]] std::vector<Lane> all() && { return std::move(lanes_); }

  private:
    using Busy = std::pair<Samples, std::size_t>;

    void addLane() {
        const std::size_t number = lanes_.size() + 1;
        lanes_.push_back({number == 1 ? name_ : name_ + " (" + std::to_string(number) + ")", {}});
        fadeOuts_.emplace_back();
    }

    /// Lanes whose last clip has ended by `time` may be used again.
    void release(Samples time) {
        while (!busy_.empty() && busy_.top().first <= time) {
            const auto [end, lane] = busy_.top();
            busy_.pop();
            // An end that another clip has moved on says nothing.
            if (lanes_[lane].clips.back().end() == end) {
                forgetFadeOut(lane);
                free_.insert(lane);
            }
        }
    }

    [[nodiscard]] bool crossfadesAt(const FadePlace& place, std::size_t& lane) {
        const auto found = lanesByFadeOut_.find(place);
        if (found == lanesByFadeOut_.end()) {
            return false;
        }
        lane = *found->second.begin();
        return true;
    }

    [[nodiscard]] std::size_t freeLane() {
        if (free_.empty()) {
            addLane();
            return lanes_.size() - 1;
        }
        return *free_.begin();
    }

    void occupy(std::size_t lane, const PlannedClip& clip) {
        free_.erase(lane);
        forgetFadeOut(lane);
        busy_.emplace(clip.end(), lane);
        fadeOuts_[lane] = fadeOutPlace(clip);
        if (fadeOuts_[lane]) {
            lanesByFadeOut_[*fadeOuts_[lane]].insert(lane);
        }
    }

    void forgetFadeOut(std::size_t lane) {
        std::optional<FadePlace>& place = fadeOuts_[lane];
        if (!place) {
            return;
        }
        const auto found = lanesByFadeOut_.find(*place);
        found->second.erase(lane);
        if (found->second.empty()) {
            lanesByFadeOut_.erase(found);
        }
        place.reset();
    }

    std::string name_;
    std::vector<Lane> lanes_;
    /// By lane: of its last clip, as long as the lane is occupied.
    std::vector<std::optional<FadePlace>> fadeOuts_;
    std::map<FadePlace, std::set<std::size_t>> lanesByFadeOut_;
    std::priority_queue<Busy, std::vector<Busy>, std::greater<>> busy_;
    std::set<std::size_t> free_;
};

}  // namespace

bool isCrossfade(const PlannedClip& earlier, const PlannedClip& later) {
    const auto out = fadeOutPlace(earlier);
    return out && out == fadeInPlace(later);
}

std::vector<Lane> lanesOf(std::vector<PlannedClip> clips, const std::string& name) {
    Lanes lanes(name, clips.size());
    for (PlannedClip& clip : clips) {
        lanes.add(std::move(clip));
    }
    return std::move(lanes).all();
}

}  // namespace trellant::exchange
