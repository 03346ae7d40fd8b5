// SPDX-License-Identifier: Apache-2.0
// Which audio files a session has, and what they are called.
#pragma once

#include <trellant/base/keyed_hash.h>
#include <trellant/exchange/export_plan.h>
#include <trellant/exchange/file_stem.h>

#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace trellant::exchange {

/// Grows while clips ask for what they play.
class MediaList {
  public:
    /// Both must outlive this.
    MediaList(const AAFTimeline& timeline, const PlanRequest& request);

    /// What a clip plays: the position of its file in all(), and the channel of that file where it
    /// plays one of several.
    struct Played {
        std::size_t media;
        std::optional<std::int64_t> channel;
    };
    /// `sourceEnd`: the sample of the source behind the last one that the clip plays.
    [[nodiscard]] Played played(std::size_t essence, const std::optional<std::int64_t>& channel,
                                std::int64_t sourceEnd);

    [[nodiscard]] const std::vector<PlannedMedia>& all() const noexcept { return media_; }
    [[nodiscard]] std::vector<PlannedMedia> take() && { return std::move(media_); }

  private:
    [[nodiscard]] PlannedMedia made(std::size_t essence, std::optional<std::int64_t> channel);
    [[nodiscard]] std::string uniqueFileName(const std::string& stem);

    const AAFTimeline& timeline_;
    const PlanRequest& request_;
    std::vector<PlannedMedia> media_;
    std::map<std::pair<std::size_t, std::optional<std::int64_t>>, std::size_t> byUse_;
    KeyedSet<std::string> taken_;
    KeyedMap<std::string, std::uint64_t> nextNumbers_;
};

}  // namespace trellant::exchange
