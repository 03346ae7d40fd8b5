// SPDX-License-Identifier: Apache-2.0
#include "aaf_identity.h"

#include "aaf_limits.h"
#include "name_based_uuid.h"

#include <trellant/version.h>

#include <initializer_list>

namespace trellant::sessions {

namespace {

/// Made once, by chance.
constexpr aaf::AUID productID = aaf::auid("7c1b52ea-94d6-4f0e-8a37-d05f1e6b29c8");
constexpr std::string_view program = "Trellant";

/// With its length before each part, so that no two lists give one text.
std::string nameOf(std::initializer_list<std::string_view> parts) {
    std::string name;
    for (const std::string_view part : parts) {
        name.append(std::to_string(part.size())).append(":").append(part);
    }
    return name;
}

std::string idText(std::string_view name) {
    return uuidText(nameBasedUuid(name));
}

aaf::MobID mobIDOf(std::string_view name) {
    return aaf::mobIDOfMaterial(aaf::auidOfUUID(nameBasedUuid(name)));
}

std::string sessionText(const Session& session, std::string_view name) {
    const exchange::ExportPlan& plan = session.plan;
    std::size_t clips = 0;
    for (const exchange::PlannedTrack& track : plan.tracks) {
        for (const exchange::Lane& lane : track.lanes) {
            clips += lane.clips.size();
        }
    }
    return nameOf({"AAF session", versionText, name, std::to_string(session.date),
                   std::to_string(plan.rate), std::to_string(plan.length), plan.start.description(),
                   std::to_string(plan.tracks.size()), std::to_string(clips),
                   std::to_string(plan.media.size()), std::to_string(session.markers.size())});
}

}  // namespace

AafIdentity::AafIdentity(const Session& session)
    : session_(session),
      compositionName_(nameAsWritten(session.plan.name.value_or(session.name))),
      sessionID_(idText(sessionText(session, compositionName_))) {}

aaf::MobID AafIdentity::compositionMob() const {
    return mobIDOf(nameOf({"AAF composition", sessionID_}));
}

std::string AafIdentity::mediaText(std::size_t media) const {
    const exchange::PlannedMedia& planned = session_.plan.media.at(media);
    return nameOf({std::to_string(media), std::to_string(planned.essence), planned.fileName,
                   planned.sampleRate.description(), std::to_string(planned.frames)});
}

aaf::MobID AafIdentity::sourceMob(std::size_t media) const {
    return mobIDOf(nameOf({"AAF file", sessionID_, mediaText(media)}));
}

aaf::MobID AafIdentity::reelMob(const exchange::PlannedReel& reel) const {
    return mobIDOf(nameOf({"AAF reel", sessionID_, reel.id, reel.name}));
}

aaf::MobID AafIdentity::masterMob(std::size_t media, std::uint32_t channel,
                                  std::string_view clipName) const {
    return mobIDOf(
        nameOf({"AAF clip", sessionID_, mediaText(media), std::to_string(channel), clipName}));
}

aaf::Identification AafIdentity::identification() const {
    constexpr aaf::ProductVersion version{.major = versionMajor,
                                          .minor = versionMinor,
                                          .tertiary = versionPatch,
                                          .type = aaf::ReleaseType::released};
    return {
        .companyName = std::string(program),
        .productName = std::string(program),
        .productVersionString = std::string(versionText),
        .productVersion = version,
        .productID = productID,
        .date = date(),
        .toolkitVersion = version,
        .platform = "POSIX",
        .generationAUID = aaf::auidOfUUID(nameBasedUuid(nameOf({"AAF generation", sessionID_})))};
}

aaf::TimeStamp AafIdentity::date() const {
    return aaf::timeStampOf(session_.date);
}

}  // namespace trellant::sessions
