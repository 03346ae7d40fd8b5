// SPDX-License-Identifier: Apache-2.0
#include "loss_blocks.h"

#include "terminal/console.h"
#include "terminal/wrapped_text.h"

#include <trellant/handoff/timeline_text.h>

#include <optional>

namespace trellant::cli {

namespace {

std::string timesText(const AAFTimeline& timeline, const PlacedLoss& loss) {
    if (!loss.start) {
        return {};
    }
    std::string text = timecodeText(timeline, *loss.start);
    if (loss.duration && !(*loss.duration == AAFRational::zero())) {
        text += " - " + timecodeText(timeline, *loss.start + *loss.duration);
    }
    return text;
}

/// "track 3 Dialog_L"; the number alone where it has no name.
std::string trackPlace(const PlacedLoss& loss) {
    const bool isNamed = loss.trackName && !loss.trackName->empty();
    if (!loss.trackNumber) {
        return isNamed ? "track " + *loss.trackName : "";
    }
    return "track " + std::to_string(*loss.trackNumber) + (isNamed ? " " + *loss.trackName : "");
}

std::string headText(const AAFTimeline& timeline, const PlacedLoss& loss,
                     const AAFUnsupportedFeature& feature) {
    std::string place = timesText(timeline, loss);
    const auto add = [&place](const std::string& part) {
        if (!part.empty()) {
            place += place.empty() ? part : ", " + part;
        }
    };
    add(trackPlace(loss));
    if (loss.clipName && !loss.clipName->empty()) {
        add("clip " + *loss.clipName);
    }
    const bool isDropped = feature.severity == AAFUnsupportedFeature::Severity::informational;
    return place + (place.empty() ? "" : ": ") + (isDropped ? "dropped" : "sounds different");
}

}  // namespace

std::string lossBlocks(const HandOff& handOff, std::size_t columns, bool colour) {
    const AAFTimeline& timeline = handOff.timeline;
    const std::size_t count = timeline.unsupportedFeatures.size();
    const std::size_t indent = std::to_string(count).size() + 2;
    std::string text;
    for (std::size_t i = 0; i < count; ++i) {
        const AAFUnsupportedFeature& feature = timeline.unsupportedFeatures[i];
        const PlacedLoss& loss = handOff.losses[i];
        const Paragraph paragraph{.indent = indent, .columns = columns, .hasColour = colour};
        std::string number = std::to_string(i + 1);
        number.insert(0, indent - 2 - number.size(), ' ');
        text += i == 0 ? "" : "\n";
        // Its first line begins with the number in the place of the indent.
        text += number + "  " +
                wrapped(headText(timeline, loss, feature), paragraph, Paint::bold).substr(indent);
        if (!loss.plain.empty()) {
            text += wrapped(loss.plain, paragraph, std::nullopt);
        }
        text += wrapped(feature.description, paragraph, Paint::dim);
        if (feature.objectPath) {
            text += wrapped(*feature.objectPath, paragraph, Paint::dim);
        }
    }
    return text;
}

}  // namespace trellant::cli
