#include "file_reading.h"

#include "loss_sentences.h"
#include "process/isolated.h"

#include <trellant/mapper/mapper.h>
#include <trellant/model/timeline_json.h>
#include <trellant/omf/document.h>

#include <cstdint>
#include <filesystem>
#include <utility>

namespace trellant::cli {

namespace {

/// A loss as one process tells it to the other.
struct ToldLoss {
    std::string description{};
    std::optional<std::string> objectPath{};
    std::int64_t kind = 0;
    std::optional<std::string> trackID{};
    std::optional<std::string> trackName{};
    std::optional<std::int64_t> trackIndex{};
    std::optional<std::string> clipName{};
    std::optional<AAFRational> start{};
    std::optional<AAFRational> duration{};
};

struct ToldComposition {
    std::int64_t object = 0;
    std::optional<std::string> name{};
    std::optional<std::string> mobID{};
    std::int64_t slotCount = 0;
    bool isRead = false;
};

struct ToldReading {
    std::vector<ToldLoss> losses{};
    std::vector<ToldComposition> compositions{};
};

}  // namespace

}  // namespace trellant::cli

namespace trellant {

template <>
struct RecordFields<cli::ToldLoss> {
    using R = cli::ToldLoss;
    static constexpr auto fields = std::tuple{field("description", &R::description),
                                              field("objectPath", &R::objectPath),
                                              field("kind", &R::kind),
                                              field("trackID", &R::trackID),
                                              field("trackName", &R::trackName),
                                              field("trackIndex", &R::trackIndex),
                                              field("clipName", &R::clipName),
                                              field("start", &R::start),
                                              field("duration", &R::duration)};
};

template <>
struct RecordFields<cli::ToldComposition> {
    using R = cli::ToldComposition;
    static constexpr auto fields =
        std::tuple{field("object", &R::object), field("name", &R::name), field("mobID", &R::mobID),
                   field("slotCount", &R::slotCount), field("isRead", &R::isRead)};
};

template <>
struct RecordFields<cli::ToldReading> {
    using R = cli::ToldReading;
    static constexpr auto fields =
        std::tuple{field("losses", &R::losses), field("compositions", &R::compositions)};
};

}  // namespace trellant

namespace trellant::cli {

namespace {

ToldLoss told(const AAFUnsupportedFeature& feature, const LossPlace& place) {
    ToldLoss loss{.description = feature.description,
                  .objectPath = feature.objectPath,
                  .kind = static_cast<std::int64_t>(place.kind)};
    if (place.track) {
        loss.trackID = place.track->id;
        loss.trackName = place.track->name;
        loss.trackIndex = place.track->index;
    }
    if (place.clipName) {
        loss.clipName = *place.clipName;
    }
    if (place.range) {
        loss.start = place.range->start;
        loss.duration = place.range->duration;
    }
    return loss;
}

/// Runs in the other process.
std::string tellReading(const std::string& file, const std::optional<std::string>& mediaFolder) {
    const OMFDocument document(file);
    ToldReading reading;
    for (const AAFComposition& composition : compositions(document)) {
        reading.compositions.push_back(
            {.object = number(composition.object),
             .name = composition.name,
             .mobID = composition.mobID,
             .slotCount = static_cast<std::int64_t>(composition.slotCount),
             .isRead = composition.isRead});
    }
    Mapper mapper(document, {.sourcePath = std::filesystem::absolute(file).string(),
                             .workDirectory = "/",
                             .mediaSearchDirectory = mediaFolder,
                             .extract = false,
                             .placesLosses = true});
    const AAFTimeline timeline = mapper.makeTimeline([](double) {});
    const std::vector<LossPlace>& places = mapper.lossPlaces();
    for (std::size_t i = 0; i < places.size(); ++i) {
        reading.losses.push_back(told(timeline.unsupportedFeatures.at(i), places[i]));
    }
    return declaredJson(reading);
}

PlacedLoss heard(ToldLoss loss) {
    PlacedLoss placed{.description = std::move(loss.description),
                      .objectPath = std::move(loss.objectPath),
                      .trackID = std::move(loss.trackID),
                      .trackName = std::move(loss.trackName),
                      .clipName = std::move(loss.clipName),
                      .start = loss.start,
                      .duration = loss.duration};
    if (loss.trackIndex) {
        placed.trackNumber = *loss.trackIndex + 1;
    }
    if (loss.kind >= 0 && loss.kind <= static_cast<std::int64_t>(LossKind::other)) {
        placed.plain = plainSentence(static_cast<LossKind>(loss.kind));
    }
    return placed;
}

}  // namespace

FileReading readFile(const std::string& file, const std::optional<std::string>& mediaFolder) {
    const IsolatedAnswer answer =
        inConfinedChild([&file, &mediaFolder] { return tellReading(file, mediaFolder); });
    FileReading reading;
    if (const auto* const failure = std::get_if<IsolatedFailure>(&answer)) {
        reading.failure = failure->reason;
        return reading;
    }
    const auto& text = std::get<std::string>(answer);
    try {
        auto told = decodeJson<ToldReading>(text);
        for (ToldLoss& loss : told.losses) {
            reading.losses.push_back(heard(std::move(loss)));
        }
        for (ToldComposition& composition : told.compositions) {
            reading.compositions.push_back(
                {.object = static_cast<OMFObject>(composition.object),
                 .name = std::move(composition.name),
                 .mobID = std::move(composition.mobID),
                 .slotCount = static_cast<std::size_t>(composition.slotCount),
                 .isRead = composition.isRead});
        }
    } catch (const JsonDecodingError& error) {
        reading.failure = error.what();
    }
    return reading;
}

}  // namespace trellant::cli
