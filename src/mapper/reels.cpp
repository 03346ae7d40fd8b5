// SPDX-License-Identifier: Apache-2.0
// A Source Mob of a file has a track whose segment is a Source Clip: it plays a track of the mob of
// the reel, from StartTime on, counted in the edit rate of the file's own slot. The reel's labels
// stand in another of its slots.
#include "bounded_reads.h"

#include <trellant/base/keyed_hash.h>
#include <trellant/mapper/reels.h>

#include <algorithm>

namespace trellant {

namespace {

/// The Source Mobs of a document by the texts of their identifiers.
KeyedMap<std::string, OMFObject> mobsOf(const OMFDocument::MobMap& mobs,
                                        const AAFTimeline& timeline) {
    KeyedSet<std::string> wanted;
    for (const AAFSourceEssence& essence : timeline.essences) {
        if (essence.mobID) {
            wanted.insert(*essence.mobID);
        }
    }
    KeyedMap<std::string, OMFObject> found;
    for (const auto& [mobID, object] : mobs) {
        std::string text = mobID.description();
        if (wanted.contains(text)) {
            found.emplace(std::move(text), object);
        }
    }
    return found;
}

class ReelSearch {
  public:
    explicit ReelSearch(const OMFDocument& document) : reads_(document), mobs_(document.mobMap()) {}

    [[nodiscard]] const OMFDocument::MobMap& mobs() const noexcept { return mobs_; }

    /// Behind the Source Mob `file`, without an essence's identifier.
    [[nodiscard]] std::optional<Reel> behind(OMFObject file) {
        for (const OMFObject slot : reads_.objectRefs(file, {OMFProperty::mobSlots})) {
            const auto segment = reads_.objectRef(slot, {OMFProperty::slotSegment});
            if (segment && reads_.classOf(*segment) == OMFClass::sourceClip) {
                if (auto reel = reelOf(slot, *segment)) {
                    return reel;
                }
            }
        }
        return std::nullopt;
    }

  private:
    /// What is told of a reel whoever plays it.
    struct Facts {
        std::optional<std::string> name{};
        std::optional<ReelTimecode> timecode{};
    };

    [[nodiscard]] std::optional<Reel> reelOf(OMFObject slot, OMFObject clip) {
        const auto mobID = reads_.uid(clip, {OMFProperty::clipSourceID});
        const auto mob = mobID ? mobs_.find(*mobID) : mobs_.end();
        if (mob == mobs_.end() || reads_.classOf(mob->second) != OMFClass::sourceMob) {
            return std::nullopt;
        }
        const auto rate = reads_.rational(slot, {OMFProperty::slotEditRate});
        if (!rate || rate->numerator <= 0 || rate->denominator <= 0) {
            return std::nullopt;
        }
        const auto start = reads_.int64(clip, {OMFProperty::clipStartTime}).value_or(0);
        const auto description = reads_.objectRef(slot, {OMFProperty::slotTrackDesc});
        const auto origin =
            description ? reads_.int64(*description, {OMFProperty::trackOrigin}).value_or(0) : 0;
        const Facts& facts = factsOf(mob->second);
        // The clip begins at the slot's own start, the file's first sample at its origin.
        return Reel{.mobID = mobID->description(),
                    .name = facts.name,
                    .start = (AAFRational(start) - AAFRational(origin)) / rate->aaf(),
                    .timecode = facts.timecode};
    }

    [[nodiscard]] const Facts& factsOf(OMFObject mob) {
        const auto [known, isNew] = facts_.try_emplace(mob);
        if (isNew) {
            known->second.name = reads_.string(mob, {OMFProperty::mobName});
            known->second.timecode = timecodeOf(mob);
        }
        return known->second;
    }

    [[nodiscard]] std::optional<ReelTimecode> timecodeOf(OMFObject mob) {
        for (const OMFObject slot : reads_.objectRefs(mob, {OMFProperty::mobSlots})) {
            const auto segment = reads_.objectRef(slot, {OMFProperty::slotSegment});
            if (!segment || reads_.classOf(*segment) != OMFClass::timecode) {
                continue;
            }
            const auto frames = reads_.int16(*segment, {OMFProperty::timecodeFPS});
            if (!frames || *frames < 1) {
                continue;
            }
            const auto start = reads_.int64(*segment, {OMFProperty::timecodeStart}).value_or(0);
            const bool drop = reads_.int16(*segment, {OMFProperty::timecodeDrop}).value_or(0) != 0;
            return ReelTimecode{std::max<std::int64_t>(start, 0), *frames, drop};
        }
        return std::nullopt;
    }

    BoundedReads reads_;
    OMFDocument::MobMap mobs_;
    KeyedMap<OMFObject, Facts> facts_;
};

}  // namespace

std::vector<Reel> reels(const OMFDocument& document, const AAFTimeline& timeline) {
    ReelSearch search(document);
    const auto mobs = mobsOf(search.mobs(), timeline);
    std::vector<Reel> result;
    for (const AAFSourceEssence& essence : timeline.essences) {
        const auto mob = essence.mobID ? mobs.find(*essence.mobID) : mobs.end();
        if (mob == mobs.end()) {
            continue;
        }
        if (auto reel = search.behind(mob->second)) {
            reel->essenceID = essence.id;
            result.push_back(std::move(*reel));
        }
    }
    return result;
}

}  // namespace trellant
