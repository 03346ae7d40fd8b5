// SPDX-License-Identifier: Apache-2.0

#include <trellant/handoff/summary.h>

#include <set>
#include <tuple>

namespace trellant {

namespace {

std::size_t distinctPlaces(const HandOff& handOff) {
    std::set<std::tuple<std::string, std::string>> places;
    for (const PlacedLoss& loss : handOff.losses) {
        std::string at;
        if (loss.start) {
            at = std::to_string(loss.start->numerator()) + '/' +
                 std::to_string(loss.start->denominator());
        } else {
            at = loss.objectPath.value_or("");
        }
        places.emplace(loss.trackID.value_or(""), std::move(at));
    }
    return places.size();
}

}  // namespace

Summary::Summary(const HandOff& handOff)
    : tracks(handOff.timeline.tracks.size()),
      clips(handOff.timeline.events.size()),
      sources(handOff.timeline.essences.size()),
      firstAudible(handOff.timeline.firstAudibleEventStart()),
      losses(handOff.timeline.unsupportedFeatures.size()),
      lossPlaces(distinctPlaces(handOff)) {
    const Sources all(handOff);
    for (const Source& source : all.all()) {
        ++sourcesByState.at(static_cast<std::size_t>(source.state));
        ++sampleRates[source.essence->sampleRate];
        ++bitDepths[source.essence->bitDepth.value_or(0)];
    }
    for (const AAFUnsupportedFeature& feature : handOff.timeline.unsupportedFeatures) {
        if (feature.severity == AAFUnsupportedFeature::Severity::informational) {
            ++dropped;
        } else {
            ++soundsDifferent;
        }
    }
}

}  // namespace trellant
