#include "summary.h"

#include <set>
#include <tuple>

namespace trellant::cli {

namespace {

std::size_t distinctPlaces(const Inspection& inspection) {
    std::set<std::tuple<std::string, std::string>> places;
    for (const PlacedLoss& loss : inspection.losses) {
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

Summary::Summary(const Inspection& inspection)
    : tracks(inspection.timeline.tracks.size()),
      clips(inspection.timeline.events.size()),
      sources(inspection.timeline.essences.size()),
      firstAudible(inspection.timeline.firstAudibleEventStart()),
      losses(inspection.timeline.unsupportedFeatures.size()),
      lossPlaces(distinctPlaces(inspection)) {
    const Sources all(inspection.timeline, inspection.ambiguousEssences);
    for (const Source& source : all.all()) {
        ++sourcesByState.at(static_cast<std::size_t>(source.state));
        ++sampleRates[source.essence->sampleRate];
        ++bitDepths[source.essence->bitDepth.value_or(0)];
    }
    for (const AAFUnsupportedFeature& feature : inspection.timeline.unsupportedFeatures) {
        if (feature.severity == AAFUnsupportedFeature::Severity::informational) {
            ++dropped;
        } else {
            ++soundsDifferent;
        }
    }
}

}  // namespace trellant::cli
