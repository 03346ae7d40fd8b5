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

    /// Where a track of a mob was recorded from.
    struct Link {
        OMFUID mobID;
        OMFObject mob = OMFObject::none;
        std::uint32_t trackID = 0;
        /// Where that mob's track stands when this one begins, and what this one begins with, in
        /// seconds.
        AAFRational start{};
        AAFRational origin{};
    };

    /// Mobs behind a file: a reel, what it was copied from, and so on.
    static constexpr int mostLinks = 16;

    [[nodiscard]] std::optional<Reel> reelOf(OMFObject slot, OMFObject clip) {
        std::optional<Link> link = linkOf(slot, clip);
        if (!link) {
            return std::nullopt;
        }
        // The clip begins at the slot's own start, the file's first sample at its origin.
        AAFRational start = link->start - link->origin;
        for (int links = 1; links < mostLinks && !factsOf(link->mob).timecode; ++links) {
            const std::optional<Link>& next = behindTrack(link->mob, link->trackID);
            if (!next) {
                break;
            }
            start = start + next->origin + next->start;
            link = next;
        }
        const Facts& facts = factsOf(link->mob);
        return Reel{.mobID = link->mobID.description(),
                    .name = facts.name,
                    .start = start,
                    .timecode = facts.timecode};
    }

    [[nodiscard]] std::optional<Link> linkOf(OMFObject slot, OMFObject clip) const {
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
        return Link{.mobID = *mobID,
                    .mob = mob->second,
                    .trackID = reads_.uint32(clip, {OMFProperty::clipSourceTrackID}).value_or(0),
                    .start = AAFRational(start) / rate->aaf(),
                    .origin = AAFRational(origin) / rate->aaf()};
    }

    /// Behind the mob's track of that number.
    [[nodiscard]] const std::optional<Link>& behindTrack(OMFObject mob, std::uint32_t trackID) {
        const auto [known, isNew] = links_.try_emplace(std::uint64_t{number(mob)} << 32U | trackID);
        if (isNew) {
            known->second = readBehindTrack(mob, trackID);
        }
        return known->second;
    }

    [[nodiscard]] std::optional<Link> readBehindTrack(OMFObject mob, std::uint32_t trackID) {
        for (const OMFObject slot : reads_.objectRefs(mob, {OMFProperty::mobSlots})) {
            const auto description = reads_.objectRef(slot, {OMFProperty::slotTrackDesc});
            if (!description || reads_.uint32(*description, {OMFProperty::trackID}) != trackID) {
                continue;
            }
            const auto segment = reads_.objectRef(slot, {OMFProperty::slotSegment});
            return segment && reads_.classOf(*segment) == OMFClass::sourceClip
                       ? linkOf(slot, *segment)
                       : std::nullopt;
        }
        return std::nullopt;
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
            const auto rate = reads_.rational(slot, {OMFProperty::slotEditRate});
            const bool isRate = rate && rate->numerator > 0 && rate->denominator > 0;
            return ReelTimecode{std::max<std::int64_t>(start, 0), *frames, drop,
                                isRate ? std::optional(rate->aaf()) : std::nullopt};
        }
        return std::nullopt;
    }

    BoundedReads reads_;
    OMFDocument::MobMap mobs_;
    KeyedMap<OMFObject, Facts> facts_;
    /// Keys: mob in the high, track number in the low half.
    KeyedMap<std::uint64_t, std::optional<Link>> links_;
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
