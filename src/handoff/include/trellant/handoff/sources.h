// SPDX-License-Identifier: Apache-2.0
// The audio files of a timeline: where each one's sound is to be had, and who plays it.
#pragma once

#include <trellant/base/keyed_hash.h>
#include <trellant/handoff/hand_off.h>
#include <trellant/model/timeline.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace [[gnu::visibility("default")]] trellant {

enum class SourceState {
    /// Inside the interchange file.
    embedded,
    /// A file of its own, found.
    located,
    /// A file of its own, not found.
    missing,
    /// Several files bear its name and fit, and none was taken.
    severalCandidates,
    /// Files bear its name, and none of them is what its clips need.
    misfit
};

/// For people: "embedded", "located", "missing", "several candidates", "does not fit".
[[nodiscard]] std::string_view stateText(SourceState state) noexcept;
/// For programs: "embedded", "located", "missing", "severalCandidates", "misfit".
[[nodiscard]] std::string_view stateWord(SourceState state) noexcept;

struct Source {
    const AAFSourceEssence* essence = nullptr;
    SourceState state = SourceState::missing;
    std::size_t clips = 0;
};

/// The essences of one timeline, by id and in order.
class Sources {
  public:
    /// The timeline of `handOff` must outlive this.
    explicit Sources(const HandOff& handOff);

    [[nodiscard]] const std::vector<Source>& all() const noexcept { return sources_; }
    /// The source that the event plays; null when the timeline has none of that id.
    [[nodiscard]] const Source* of(const AAFClipEvent& event) const;
    /// The same for the event at `position` of the timeline, without looking its id up again.
    [[nodiscard]] const Source* ofEventAt(std::size_t position) const {
        const std::size_t source = byEvent_.at(position);
        return source == none ? nullptr : &sources_[source];
    }

  private:
    static constexpr auto none = static_cast<std::size_t>(-1);

    std::vector<Source> sources_;
    /// Positions of the sources that the events play.
    std::vector<std::size_t> byEvent_;
    KeyedMap<std::string_view, std::size_t> byID_;
};

/// What a person calls the source: its name, else its recorded path, else its id.
[[nodiscard]] const std::string& sourceName(const AAFSourceEssence& essence);

}  // namespace trellant
