// SPDX-License-Identifier: Apache-2.0
#include "seeds.h"

#include "memory_file.h"
#include "require.h"
#include "sample_timeline.h"
#include "targets.h"

#include <trellant/mapper/mapper.h>
#include <trellant/model/record_fields.h>
#include <trellant/model/timeline_json.h>
#include <trellant/protocol/messages.h>

#include <trellant_testing/aiff_builder.h>
#include <trellant_testing/byte_writer.h>
#include <trellant_testing/container_builder.h>
#include <trellant_testing/wave_builder.h>
#include <utility>

namespace trellant::fuzzing {

namespace {

using testing::bytesOf;

std::vector<Seed> documentSeeds() {
    std::vector<Seed> seeds = compositionSeeds();
    for (Seed& seed : olderSeeds()) {
        seeds.push_back(std::move(seed));
    }
    return seeds;
}

std::vector<Seed> containerSeeds() {
    std::vector<Seed> seeds = documentSeeds();
    for (const auto form : {testing::TocForm::compressed, testing::TocForm::v1}) {
        testing::ContainerBuilder builder({.form = form});
        builder.set(1, "OMFI:A", bytesOf("abc"));
        builder.set(1, "OMFI:B", Bytes(70), "omfi:Kind");
        builder.setPieces(2, "OMFI:B", {bytesOf("hello"), bytesOf("world!")});
        builder.setReferences(2, "OMFI:C", {1, 2, 3}, OMFByteOrder::little);
        seeds.push_back({form == testing::TocForm::v1 ? "plain-v1" : "plain", builder.build()});
    }
    return seeds;
}

std::vector<Seed> mappingSeeds() {
    constexpr std::byte everyOption{7};
    std::vector<Seed> seeds = documentSeeds();
    std::size_t position = 0;
    for (Seed& seed : seeds) {
        const std::byte options = static_cast<std::byte>(position++ % 8) & everyOption;
        seed.bytes.insert(seed.bytes.begin(), options);
    }
    return seeds;
}

std::vector<Seed> audioSeeds() {
    const Bytes samples(24);
    const testing::RiffChunk junk{"JUNK", Bytes(11)};
    return {{"wave", testing::waveImage({.samples = samples})},
            {"wave-extensible", testing::waveImage({.formatTag = 0xFFFE,
                                                    .channels = 2,
                                                    .bitsPerSample = 24,
                                                    .samples = samples,
                                                    .leadingChunks = {junk}})},
            {"wave-float", testing::waveImage({.formatTag = 3, .bitsPerSample = 32})},
            {"rf64", testing::waveImage({.form = "RF64", .formatTag = 0x55})},
            {"aiff", testing::aiffImage({.channels = 2, .bitsPerSample = 24, .samples = samples})},
            {"aifc", testing::aiffImage({.formType = "AIFC",
                                         .sampleRate = 44'100,
                                         .compressionType = "sowt",
                                         .leadingChunks = {junk}})}};
}

std::vector<Seed> requestSeeds() {
    using Request = AAFWorkerProtocol::Request;
    const Request request{.operation = Request::Operation::extractAndInspect,
                          .aafPath = "/a/mix \"2\".omf",
                          .workDirectory = "wörk",
                          .mediaSearchDirectory = ""};
    return {{"least", bytesOf(encodeRequest({}))},
            {"full", bytesOf(encodeRequest(request))},
            {"progress",
             bytesOf(encodeProgress({.phase = "opening", .fraction = 0.05, .detail = "mix.omf"}))}};
}

AAFTimeline mapped(ByteView container) {
    const MemoryFile file(container);
    const OMFDocument document(file.path());
    Mapper mapper(document, {.sourcePath = "/projects/song.omf"});
    return mapper.makeTimeline([](double) {});
}

std::vector<Seed> timelineSeeds() {
    std::vector<Seed> seeds{{"empty", bytesOf(sortedJson(test::emptyTimeline()))},
                            {"sample", bytesOf(test::sampleTimelineJson())},
                            {"declared", bytesOf(declaredJson(test::sampleTimeline()))}};
    for (const Seed& composition : compositionSeeds()) {
        if (composition.name.ends_with("-little")) {
            seeds.push_back({composition.name, bytesOf(sortedJson(mapped(composition.bytes)))});
        }
    }
    return seeds;
}

/// Audio files one after the other, and containers that hold some.
std::vector<Seed> salvageSeeds() {
    std::vector<Seed> seeds = compositionSeeds();
    Bytes all;
    for (Seed& seed : audioSeeds()) {
        all.insert(all.end(), seed.bytes.begin(), seed.bytes.end());
        seeds.push_back(std::move(seed));
    }
    seeds.push_back({"all", std::move(all)});
    return seeds;
}

std::vector<Seed> fileNameSeeds() {
    return {{"plain", bytesOf("0Kick-1_a.b c.wav")},
            {"path", bytesOf("1/Volumes/Disk/../Kick.aif/")},
            {"taken", bytesOf("6..")},
            {"combined", bytesOf("2e\u0301\u0663\u2167\u202E\U0001F1E9\U0001F1EA.x")},
            {"long", bytesOf("4" + std::string(300, 'a') + "\u00E9")},
            {"url", bytesOf("0file://localhost/a%20b?x#y")}};
}

}  // namespace

std::vector<Seed> seedsOf(std::string_view target) {
    if (target == "container") {
        return containerSeeds();
    }
    if (target == "document") {
        return documentSeeds();
    }
    if (target == "mapping") {
        return mappingSeeds();
    }
    if (target == "audio_probe") {
        return audioSeeds();
    }
    if (target == "salvage") {
        return salvageSeeds();
    }
    if (target == "request") {
        return requestSeeds();
    }
    if (target == "timeline") {
        return timelineSeeds();
    }
    require(target == "file_names", "each target has seeds");
    return fileNameSeeds();
}

}  // namespace trellant::fuzzing
