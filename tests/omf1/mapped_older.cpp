// SPDX-License-Identifier: Apache-2.0
#include "mapped_older.h"

#include <trellant/io/errors.h>
#include <trellant/omf1/open.h>

#include <algorithm>
#include <iterator>
#include <trellant_testing/aiff_builder.h>
#include <trellant_testing/temporary_directory.h>

namespace trellant::testing {

namespace {

MappedOlder mapFile(const std::string& path, const std::string& workDirectory, bool extract) {
    const OMFDocument document = openAnyOMF(path);
    Mapper mapper(document, {.sourcePath = "/projects/song.omf",
                             .workDirectory = workDirectory,
                             .extract = extract,
                             .placesLosses = true});
    MappedOlder mapped;
    mapped.timeline = mapper.makeTimeline([](double) {});
    mapped.diagnostics = mapper.diagnostics();
    mapped.places = mapper.lossPlaces();
    return mapped;
}

}  // namespace

MappedOlder mapAny(ByteView image, bool extract) {
    const TemporaryDirectory folder;
    return mapFile(writeFile(folder.file("song.omf"), image), folder.path().string(), extract);
}

std::string errorOf(ByteView image) {
    // One for all: thousands of damaged files are looked at.
    static const TemporaryDirectory folder;
    try {
        static_cast<void>(mapFile(writeFile(folder.file("song.omf"), image), "/nowhere", false));
    } catch (const OMFIOError& error) {
        return error.errorDescription();
    }
    return {};
}

std::vector<std::string> sentencesOf(const MappedOlder& mapped) {
    std::vector<std::string> result;
    std::transform(mapped.timeline.unsupportedFeatures.begin(),
                   mapped.timeline.unsupportedFeatures.end(), std::back_inserter(result),
                   [](const AAFUnsupportedFeature& feature) { return feature.description; });
    return result;
}

std::vector<std::string> pathsOf(const MappedOlder& mapped) {
    std::vector<std::string> result;
    std::transform(mapped.timeline.unsupportedFeatures.begin(),
                   mapped.timeline.unsupportedFeatures.end(), std::back_inserter(result),
                   [](const AAFUnsupportedFeature& feature) {
                       return feature.objectPath.value_or("nowhere");
                   });
    return result;
}

OneClip::OneClip(const Omf1Builder::Options& options) : omf(options) {
    source =
        omf.audioFile({.id = voice, .name = "Voice", .media = aifcOf(96'000), .length = 96'000});
    clip = omf.clip({.length = 24'000, .source = voice, .position = 4'800, .name = "Take 1"});
    sequence = omf.sequence({clip}, "Dialog");
    track = omf.track(1, sequence);
    timecode = omf.timecode(25, 90'000);
    const ObjectID clock = omf.track(1, timecode);
    composition = omf.mob({.name = "Scene 12", .tracks = {track, clock}});
}

std::array<Omf1Builder::Options, 4> allByteOrders() {
    using enum OMFByteOrder;
    return {{{little, big}, {little, little}, {big, big}, {big, little}}};
}

Bytes aifcOf(std::size_t samples, std::uint16_t channels) {
    constexpr std::size_t bytesOfSample = 2;
    return aiffImage({.formType = "AIFC",
                      .channels = channels,
                      .samples = Bytes(samples * bytesOfSample * channels)});
}

}  // namespace trellant::testing
