// SPDX-License-Identifier: Apache-2.0
#include "extract_fixture.h"

#include <trellant/base/url.h>
#include <trellant/model/record_fields.h>
#include <trellant/model/timeline_json.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <stdexcept>
#include <trellant_testing/byte_writer.h>
#include <trellant_testing/wave_builder.h>
#include <trellant_testing/worker_process.h>

namespace trellant::testing {

namespace {

Bytes samples(const std::vector<std::int16_t>& values, OMFByteOrder order) {
    ByteWriter writer(order);
    for (const std::int16_t value : values) {
        writer.u16(static_cast<std::uint16_t>(value));
    }
    return writer.written();
}

}  // namespace

std::vector<std::string> namesIn(const std::string& folder) {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
}

Bytes samples16(const std::vector<std::int16_t>& values) {
    return samples(values, OMFByteOrder::little);
}

Bytes samples16Big(const std::vector<std::int16_t>& values) {
    return samples(values, OMFByteOrder::big);
}

Bytes waveOf(const std::vector<std::int16_t>& values, std::uint32_t sampleRate,
             std::uint16_t channels) {
    return waveImage(
        {.channels = channels, .sampleRate = sampleRate, .samples = samples16(values)});
}

Bytes sampleBytesOf(const std::string& wavePath) {
    const Bytes file = readFile(wavePath);
    const std::string text = textOf(file);
    const auto data = text.find("data", 12);
    if (!text.starts_with("RIFF") || text.substr(8, 4) != "WAVE" || data == std::string::npos) {
        throw std::runtime_error("no WAVE file: " + wavePath);
    }
    const auto size = u32(file, static_cast<std::int64_t>(data) + 4, OMFByteOrder::little);
    const auto first = file.begin() + static_cast<std::ptrdiff_t>(data) + 8;
    return {first, first + static_cast<std::ptrdiff_t>(size)};
}

ExtractTest::ExtractTest() = default;

void ExtractTest::add(const PlayedSource& source) {
    const MobID id{1, 0, ++sources_};
    omf_.audioFile({.id = id,
                    .name = source.name,
                    .kind = source.kind,
                    .media = source.media,
                    .length = 48'000,
                    .locators = source.locators,
                    .track = {.id = 1, .physicalTrack = source.physicalTrack}});
    const ObjectID clip = omf_.clip({.length = source.clipLength, .source = id});
    slots_.push_back(omf_.slot({.editRate = Ratio{100}, .segment = clip}));
}

std::string ExtractTest::writeDocument() {
    omf_.composition({.name = "Mix", .slots = slots_});
    return writeFile(folder_.file("mix.omf"), omf_.build());
}

cli::ExtractOptions ExtractTest::options(const std::string& file) const {
    cli::ExtractOptions options;
    options.call.files = {file};
    options.call.directory = out();
    options.helperURLProvider = [](const std::string&) { return workerPath(); };
    options.waveConverter = TRELLANT_WAV;
    return options;
}

Said ExtractTest::extract(const cli::ExtractOptions& options, const Setting& setting,
                          const StopToken& stop) const {
    return saidWithStatus(setting, [&](cli::Console& console) {
        return static_cast<int>(cli::runExtract(options, console, stop));
    });
}

std::string ExtractTest::extractWell(const cli::ExtractOptions& options) const {
    const Said said = extract(options);
    EXPECT_EQ(said.status, 0) << said.errors;
    return said.out;
}

std::string ExtractTest::out(const std::string& name) const {
    return name.empty() ? folder_.file("out") : folder_.file("out") + "/" + name;
}

AAFTimeline ExtractTest::timeline(const std::string& name) const {
    return decodeJson<AAFTimeline>(textOf(readFile(out(name))));
}

std::optional<std::string> ExtractTest::pathOfSource(std::uint32_t number) const {
    std::array<char, 32> mobID{};
    static_cast<void>(std::snprintf(mobID.data(), mobID.size(), "00000001-00000000-%08X", number));
    for (const AAFSourceEssence& essence : timeline().essences) {
        if (essence.mobID == mobID.data()) {
            return essence.fileURL ? pathOfReference(essence.fileURL->text, out()) : std::nullopt;
        }
    }
    throw std::runtime_error("no such source");
}

}  // namespace trellant::testing
