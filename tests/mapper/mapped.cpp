// SPDX-License-Identifier: Apache-2.0
#include "mapped.h"

#include <trellant/io/errors.h>
#include <trellant/model/timeline_json.h>
#include <trellant/omf/document.h>

#include <array>
#include <cstdio>
#include <ostream>
#include <stdexcept>
#include <trellant_testing/encoded_documents.h>
#include <trellant_testing/temporary_directory.h>
#include <utility>

namespace trellant::testing {

namespace {

std::string curveText(const AAFAutomationInterpolation& interpolation) {
    struct Names {
        std::string operator()(AAFAutomationInterpolation::Linear) const { return "linear"; }
        std::string operator()(AAFAutomationInterpolation::Constant) const { return "constant"; }
        std::string operator()(AAFAutomationInterpolation::Power) const { return "power"; }
        std::string operator()(AAFAutomationInterpolation::Logarithmic) const {
            return "logarithmic";
        }
        std::string operator()(const AAFAutomationInterpolation::Unsupported& curve) const {
            return "unsupported(" + curve.identifier + ")";
        }
    };
    return std::visit(Names{}, interpolation.curve);
}

std::string directionText(AAFFade::Direction direction) {
    switch (direction) {
        case AAFFade::Direction::fadeIn:
            return "fadeIn";
        case AAFFade::Direction::fadeOut:
            return "fadeOut";
        case AAFFade::Direction::crossfade:
            return "crossfade";
    }
    throw std::logic_error("a direction beyond the enumeration");
}

std::string numberText(double value) {
    std::array<char, 40> text{};
    std::snprintf(text.data(), text.size(), "%.12g", value);
    return text.data();
}

void keep(const AAFTimeline& timeline) {
    // What has no JSON form is refused by the encoder: nothing is written then.
    if (keepsEncodedDocuments() && !findUnencodable(timeline)) {
        keepEncoded("timeline", sortedJson(timeline));
    }
}

}  // namespace

Mapped mapImage(ByteView image, MappingPlaces places) {
    const TemporaryDirectory folder;
    const OMFDocument document(writeFile(folder.file("song.omf"), image));
    if (places.sourcePath.empty()) {
        places.sourcePath = "/projects/song.omf";
    }
    Mapped mapped;
    Mapper mapper(document, std::move(places));
    mapped.timeline =
        mapper.makeTimeline([&](double fraction) { mapped.fractions.push_back(fraction); });
    keep(mapped.timeline);
    mapped.diagnostics = mapper.diagnostics();
    mapped.readCalls = document.bento().file().readCalls();
    return mapped;
}

std::string mappingError(ByteView image, const MappingPlaces& places) {
    try {
        const Mapped mapped = mapImage(image, places);
    } catch (const OMFIOError& error) {
        return error.what();
    }
    return {};
}

std::string lossLine(int number, std::string_view text, std::string_view path) {
    return "omf-loss-" + std::to_string(number) + " informational: " + std::string(text) + " at " +
           std::string(path);
}

std::string unsupportedLine(int number, std::string_view text, std::string_view path) {
    return "omf-unsupported-" + std::to_string(number) + " renderAffecting: " + std::string(text) +
           " at " + std::string(path);
}

std::vector<std::string> recordsOf(const Mapped& mapped) {
    std::vector<std::string> lines;
    for (const AAFUnsupportedFeature& record : mapped.timeline.unsupportedFeatures) {
        const bool isLoss = record.severity == AAFUnsupportedFeature::Severity::informational;
        lines.push_back(record.id + (isLoss ? " informational: " : " renderAffecting: ") +
                        record.description + " at " + record.objectPath.value_or("(no path)"));
    }
    return lines;
}

std::string step(std::string_view label, ObjectID id) {
    return "/" + std::string(label) + "[" + std::to_string(id) + "]";
}

std::int64_t units(const AAFRational& seconds) {
    const AAFRational count = seconds * AAFRational(unitsPerSecond);
    if (count.denominator() != 1) {
        throw std::logic_error("no whole number of units: " + seconds.description());
    }
    return count.numerator();
}

std::ostream& operator<<(std::ostream& stream, const Placed& placed) {
    return stream << placed.start << " for " << placed.length << " from " << placed.sourceStart;
}

std::vector<Placed> placedIn(const Mapped& mapped) {
    std::vector<Placed> placed;
    for (const AAFClipEvent& event : mapped.timeline.events) {
        placed.push_back({units(event.timelineStart), units(event.duration),
                          units(AAFRational(event.sourceStartSample, 48'000))});
    }
    return placed;
}

std::int64_t lengthOf(const Mapped& mapped) {
    return units(mapped.timeline.compositionLength.value_or(AAFRational::zero()));
}

std::string described(const Boxed<AAFFade>& fade) {
    if (!fade) {
        return "none";
    }
    return directionText(fade->direction) + " " + std::to_string(units(fade->duration)) + " " +
           curveText(fade->curve) + (fade->points.empty() ? "" : " with points") +
           (fade->reversesPointTime ? " with a direction of points" : "");
}

std::string described(const Boxed<AAFAutomationEnvelope>& envelope) {
    if (!envelope) {
        return "none";
    }
    std::string text = curveText(envelope->interpolation) + ":";
    for (const AAFAutomationPoint& point : envelope->points) {
        text += " " + point.timelineOffset.description() + "=" + numberText(point.value);
    }
    return text;
}

}  // namespace trellant::testing
