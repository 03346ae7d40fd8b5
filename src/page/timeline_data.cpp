// SPDX-License-Identifier: Apache-2.0
#include "timeline_data.h"

#include <trellant/base/keyed_hash.h>
#include <trellant/handoff/frame_clock.h>
#include <trellant/handoff/timeline_text.h>

#include <cmath>
#include <map>
#include <type_traits>

namespace trellant::page {

namespace {

constexpr std::int64_t none = -1;

Curve curveOf(const AAFAutomationInterpolation& curve) {
    struct Number {
        Curve operator()(const AAFAutomationInterpolation::Linear&) const { return Curve::linear; }
        Curve operator()(const AAFAutomationInterpolation::Constant&) const {
            return Curve::constant;
        }
        Curve operator()(const AAFAutomationInterpolation::Power&) const { return Curve::power; }
        Curve operator()(const AAFAutomationInterpolation::Logarithmic&) const {
            return Curve::logarithmic;
        }
        Curve operator()(const AAFAutomationInterpolation::Unsupported&) const {
            return Curve::unknown;
        }
    };
    return std::visit(Number{}, curve.curve);
}

/// Points that several owners share are written once.
struct Envelopes {
    struct Entry {
        Curve curve = Curve::linear;
        const std::vector<AAFAutomationPoint>* points = nullptr;
    };
    std::vector<Entry> all{};
    std::map<const std::vector<AAFAutomationPoint>*, std::int64_t> numbers{};

    std::int64_t numberOf(const AAFAutomationInterpolation& curve,
                          const std::vector<AAFAutomationPoint>& points) {
        const auto [found, isNew] =
            numbers.try_emplace(&points, static_cast<std::int64_t>(all.size()));
        if (isNew) {
            all.push_back({curveOf(curve), &points});
        }
        return found->second;
    }
};

class TimelineData {
  public:
    TimelineData(const PageRequest& request, const Sources& sources, JsonSink& sink)
        : request_(request),
          timeline_(request.handOff.timeline),
          sources_(sources),
          unit_(AAFRational::one() / timeline_.clock.editRate),
          writer_(sink) {}

    void write() {
        writer_.beginObject();
        addClock();
        addSearched();
        addTracks();
        addSources();
        addClips();
        addLosses();
        addEnvelopes();
        writer_.endObject();
        writer_.flush();
    }

  private:
    void pair(std::string_view key, std::int64_t first, std::int64_t second) {
        writer_.plainKey(key);
        writer_.beginArray();
        writer_.integer(first);
        writer_.integer(second);
        writer_.endArray();
    }

    template <class Values>
    void list(std::string_view key, const Values& fill) {
        writer_.plainKey(key);
        writer_.beginArray();
        fill();
        writer_.endArray();
    }

    void time(const AAFRational& seconds) {
        const AAFRational units = seconds * timeline_.clock.editRate;
        // A product that overflowed is an approximation and tells itself by leading elsewhere.
        if (units.denominator() == 1 && units * unit_ == seconds) {
            writer_.integer(units.numerator());
        } else {
            writer_.escapedString(fractionText(seconds));
        }
    }

    void number(double value) { writer_.number(std::isfinite(value) ? value : 0); }

    void addClock() {
        const AAFProgramClock clock = frameClock(timeline_.clock);
        writer_.plainKey("clock");
        writer_.beginObject();
        pair("rate", clock.timecodeRate.exactRate.numerator(),
             clock.timecodeRate.exactRate.denominator());
        writer_.plainKey("nominal");
        writer_.integer(clock.timecodeRate.nominalFramesPerSecond);
        writer_.plainKey("drop");
        writer_.boolean(clock.timecodeRate.dropFrame);
        writer_.plainKey("zero");
        writer_.integer(clock.timelineZero.absoluteFrameNumber());
        writer_.endObject();
        pair("unit", unit_.numerator(), unit_.denominator());
        if (timeline_.compositionLength) {
            writer_.plainKey("length");
            time(*timeline_.compositionLength);
        }
    }

    void addSearched() {
        list("searched", [this] {
            for (const std::string& folder : request_.searchedFolders) {
                writer_.string(shownText(folder));
            }
        });
    }

    void addEnvelope(std::string_view key, const std::optional<AAFAutomationEnvelope>& envelope) {
        if (envelope && !envelope->points.empty()) {
            writer_.plainKey(key);
            writer_.integer(envelopes_.numberOf(envelope->interpolation, envelope->points));
        }
    }

    void addTracks() {
        list("tracks", [this] {
            for (const AAFTrackState& track : timeline_.tracks) {
                trackNumbers_.try_emplace(track.id,
                                          static_cast<std::int64_t>(trackNumbers_.size()));
                writer_.beginObject();
                writer_.plainKey("gain");
                number(track.fixedGain);
                if (track.fixedPan) {
                    writer_.plainKey("pan");
                    number(*track.fixedPan);
                }
                writer_.plainKey("muted");
                writer_.boolean(track.muted);
                writer_.plainKey("solo");
                writer_.boolean(track.solo);
                addEnvelope("envelope", track.gainAutomation);
                addEnvelope("panEnvelope", track.panAutomation);
                writer_.endObject();
            }
        });
    }

    void addSources() {
        list("states", [this] {
            for (const Source& source : sources_.all()) {
                writer_.escapedString(stateWord(source.state));
            }
        });
        list("rates", [this] {
            for (const Source& source : sources_.all()) {
                const AAFRational& rate = source.essence->sampleRate;
                if (rate.denominator() == 1) {
                    writer_.integer(rate.numerator());
                } else {
                    writer_.escapedString(fractionText(rate));
                }
            }
        });
    }

    std::int64_t trackNumber(std::string_view id) const {
        const auto found = trackNumbers_.find(id);
        return found == trackNumbers_.end() ? none : found->second;
    }

    template <class Say>
    void column(std::string_view key, const Say& sayOf) {
        list(key, [&] {
            for (std::size_t i = 0; i < timeline_.events.size(); ++i) {
                sayOf(i, timeline_.events[i]);
            }
        });
    }

    void addClips() {
        writer_.plainKey("clips");
        writer_.beginObject();
        column("track", [this](std::size_t, const AAFClipEvent& event) {
            writer_.integer(trackNumber(event.trackID));
        });
        column("start",
               [this](std::size_t, const AAFClipEvent& event) { time(event.timelineStart); });
        column("length", [this](std::size_t, const AAFClipEvent& event) { time(event.duration); });
        column("source", [this](std::size_t i, const AAFClipEvent&) {
            const Source* const source = sources_.ofEventAt(i);
            writer_.integer(source == nullptr ? none : source - sources_.all().data());
        });
        column("offset", [this](std::size_t, const AAFClipEvent& event) {
            writer_.integer(event.sourceStartSample);
        });
        addGains();
        addFades("fadeIn", &AAFClipEvent::fadeIn);
        addFades("fadeOut", &AAFClipEvent::fadeOut);
        addChannels();
        writer_.endObject();
    }

    void addGains() {
        column("gains", [this](std::size_t i, const AAFClipEvent& event) {
            if (event.fixedClipGain != 1) {
                writer_.integer(static_cast<std::int64_t>(i));
                number(event.fixedClipGain);
            }
        });
        column("automation", [this](std::size_t i, const AAFClipEvent& event) {
            if (event.clipGainAutomation && !event.clipGainAutomation->points.empty()) {
                writer_.integer(static_cast<std::int64_t>(i));
                writer_.integer(envelopes_.numberOf(event.clipGainAutomation->interpolation,
                                                    event.clipGainAutomation->points));
            }
        });
    }

    void addFades(std::string_view key, Boxed<AAFFade> AAFClipEvent::*fade) {
        column(key, [this, fade](std::size_t i, const AAFClipEvent& event) {
            const Boxed<AAFFade>& it = event.*fade;
            if (it) {
                writer_.integer(static_cast<std::int64_t>(i));
                time(it->duration);
                writer_.integer(static_cast<std::int64_t>(curveOf(it->curve)));
                writer_.integer(it->points.empty() ? none
                                                   : envelopes_.numberOf(it->curve, it->points));
                writer_.integer(it->reversesPointTime.value_or(false) ? 1 : 0);
            }
        });
    }

    void addChannels() {
        column("muted", [this](std::size_t i, const AAFClipEvent& event) {
            if (event.clipMuted) {
                writer_.integer(static_cast<std::int64_t>(i));
            }
        });
        column("channels", [this](std::size_t i, const AAFClipEvent& event) {
            if (event.sourceChannel.value_or(0) != 0) {
                writer_.integer(static_cast<std::int64_t>(i));
                writer_.integer(*event.sourceChannel);
            }
        });
    }

    template <class Say>
    void lossColumn(std::string_view key, const Say& sayOf) {
        list(key, [&] {
            for (const PlacedLoss& loss : request_.handOff.losses) {
                sayOf(loss);
            }
        });
    }

    void timeOrNone(const std::optional<AAFRational>& seconds) {
        if (seconds) {
            time(*seconds);
        } else {
            writer_.integer(none);
        }
    }

    void addLosses() {
        writer_.plainKey("losses");
        writer_.beginObject();
        lossColumn("track", [this](const PlacedLoss& loss) {
            writer_.integer(loss.trackID ? trackNumber(*loss.trackID) : none);
        });
        lossColumn("start", [this](const PlacedLoss& loss) { timeOrNone(loss.start); });
        lossColumn("length", [this](const PlacedLoss& loss) { timeOrNone(loss.duration); });
        list("dropped", [this] {
            for (const AAFUnsupportedFeature& feature : timeline_.unsupportedFeatures) {
                writer_.integer(
                    feature.severity == AAFUnsupportedFeature::Severity::informational ? 1 : 0);
            }
        });
        writer_.endObject();
    }

    void addEnvelopes() {
        list("envelopes", [this] {
            for (const Envelopes::Entry& entry : envelopes_.all) {
                writer_.beginArray();
                writer_.integer(static_cast<std::int64_t>(entry.curve));
                writer_.beginArray();
                for (const AAFAutomationPoint& point : *entry.points) {
                    number(point.timelineOffset.doubleValue());
                    number(point.value);
                }
                writer_.endArray();
                writer_.endArray();
            }
        });
    }

    const PageRequest& request_;
    const AAFTimeline& timeline_;
    const Sources& sources_;
    AAFRational unit_;
    JsonWriter writer_;
    KeyedMap<std::string_view, std::int64_t> trackNumbers_;
    Envelopes envelopes_;
};

}  // namespace

void writeTimelineData(const PageRequest& request, const Sources& sources, JsonSink& sink) {
    TimelineData(request, sources, sink).write();
}

}  // namespace trellant::page
