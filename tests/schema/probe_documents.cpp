// SPDX-License-Identifier: Apache-2.0
#include "probe.h"

#include <trellant/model/timeline_json.h>
#include <trellant/model/validation.h>
#include <trellant/protocol/messages.h>

#include <istream>
#include <map>
#include <ostream>
#include <sample_timeline.h>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace trellant::test {

namespace {

using Protocol = AAFWorkerProtocol;

/// With every field that there is.
AAFWorkerExtensions sampleExtensions() {
    using Extensions = AAFWorkerExtensions;
    Extensions extensions;
    extensions.lossPlaces = Extensions::LossPlaces{{{.kind = LossKind::transitionAsCut,
                                                     .trackID = "omf-track-4",
                                                     .trackName = "Atmo",
                                                     .trackIndex = 3,
                                                     .start = AAFRational(1, 2),
                                                     .duration = AAFRational(2),
                                                     .cut = AAFRational(1),
                                                     .clipObject = 12,
                                                     .clipName = "Rain"}}};
    extensions.compositions = Extensions::Compositions{{{.object = 9,
                                                         .name = "Reel",
                                                         .mobID = "0000002A-00000001-FFFFFFFF",
                                                         .slotCount = 4,
                                                         .isRead = true}}};
    extensions.embeddedMedia = Extensions::EmbeddedMedia{
        .unusedCount = 1,
        .unusedNames = {"Kick"},
        .separateFiles = {{.essenceID = "omf-essence-1", .path = "/out/Kick_1000.wav"}}};
    extensions.dates = Extensions::Dates{.lastModified = 1'000'000'000};
    extensions.reels = Extensions::Reels{
        {{.essenceID = "omf-essence-1",
          .mobID = "0000002A-00000001-FFFFFFFE",
          .name = "TAPE 7",
          .start = AAFRational(7, 2),
          .timecode = Extensions::ReelTimecode{90'000, 25, false, AAFRational(25)}}}};
    extensions.masterMobs = Extensions::MasterMobs{
        {{.mobID = "0000002A-00000001-00000003", .name = "Take 1"}}, {0, -1}};
    extensions.contents =
        Extensions::Contents{.mediaLengths = {{.essenceID = "omf-essence-1", .frames = 48'000}},
                             .unusedMedia = 1,
                             .unusedNames = {"Kick"},
                             .unusedBytes = 1'000,
                             .renderedEffects = 2,
                             .nestedGroups = 3};
    extensions.provenance = Extensions::Provenance{
        .containerVersion = "2.0",
        .modelVersion = "2.0",
        .bigEndian = true,
        .applications = {{.company = "A House", .product = "Desk", .version = "8.0"}},
        .peakMemory = 3'000'000};
    extensions.sampleData =
        Extensions::SampleData{{{.essenceID = "omf-essence-1",
                                 .sampleBytes = 2,
                                 .bigEndian = true,
                                 .pieces = {{.offset = 100, .length = 96'000}}}}};
    extensions.omf1 = Extensions::OlderModel{.version = "1.0"};
    return extensions;
}

std::string sampleResultJson() {
    Protocol::Result result;
    result.timeline = sampleTimeline();
    result.diagnostics = {"first", "second"};
    result.embeddedMediaSHA256 = std::map<std::string, std::string>{{"Take.wav", "e3b0c442"}};
    result.extensions = sampleExtensions();
    StringSink sink;
    encodeResult(result, sink);
    return sink.text;
}

void decode(std::string_view kind, std::string_view json) {
    if (kind == "request") {
        static_cast<void>(decodeRequest(json));
    } else if (kind == "progress") {
        static_cast<void>(decodeProgress(json));
    } else if (kind == "result") {
        static_cast<void>(decodeResult(json, TimelineChecks::none));
    } else if (kind == "timeline") {
        static_cast<void>(decodeJson<AAFTimeline>(json, TimelineChecks::none));
    } else if (kind == "checkedTimeline") {
        static_cast<void>(decodeJson<AAFTimeline>(json));
    } else {
        throw std::invalid_argument("no such kind of document: " + std::string(kind));
    }
}

}  // namespace

void printSamples(std::ostream& out) {
    const Protocol::Request request{Protocol::version,
                                    Protocol::Request::Operation::extractAndInspect,
                                    "/in/film.omf",
                                    "/out",
                                    "/media",
                                    true,
                                    false,
                                    std::vector<std::string>{"lossPlaces", "later"},
                                    1'048'576};
    out << "request\t" << encodeRequest(request) << '\n'
        << "progress\t" << encodeProgress({"resolving", 0.5, "slot 3"}) << '\n'
        << "result\t" << sampleResultJson() << '\n'
        << "timeline\t" << sortedJson(sampleTimeline()) << '\n';
}

void decodeLines(std::istream& in, std::ostream& out) {
    for (std::string line; std::getline(in, line);) {
        const std::size_t tab = line.find('\t');
        const std::string_view text = line;
        try {
            decode(text.substr(0, tab), text.substr(tab == std::string::npos ? 0 : tab + 1));
            out << "decoded\n";
        } catch (const JsonDecodingError& error) {
            out << error.what() << '\n';
        } catch (const AAFRawTimelineValidation::Failure& failure) {
            out << failure.what() << '\n';
        }
    }
}

}  // namespace trellant::test
