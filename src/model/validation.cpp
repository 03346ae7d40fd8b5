// SPDX-License-Identifier: Apache-2.0
#include "identity_index.h"
#include "validation_limits.h"

#include <trellant/base/int128.h>
#include <trellant/model/validation.h>

#include <cmath>
#include <limits>

namespace trellant {

namespace {

using Failure = AAFRawTimelineValidation::Failure;

using Problem = AAFTimelineProblem;
using Place = AAFTimelinePlace;

constexpr std::int64_t largest = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t smallest = std::numeric_limits<std::int64_t>::min();

void require(bool holds, Problem problem, const Place& place) {
    if (!holds) {
        throw Failure(problem, place);
    }
}

/// The elements by their identities, which must all be different.
template <class Element>
[[nodiscard]] IdentityIndex<Element> uniqueIdentities(const std::vector<Element>& elements,
                                                      Place::Kind kind) {
    IdentityIndex<Element> seen(elements);
    for (std::size_t index = 0; index < elements.size(); ++index) {
        const Place place{kind, index};
        require(!elements[index].id.empty(), Problem::emptyIdentity, place);
        require(seen.add(index), Problem::duplicateIdentity, place);
    }
    return seen;
}

void checkRate(const AAFTimecodeRate& rate, const Place& place) {
    require(rate.exactRate > AAFRational::zero() && rate.nominalFramesPerSecond >= 1 &&
                rate.nominalFramesPerSecond <= maxNominalFramesPerSecond,
            Problem::invalidTimecodeRate, place);
    require(
        !rate.dropFrame || rate.nominalFramesPerSecond == 30 || rate.nominalFramesPerSecond == 60,
        Problem::invalidDropFrameRate, place);
}

void checkAddress(const AAFTimecodeAddress& address, const Place& place) {
    checkRate(address.rate, place);
    require(address.hours >= 0 && address.hours < 24 && address.minutes >= 0 &&
                address.minutes < 60 && address.seconds >= 0 && address.seconds < 60 &&
                address.frames >= 0 && address.frames < address.rate.nominalFramesPerSecond,
            Problem::invalidTimecodeLabel, place);
    require(!address.isSkipped(), Problem::skippedDropFrameLabel, place);
}

void checkPoints(const std::vector<AAFAutomationPoint>& points, const Place& place) {
    for (std::size_t index = 0; index < points.size(); ++index) {
        const AAFAutomationPoint& point = points[index];
        require(std::isfinite(point.value), Problem::nonfiniteAutomation, place);
        require(point.timelineOffset >= AAFRational::zero() &&
                    point.timelineOffset <= AAFRational::one(),
                Problem::automationTimeOutsideOwner, place);
        require(index == 0 || point.timelineOffset >= points[index - 1].timelineOffset,
                Problem::unorderedAutomation, place);
    }
}

template <class Envelope>
void checkEnvelope(const Envelope& envelope, const Place& place) {
    if (envelope.has_value()) {
        checkPoints(envelope->points, place);
    }
}

void checkFade(const Boxed<AAFFade>& fade, const Place& place) {
    if (fade) {
        require(fade->duration >= AAFRational::zero(), Problem::negativeFadeDuration, place);
        checkPoints(fade->points, place);
    }
}

void checkEssence(const AAFSourceEssence& essence, const Place& place) {
    require(essence.sampleRate > AAFRational::zero() &&
                essence.sampleRate <= AAFRational(maxSampleRate),
            Problem::invalidSampleRate, place);
    require(essence.channelCount >= 1 && essence.channelCount <= maxChannelCount,
            Problem::invalidChannelCount, place);
    require(!essence.bitDepth || *essence.bitDepth > 0, Problem::invalidBitDepth, place);
}

void checkTrack(const AAFTrackState& track, const Place& place) {
    require(std::isfinite(track.fixedGain) && (!track.fixedPan || std::isfinite(*track.fixedPan)),
            Problem::nonfiniteTrackValue, place);
    checkEnvelope(track.gainAutomation, place);
    checkEnvelope(track.panAutomation, place);
}

[[nodiscard]] std::int64_t sourceEnd(const AAFClipEvent& event, const AAFRational& rate,
                                     const Place& place) {
    require(rate > AAFRational::zero() && event.duration >= AAFRational::zero() &&
                event.sourceStartSample >= 0,
            Problem::invalidSourceRange, place);
    // Both products stay below 2^126.
    const Int128 numerator = static_cast<Int128>(event.duration.numerator()) * rate.numerator();
    const Int128 denominator =
        static_cast<Int128>(event.duration.denominator()) * rate.denominator();
    const Int128 samples = numerator / denominator + (numerator % denominator > 0 ? 1 : 0);
    require(samples <= largest - event.sourceStartSample, Problem::sourceRangeOverflow, place);
    return event.sourceStartSample + static_cast<std::int64_t>(samples);
}

/// Whether timelineStart + duration, rounded outward to whole units, fits 64 bits. Exact: with
/// numerators of at most 2^63 and denominators of at most 2^63 - 1 in magnitude, the sum of the two
/// cross products is at most 2^127 - 2^64.
[[nodiscard]] bool timelineEndFits(const AAFClipEvent& event) noexcept {
    const Int128 startDenominator = event.timelineStart.denominator();
    const Int128 durationDenominator = event.duration.denominator();
    const Int128 numerator = event.timelineStart.numerator() * durationDenominator +
                             event.duration.numerator() * startDenominator;
    const Int128 denominator = startDenominator * durationDenominator;
    const Int128 whole = numerator / denominator;
    const Int128 rest = numerator % denominator;
    return whole >= smallest && whole <= largest && !(whole == largest && rest > 0) &&
           !(whole == smallest && rest < 0);
}

/// What events refer to. Neighbours mostly share a track, which is then found without a look-up.
class References {
  public:
    References(const IdentityIndex<AAFTrackState>& tracks,
               const IdentityIndex<AAFSourceEssence>& essences)
        : tracks_(tracks), essences_(essences) {}

    [[nodiscard]] bool haveTrack(std::string_view id) {
        if (lastTrack_ == nullptr || lastTrack_->id != id) {
            lastTrack_ = tracks_.find(id);
        }
        return lastTrack_ != nullptr;
    }
    [[nodiscard]] const AAFSourceEssence* essence(std::string_view id) const {
        return essences_.find(id);
    }

  private:
    const IdentityIndex<AAFTrackState>& tracks_;
    const IdentityIndex<AAFSourceEssence>& essences_;
    const AAFTrackState* lastTrack_ = nullptr;
};

void checkEvent(const AAFClipEvent& event, References& references, const Place& place) {
    require(references.haveTrack(event.trackID), Problem::missingTrackReference, place);
    const AAFSourceEssence* const found = references.essence(event.essenceID);
    require(found != nullptr, Problem::missingEssenceReference, place);
    const AAFSourceEssence& essence = *found;
    require(event.duration >= AAFRational::zero() && event.sourceStartSample >= 0,
            Problem::negativeSourceRange, place);
    require(!event.sourceChannel ||
                (*event.sourceChannel >= 0 && *event.sourceChannel < essence.channelCount),
            Problem::invalidSourceChannel, place);
    require(std::isfinite(event.fixedClipGain), Problem::nonfiniteClipGain, place);
    checkEnvelope(event.clipGainAutomation, place);
    checkFade(event.fadeIn, place);
    checkFade(event.fadeOut, place);
    (void)sourceEnd(event, essence.sampleRate, place);
    require(timelineEndFits(event), Problem::timelineEndOverflow, place);
}

}  // namespace

AAFRawTimelineValidation::Failure::Failure(AAFTimelineProblem problem,
                                           const AAFTimelinePlace& place)
    : problem_(problem),
      place_(place),
      code_(rawValue(problem)),
      object_(place.text()),
      description_("AAF raw model: " + code_ + " (" + object_ + ")") {}

void AAFRawTimelineValidation::validate(const AAFTimeline& timeline) {
    const IdentityIndex<AAFTrackState> tracks =
        uniqueIdentities(timeline.tracks, Place::Kind::track);
    const IdentityIndex<AAFSourceEssence> essences =
        uniqueIdentities(timeline.essences, Place::Kind::essence);
    static_cast<void>(uniqueIdentities(timeline.events, Place::Kind::event));
    const Place clock{Place::Kind::clock};
    require(timeline.clock.editRate > AAFRational::zero(), Problem::invalidEditRate, clock);
    checkRate(timeline.clock.timecodeRate, clock);
    checkAddress(timeline.clock.timelineZero, clock);
    if (timeline.explicitProgramStart) {
        checkAddress(*timeline.explicitProgramStart, {Place::Kind::programStart});
    }
    require(!timeline.compositionLength || *timeline.compositionLength >= AAFRational::zero(),
            Problem::negativeCompositionLength, {Place::Kind::composition});
    for (std::size_t index = 0; index < timeline.essences.size(); ++index) {
        checkEssence(timeline.essences[index], Place::essence(index));
    }
    for (std::size_t index = 0; index < timeline.tracks.size(); ++index) {
        checkTrack(timeline.tracks[index], Place::track(index));
    }
    References references(tracks, essences);
    for (std::size_t index = 0; index < timeline.events.size(); ++index) {
        checkEvent(timeline.events[index], references, Place::event(index));
    }
}

std::int64_t AAFRawTimelineValidation::requiredSourceEnd(const AAFClipEvent& event,
                                                         const AAFRational& rate,
                                                         const AAFTimelinePlace& place) {
    return sourceEnd(event, rate, place);
}

}  // namespace trellant
