// SPDX-License-Identifier: Apache-2.0
// An event's id names the Source Clip that it was made of: "omf-event-19-0" is object 19.
#include "bounded_reads.h"

#include <trellant/base/keyed_hash.h>
#include <trellant/mapper/master_mobs.h>

#include <charconv>
#include <cstdint>
#include <string_view>

namespace trellant {

namespace {

std::optional<OMFObject> clipOf(const AAFClipEvent& event) {
    constexpr std::string_view prefix = "omf-event-";
    std::string_view text = event.id;
    if (!text.starts_with(prefix)) {
        return std::nullopt;
    }
    text.remove_prefix(prefix.size());
    std::uint32_t object = 0;
    const auto read = std::from_chars(text.data(), text.data() + text.size(), object);
    return read.ec == std::errc() ? std::optional(OMFObject{object}) : std::nullopt;
}

class Search {
  public:
    explicit Search(const OMFDocument& document) : reads_(document), mobs_(document.mobMap()) {}

    void add(const AAFClipEvent& event) {
        const auto clip = clipOf(event);
        found_.ofEvents.push_back(clip ? playedBy(*clip) : std::nullopt);
    }
    [[nodiscard]] MasterMobs take() { return std::move(found_); }

  private:
    [[nodiscard]] std::optional<std::size_t> playedBy(OMFObject clip) {
        const auto mobID = reads_.uid(clip, {OMFProperty::clipSourceID});
        const auto mob = mobID ? mobs_.find(*mobID) : mobs_.end();
        if (mob == mobs_.end() || reads_.classOf(mob->second) != OMFClass::masterMob) {
            return std::nullopt;
        }
        const auto [known, isNew] = places_.try_emplace(mob->second, found_.mobs.size());
        if (isNew) {
            found_.mobs.push_back(
                {mobID->description(), reads_.string(mob->second, {OMFProperty::mobName})});
        }
        return known->second;
    }

    BoundedReads reads_;
    OMFDocument::MobMap mobs_;
    KeyedMap<OMFObject, std::size_t> places_;
    MasterMobs found_;
};

}  // namespace

MasterMobs masterMobs(const OMFDocument& document, const AAFTimeline& timeline) {
    Search search(document);
    for (const AAFClipEvent& event : timeline.events) {
        search.add(event);
    }
    return search.take();
}

}  // namespace trellant
