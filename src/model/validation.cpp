#include "identity_index.h"

#include <trellant/base/int128.h>
#include <trellant/model/validation.h>

#include <cmath>
#include <limits>

namespace trellant {

namespace {

using Failure = AAFRawTimelineValidation::Failure;

constexpr std::int64_t largest = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t smallest = std::numeric_limits<std::int64_t>::min();
/// The largest frame rate whose frames of a day fit 64 bits.
constexpr std::int64_t maxNominalFramesPerSecond = largest / 86400;
constexpr std::int64_t maxChannelCount = 4294967295;
constexpr std::int64_t maxSampleRate = 384000;

/// The object at fault; its text is only made for a failure.
struct Place {
    std::string_view collection;
    std::size_t index = 0;
    bool indexed = false;

    [[nodiscard]] static Place of(std::string_view name) { return {name, 0, false}; }
    [[nodiscard]] static Place at(std::string_view name, std::size_t index) {
        return {name, index, true};
    }
    [[nodiscard]] std::string text() const {
        std::string text(collection);
        if (indexed) {
            text.append("[").append(std::to_string(index)).append("]");
        }
        return text;
    }
};

void require(bool holds, const char* code, const Place& place) {
    if (!holds) {
        throw Failure(code, place.text());
    }
}

/// The elements by their identities, which must all be different.
template <class Element>
[[nodiscard]] IdentityIndex<Element> uniqueIdentities(const std::vector<Element>& elements,
                                                      std::string_view collection) {
    IdentityIndex<Element> seen(elements);
    for (std::size_t index = 0; index < elements.size(); ++index) {
        const Place place = Place::at(collection, index);
        require(!elements[index].id.empty(), "empty-identity", place);
        require(seen.add(index), "duplicate-identity", place);
    }
    return seen;
}

void checkRate(const AAFTimecodeRate& rate, const Place& place) {
    require(rate.exactRate > AAFRational::zero() && rate.nominalFramesPerSecond >= 1 &&
                rate.nominalFramesPerSecond <= maxNominalFramesPerSecond,
            "invalid-timecode-rate", place);
    require(
        !rate.dropFrame || rate.nominalFramesPerSecond == 30 || rate.nominalFramesPerSecond == 60,
        "invalid-drop-frame-rate", place);
}

void checkAddress(const AAFTimecodeAddress& address, const Place& place) {
    checkRate(address.rate, place);
    require(address.hours >= 0 && address.hours < 24 && address.minutes >= 0 &&
                address.minutes < 60 && address.seconds >= 0 && address.seconds < 60 &&
                address.frames >= 0 && address.frames < address.rate.nominalFramesPerSecond,
            "invalid-timecode-label", place);
    require(address.seconds != 0 || address.minutes % 10 == 0 ||
                address.frames >= address.rate.droppedFramesPerMinute(),
            "skipped-drop-frame-label", place);
}

void checkPoints(const std::vector<AAFAutomationPoint>& points, const Place& place) {
    for (std::size_t index = 0; index < points.size(); ++index) {
        const AAFAutomationPoint& point = points[index];
        require(std::isfinite(point.value), "nonfinite-automation", place);
        require(point.timelineOffset >= AAFRational::zero() &&
                    point.timelineOffset <= AAFRational::one(),
                "automation-time-outside-owner", place);
        require(index == 0 || point.timelineOffset >= points[index - 1].timelineOffset,
                "unordered-automation", place);
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
        require(fade->duration >= AAFRational::zero(), "negative-fade-duration", place);
        checkPoints(fade->points, place);
    }
}

void checkEssence(const AAFSourceEssence& essence, const Place& place) {
    require(essence.sampleRate > AAFRational::zero() &&
                essence.sampleRate <= AAFRational(maxSampleRate),
            "invalid-sample-rate", place);
    require(essence.channelCount >= 1 && essence.channelCount <= maxChannelCount,
            "invalid-channel-count", place);
    require(!essence.bitDepth || *essence.bitDepth > 0, "invalid-bit-depth", place);
}

void checkTrack(const AAFTrackState& track, const Place& place) {
    require(std::isfinite(track.fixedGain) && (!track.fixedPan || std::isfinite(*track.fixedPan)),
            "nonfinite-track-value", place);
    checkEnvelope(track.gainAutomation, place);
    checkEnvelope(track.panAutomation, place);
}

[[nodiscard]] std::int64_t sourceEnd(const AAFClipEvent& event, const AAFRational& rate,
                                     const Place& place) {
    require(rate > AAFRational::zero() && event.duration >= AAFRational::zero() &&
                event.sourceStartSample >= 0,
            "invalid-source-range", place);
    // Both products stay below 2^126.
    const Int128 numerator = static_cast<Int128>(event.duration.numerator()) * rate.numerator();
    const Int128 denominator =
        static_cast<Int128>(event.duration.denominator()) * rate.denominator();
    const Int128 samples = numerator / denominator + (numerator % denominator > 0 ? 1 : 0);
    require(samples <= largest - event.sourceStartSample, "source-range-overflow", place);
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
    require(references.haveTrack(event.trackID), "missing-track-reference", place);
    const AAFSourceEssence* const found = references.essence(event.essenceID);
    require(found != nullptr, "missing-essence-reference", place);
    const AAFSourceEssence& essence = *found;
    require(event.duration >= AAFRational::zero() && event.sourceStartSample >= 0,
            "negative-source-range", place);
    require(!event.sourceChannel ||
                (*event.sourceChannel >= 0 && *event.sourceChannel < essence.channelCount),
            "invalid-source-channel", place);
    require(std::isfinite(event.fixedClipGain), "nonfinite-clip-gain", place);
    checkEnvelope(event.clipGainAutomation, place);
    checkFade(event.fadeIn, place);
    checkFade(event.fadeOut, place);
    (void)sourceEnd(event, essence.sampleRate, place);
    require(timelineEndFits(event), "timeline-end-overflow", place);
}

}  // namespace

AAFRawTimelineValidation::Failure::Failure(std::string code, std::string object)
    : code_(std::move(code)),
      object_(std::move(object)),
      description_("AAF raw model: " + code_ + " (" + object_ + ")") {}

void AAFRawTimelineValidation::validate(const AAFTimeline& timeline) {
    const IdentityIndex<AAFTrackState> tracks = uniqueIdentities(timeline.tracks, "track");
    const IdentityIndex<AAFSourceEssence> essences = uniqueIdentities(timeline.essences, "essence");
    static_cast<void>(uniqueIdentities(timeline.events, "event"));
    require(timeline.clock.editRate > AAFRational::zero(), "invalid-edit-rate", Place::of("clock"));
    checkRate(timeline.clock.timecodeRate, Place::of("clock"));
    checkAddress(timeline.clock.timelineZero, Place::of("clock"));
    if (timeline.explicitProgramStart) {
        checkAddress(*timeline.explicitProgramStart, Place::of("program-start"));
    }
    require(!timeline.compositionLength || *timeline.compositionLength >= AAFRational::zero(),
            "negative-composition-length", Place::of("composition"));
    for (std::size_t index = 0; index < timeline.essences.size(); ++index) {
        checkEssence(timeline.essences[index], Place::at("essence", index));
    }
    for (std::size_t index = 0; index < timeline.tracks.size(); ++index) {
        checkTrack(timeline.tracks[index], Place::at("track", index));
    }
    References references(tracks, essences);
    for (std::size_t index = 0; index < timeline.events.size(); ++index) {
        checkEvent(timeline.events[index], references, Place::at("event", index));
    }
}

std::int64_t AAFRawTimelineValidation::requiredSourceEnd(const AAFClipEvent& event,
                                                         const AAFRational& rate,
                                                         std::string_view object) {
    return sourceEnd(event, rate, Place::of(object));
}

}  // namespace trellant
