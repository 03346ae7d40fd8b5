// SPDX-License-Identifier: Apache-2.0
// The one composition of the file: timecode, a slot for each lane, markers. Its clips play master
// mobs, one for each name that a channel of a file is played under; those play the files' mobs.
#include "aaf_identity.h"
#include "aaf_lane.h"
#include "aaf_limits.h"
#include "aaf_markers.h"
#include "aaf_media.h"
#include "aaf_operations.h"

#include <trellant/base/int128.h>
#include <trellant/base/keyed_hash.h>

#include <algorithm>
#include <limits>
#include <utility>

namespace trellant::sessions {

namespace {

using exchange::Samples;

constexpr std::uint32_t timecodeSlotID = 1;

/// A WAVE file has no more.
constexpr std::int64_t mostChannels = 65'535;
constexpr std::int64_t mostFps = 65'535;
constexpr std::int64_t mostFrames = std::numeric_limits<std::int64_t>::max();

/// Up to the end of the session, the last frame whole.
aaf::Timecode timecodeOf(const exchange::ExportPlan& plan, const aaf::Rational& frameRate) {
    const AAFTimecodeAddress& start = plan.start;
    const Int128 samples = Int128{plan.length} * frameRate.numerator;
    const Int128 samplesInAFrame = Int128{plan.rate} * frameRate.denominator;
    const Int128 frames = (samples + samplesInAFrame - 1) / samplesInAFrame;
    return {.length = static_cast<std::int64_t>(std::clamp<Int128>(frames, 1, mostFrames)),
            .start = start.absoluteFrameNumber(),
            .fps = static_cast<std::uint16_t>(
                std::clamp<std::int64_t>(start.rate.nominalFramesPerSecond, 1, mostFps)),
            .drop = start.rate.dropFrame};
}

class SessionWriter {
  public:
    explicit SessionWriter(const Session& session)
        : session_(session),
          plan_(session.plan),
          identity_(session),
          rate_(storedRate(AAFRational(plan_.rate), plan_.rate)),
          masterMobs_(plan_.media.size()),
          channels_(plan_.media.size(), {0}) {}

    [[nodiscard]] aaf::AafFile file() && {
        file_.identification = identity_.identification();
        file_.lastModified = identity_.date();
        aaf::Mob composition{.mobID = identity_.compositionMob(),
                             .name = identity_.compositionName(),
                             .creationTime = identity_.date(),
                             .lastModified = identity_.date(),
                             .usageCode = aaf::UsageCode::topLevel};
        composition.slots.emplace_back(timecodeSlot());
        addTracks(composition);
        if (!session_.markers.empty()) {
            composition.slots.emplace_back(
                markerSlot(session_, nextSlotID_, frameRate(), firstSlots_));
        }
        file_.compositionMobs.push_back(std::move(composition));
        addMedia(session_, identity_, channels_, file_);
        return std::move(file_);
    }

  private:
    [[nodiscard]] aaf::TimelineMobSlot timecodeSlot() const {
        return {.slotID = timecodeSlotID,
                .slotName = "Timecode",
                .physicalTrackNumber = 1,
                .editRate = frameRate(),
                .dataKind = aaf::DataKind::timecode,
                .segment = timecodeOf(plan_, frameRate())};
    }

    [[nodiscard]] aaf::Rational frameRate() const {
        const AAFTimecodeRate& timecode = plan_.start.rate;
        return storedRate(timecode.exactRate, timecode.nominalFramesPerSecond);
    }

    void addTracks(aaf::Mob& composition) {
        for (const exchange::PlannedTrack& track : plan_.tracks) {
            const std::vector<aaf::OperationGroup> operations = trackOperations(track);
            firstSlots_.push_back(nextSlotID_);
            for (const exchange::Lane& lane : track.lanes) {
                composition.slots.emplace_back(trackSlot(lane, operations));
            }
        }
    }

    aaf::TimelineMobSlot trackSlot(const exchange::Lane& lane,
                                   const std::vector<aaf::OperationGroup>& operations) {
        std::vector<aaf::MobID> mobs;
        mobs.reserve(lane.clips.size());
        for (const exchange::PlannedClip& clip : lane.clips) {
            mobs.push_back(masterMobOf(clip));
        }
        aaf::Sequence sequence = sequenceOfLane(lane, mobs, plan_.length);
        sequence.operationGroups = operations;
        const std::uint32_t slotID = nextSlotID_++;
        return {.slotID = slotID,
                .slotName = nameAsWritten(lane.name),
                .physicalTrackNumber = slotID - timecodeSlotID,
                .editRate = rate_,
                .segment = std::move(sequence)};
    }

    /// Of a clip that plays all channels the first.
    aaf::MobID masterMobOf(const exchange::PlannedClip& clip) {
        const auto channel = static_cast<std::uint32_t>(
            std::clamp<std::int64_t>(clip.channel.value_or(0), 0, mostChannels - 1));
        std::string name = nameAsWritten(clip.name);
        auto& mobs = masterMobs_.at(clip.media);
        const auto key = std::to_string(channel) + ":" + name;
        if (const auto known = mobs.find(key); known != mobs.end()) {
            return known->second;
        }
        const aaf::MobID id = identity_.masterMob(clip.media, channel, name);
        mobs.emplace(key, id);
        channels_[clip.media].insert(channel);
        addMasterMob(clip.media, channel, id, std::move(name));
        return id;
    }

    void addMasterMob(std::size_t media, std::uint32_t channel, const aaf::MobID& id,
                      std::string name) {
        aaf::Mob mob{.mobID = id,
                     .name = std::move(name),
                     .creationTime = identity_.date(),
                     .lastModified = identity_.date()};
        mob.slots.emplace_back(
            aaf::TimelineMobSlot{.slotID = 1,
                                 .physicalTrackNumber = channel + 1,
                                 .editRate = storedRate(plan_.media[media].sampleRate, plan_.rate),
                                 .segment = aaf::SourceClip{.length = storedFrames(session_, media),
                                                            .sourceID = identity_.sourceMob(media),
                                                            .sourceMobSlotID = channel + 1}});
        file_.masterMobs.push_back(std::move(mob));
    }

    const Session& session_;
    const exchange::ExportPlan& plan_;
    AafIdentity identity_;
    aaf::Rational rate_;
    aaf::AafFile file_;
    /// Of each medium by channel and name.
    std::vector<KeyedMap<std::string, aaf::MobID>> masterMobs_;
    ChannelsPlayed channels_;
    std::uint32_t nextSlotID_ = timecodeSlotID + 1;
    std::vector<std::uint32_t> firstSlots_;
};

}  // namespace

void writeAafSession(const Session& session, const compound::ByteSink& sink) {
    aaf::writeAaf(SessionWriter(session).file(), sink);
}

}  // namespace trellant::sessions
