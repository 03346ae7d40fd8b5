// SPDX-License-Identifier: Apache-2.0
#include "aaf_media.h"

#include "aaf_limits.h"
#include "aaf_locators.h"
#include "aaf_wave.h"

#include <trellant/base/url.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <set>
#include <string>
#include <utility>

namespace trellant::sessions {

namespace {

using exchange::PlannedMedia;

constexpr std::int64_t most16Bits = std::numeric_limits<std::uint16_t>::max();

/// The slots of a tape's mob.
constexpr std::uint32_t reelSoundSlot = 1;
constexpr std::uint32_t reelTimecodeSlot = 2;
/// A reel is at least as long as what was taken from it; nobody knows more of its length.
constexpr std::int64_t reelSeconds = 86'400;

/// In edit units of `rate`; a place before the reel's zero is that zero.
std::int64_t reelStart(const exchange::PlannedReel& reel, const aaf::Rational& rate) {
    const AAFRational start = reel.start * AAFRational(rate.numerator, rate.denominator);
    return std::clamp<std::int64_t>(start.roundedInt64(), 0, exchange::mostSamples);
}

aaf::TimelineMobSlot timecodeSlotOf(const exchange::ReelTimecode& timecode) {
    const auto frames = static_cast<std::int32_t>(
        std::clamp<std::int64_t>(timecode.framesPerSecond, 1, most16Bits));
    // Drop-frame labels count a rate that is a thousandth below what they say.
    const aaf::Rational usual =
        timecode.dropFrame ? aaf::Rational{frames * 1'000, 1'001} : aaf::Rational{frames, 1};
    const aaf::Rational rate = timecode.rate ? storedRate(*timecode.rate, frames) : usual;
    return {.slotID = reelTimecodeSlot,
            .physicalTrackNumber = 1,
            .editRate = rate,
            .dataKind = aaf::DataKind::timecode,
            .segment = aaf::Timecode{.length = reelSeconds * frames,
                                     .start = timecode.start,
                                     .fps = static_cast<std::uint16_t>(frames),
                                     .drop = timecode.dropFrame}};
}

/// `rate`, `length`: of the reel's sound, in edit units.
aaf::SourceMob reelMob(const exchange::PlannedReel& reel, const AafIdentity& identity,
                       const aaf::Rational& rate, std::int64_t length) {
    aaf::Mob mob{.mobID = identity.reelMob(reel),
                 .name = nameAsWritten(reel.name),
                 .creationTime = identity.date(),
                 .lastModified = identity.date()};
    mob.slots.emplace_back(aaf::TimelineMobSlot{.slotID = reelSoundSlot,
                                                .physicalTrackNumber = 1,
                                                .editRate = rate,
                                                .segment = aaf::SourceClip{.length = length}});
    if (reel.timecode) {
        mob.slots.emplace_back(timecodeSlotOf(*reel.timecode));
    }
    return {.mob = std::move(mob), .essenceDescription = aaf::TapeDescriptor()};
}

/// One mob for each reel, however many files come from it.
void addReels(const Session& session, const AafIdentity& identity, aaf::AafFile& file) {
    std::set<std::pair<std::string, std::string>> known;
    for (const PlannedMedia& media : session.plan.media) {
        if (media.reel && known.emplace(media.reel->id, media.reel->name).second) {
            const aaf::Rational rate = storedRate(media.sampleRate, session.plan.rate);
            const std::int64_t length =
                std::max(reelStart(*media.reel, rate) + std::max<std::int64_t>(media.frames, 0),
                         reelSeconds * (rate.numerator / rate.denominator));
            file.sourceMobs.push_back(reelMob(*media.reel, identity, rate, length));
        }
    }
}

/// As the file says it where there is one: a source of 20 bits lies in one of 24.
WaveForm waveForm(const PlannedMedia& media, const SessionMedia& place, const aaf::Rational& rate) {
    const std::int64_t bitsOfFile = place.wave ? place.wave->bitsOfSample : 0;
    const std::int64_t bits =
        bitsOfFile != 0 ? bitsOfFile : media.bitDepth.value_or(media.isFloatingPoint ? 32 : 16);
    const double samplesPerSecond =
        static_cast<double>(rate.numerator) / static_cast<double>(rate.denominator);
    return {.isFloatingPoint = media.isFloatingPoint,
            .channels = static_cast<std::uint16_t>(
                std::clamp<std::int64_t>(media.channelCount, 1, most16Bits)),
            .sampleRate = static_cast<std::uint32_t>(std::lround(samplesPerSecond)),
            .bits = static_cast<std::uint16_t>(std::clamp<std::int64_t>(bits, 1, 64))};
}

/// One medium.
class MediaWriter {
  public:
    MediaWriter(const Session& session, const AafIdentity& identity, std::size_t index)
        : session_(session),
          identity_(identity),
          index_(index),
          media_(session.plan.media.at(index)),
          place_(session.media.at(index)),
          rate_(storedRate(media_.sampleRate, session.plan.rate)),
          form_(waveForm(media_, place_, rate_)) {}

    [[nodiscard]] aaf::SourceMob mob(const std::set<std::uint32_t>& channels) const {
        aaf::Mob mob{.mobID = identity_.sourceMob(index_),
                     .name = nameAsWritten(media_.name),
                     .creationTime = identity_.date(),
                     .lastModified = identity_.date()};
        for (const std::uint32_t channel : channels) {
            mob.slots.emplace_back(slot(channel));
        }
        return {.mob = std::move(mob), .essenceDescription = description()};
    }

    [[nodiscard]] bool isEmbedded() const noexcept { return place_.isEmbedded && place_.wave; }

    [[nodiscard]] aaf::EssenceData essence() const {
        const WaveFile& wave = *place_.wave;
        // Samples alone say nothing of floating point: such files go in whole.
        const std::uint64_t offset = form_.isFloatingPoint ? 0 : wave.dataOffset;
        const std::uint64_t count = form_.isFloatingPoint ? wave.byteCount : wave.dataByteCount;
        return {.mobID = identity_.sourceMob(index_),
                .byteCount = count,
                .data = partOfFile(wave.path, offset, count)};
    }

  private:
    using Description = std::variant<aaf::WAVEDescriptor, aaf::PCMDescriptor, aaf::TapeDescriptor>;

    [[nodiscard]] aaf::TimelineMobSlot slot(std::uint32_t channel) const {
        aaf::SourceClip clip{.length = storedFrames(session_, index_)};
        if (media_.reel) {
            clip.sourceID = identity_.reelMob(*media_.reel);
            clip.sourceMobSlotID = reelSoundSlot;
            clip.startTime = reelStart(*media_.reel, rate_);
        }
        return {.slotID = channel + 1,
                .physicalTrackNumber = channel + 1,
                .editRate = rate_,
                .segment = clip};
    }

    [[nodiscard]] Description description() const {
        const bool isWave = media_.isOffline || place_.wave.has_value();
        const bool isPCM = isEmbedded() ? !form_.isFloatingPoint : !isWave;
        if (isPCM) {
            return pcm();
        }
        return wave();
    }

    [[nodiscard]] aaf::WAVEDescriptor wave() const {
        const std::int64_t frames = storedFrames(session_, index_);
        const std::uint64_t dataBytes =
            place_.wave ? place_.wave->dataByteCount : dataByteCount(form_, frames);
        return {.sampleRate = rate_,
                .length = frames,
                .containerFormat = aaf::Container::aaf,
                .summary = waveHead(form_, dataBytes),
                .locators = locators()};
    }

    [[nodiscard]] aaf::PCMDescriptor pcm() const {
        return {.sampleRate = rate_,
                .length = storedFrames(session_, index_),
                .containerFormat = isEmbedded() ? aaf::Container::aafKLV : aaf::Container::external,
                .audioSamplingRate = rate_,
                .channels = form_.channels,
                .quantizationBits = form_.bits,
                .blockAlign = blockAlign(form_),
                .averageBPS = bytesPerSecond(form_),
                .electroSpatial = form_.channels == 1 ? aaf::ElectroSpatial::singleChannelMode
                                                      : aaf::ElectroSpatial::multiChannelMode,
                .locators = locators()};
    }

    [[nodiscard]] std::vector<aaf::NetworkLocator> locators() const {
        if (isEmbedded()) {
            return {};
        }
        std::string url = place_.path.empty()
                              ? urlOfRecordedPath(media_.recordedPath.value_or(media_.fileName))
                              : fileURL(place_.path).text;
        url = urlAsWritten(std::move(url));
        return url.empty() ? std::vector<aaf::NetworkLocator>()
                           : std::vector<aaf::NetworkLocator>{{std::move(url)}};
    }

    const Session& session_;
    const AafIdentity& identity_;
    std::size_t index_;
    const PlannedMedia& media_;
    const SessionMedia& place_;
    aaf::Rational rate_;
    WaveForm form_;
};

}  // namespace

aaf::Rational storedRate(const AAFRational& rate, std::int64_t sessionRate) noexcept {
    constexpr std::int64_t largest = std::numeric_limits<std::int32_t>::max();
    if (rate.numerator() > 0 && rate.numerator() <= largest && rate.denominator() <= largest) {
        return {static_cast<std::int32_t>(rate.numerator()),
                static_cast<std::int32_t>(rate.denominator())};
    }
    return {static_cast<std::int32_t>(std::clamp<std::int64_t>(sessionRate, 1, largest)), 1};
}

std::int64_t storedFrames(const Session& session, std::size_t media) noexcept {
    return std::max<std::int64_t>(session.plan.media.at(media).frames, 0);
}

void addMedia(const Session& session, const AafIdentity& identity, const ChannelsPlayed& channels,
              aaf::AafFile& file) {
    for (std::size_t index = 0; index < session.plan.media.size(); ++index) {
        const MediaWriter writer(session, identity, index);
        file.sourceMobs.push_back(writer.mob(channels.at(index)));
        if (writer.isEmbedded()) {
            file.essenceData.push_back(writer.essence());
        }
    }
    addReels(session, identity, file);
}

}  // namespace trellant::sessions
