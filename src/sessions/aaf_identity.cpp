// SPDX-License-Identifier: Apache-2.0
#include "aaf_identity.h"

#include "aaf_limits.h"
#include "name_based_uuid.h"

#include <trellant/version.h>

#include <initializer_list>
#include <utility>

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

/// By what is the source's own in whatever session it is played.
std::string mediaName(const exchange::ExportPlan& plan, std::size_t position) {
    const exchange::PlannedMedia& media = plan.media.at(position);
    // A source without an id is told apart within its session only.
    const std::string id = media.essenceID.empty()
                               ? nameOf({media.fileName, std::to_string(position)})
                               : media.essenceID;
    return nameOf({id, media.channel ? std::to_string(*media.channel) : std::string(),
                   media.sampleRate.description(), std::to_string(media.frames)});
}

/// An identifier of more names than are to be held at once.
class LongName {
  public:
    explicit LongName(std::string first) : text_(std::move(first)) {}

    void add(std::initializer_list<std::string_view> parts) {
        constexpr std::size_t pieceSize = 65'536;
        text_ += nameOf(parts);
        if (text_.size() >= pieceSize) {
            text_ = idText(text_);
        }
    }
    [[nodiscard]] std::string id() const { return idText(text_); }

  private:
    std::string text_;
};

std::string idOfSession(const Session& session, std::string_view name) {
    const exchange::ExportPlan& plan = session.plan;
    LongName all(nameOf({"AAF session", versionText, name, std::to_string(session.date),
                         std::to_string(plan.rate), std::to_string(plan.length),
                         plan.start.description(), std::to_string(session.markers.size())}));
    for (std::size_t i = 0; i < plan.media.size(); ++i) {
        all.add({mediaName(plan, i)});
    }
    for (const exchange::PlannedTrack& track : plan.tracks) {
        for (const exchange::Lane& lane : track.lanes) {
            all.add({lane.name, std::to_string(lane.clips.size())});
            for (const exchange::PlannedClip& clip : lane.clips) {
                all.add({clip.name, std::to_string(clip.media), std::to_string(clip.start),
                         std::to_string(clip.length), std::to_string(clip.sourceStart)});
            }
        }
    }
    return all.id();
}

}  // namespace

AafIdentity::AafIdentity(const Session& session)
    : session_(session),
      compositionName_(nameAsWritten(session.plan.name.value_or(session.name))),
      sessionID_(idOfSession(session, compositionName_)) {}

aaf::MobID AafIdentity::compositionMob() const {
    return mobIDOf(nameOf({"AAF composition", sessionID_}));
}

std::string AafIdentity::mediaText(std::size_t media) const {
    return mediaName(session_.plan, media);
}

aaf::MobID AafIdentity::sourceMob(std::size_t media) const {
    return mobIDOf(nameOf({"AAF file", versionText, mediaText(media)}));
}

aaf::MobID AafIdentity::reelMob(const exchange::PlannedReel& reel) const {
    return mobIDOf(nameOf({"AAF reel", versionText, reel.id, reel.name}));
}

aaf::MobID AafIdentity::masterMob(std::size_t media, std::uint32_t channel,
                                  std::string_view clipName) const {
    return mobIDOf(
        nameOf({"AAF clip", versionText, mediaText(media), std::to_string(channel), clipName}));
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
