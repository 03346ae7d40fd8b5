// SPDX-License-Identifier: Apache-2.0
// `trellant render` over documents that a test makes, with the real worker and converter. Samples
// of 24 bits are those of 16 bits times 256.
#include "extract_fixture.h"
#include "render/render.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <cstdlib>
#include <filesystem>
#include <limits>
#include <trellant_testing/byte_writer.h>
#include <trellant_testing/worker_process.h>

namespace trellant::testing {
namespace {

namespace fs = std::filesystem;

using render::RenderKind;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class RenderCommand : public ExtractTest {
  protected:
    [[nodiscard]] cli::RenderOptions rendering(const std::string& file) const {
        cli::RenderOptions options;
        options.call.files = {file};
        options.call.directory = out();
        options.helperURLProvider = [](const std::string&) { return workerPath(); };
        options.waveConverter = TRELLANT_WAV;
        return options;
    }
    [[nodiscard]] Said rendered(const cli::RenderOptions& options,
                                const StopToken& stop = {}) const {
        return saidWithStatus({}, [&](cli::Console& console) {
            return static_cast<int>(cli::runRender(options, console, stop));
        });
    }
    nlohmann::json renderWell(cli::RenderOptions options) const {
        options.call.json = true;
        const Said said = rendered(options);
        EXPECT_EQ(said.status, 0) << said.errors;
        return nlohmann::json::parse(said.out);
    }
    /// What stands in the "data" chunk; cue points name it before.
    [[nodiscard]] Bytes dataOf(const std::string& name) const {
        const Bytes file = readFile(out(name));
        const std::size_t at = textOf(file).rfind("data") + 8;
        const auto size = u32(file, static_cast<std::int64_t>(at) - 4, OMFByteOrder::little);
        return {file.begin() + static_cast<std::ptrdiff_t>(at),
                file.begin() + static_cast<std::ptrdiff_t>(at + size)};
    }
    static std::vector<std::int16_t> rising(std::size_t count) {
        std::vector<std::int16_t> samples;
        for (std::size_t i = 0; i < count; ++i) {
            samples.push_back(static_cast<std::int16_t>(i * 7 - 2'000));
        }
        return samples;
    }
    /// A document with a clip of 480 samples of a file of its own.
    std::string writeKick() {
        add({.name = "Kick.wav", .media = waveOf(rising(1'000)), .clipLength = 1});
        return writeDocument();
    }
};

TEST_F(RenderCommand, EditsAreByteForByteSlicesOfTheMedia) {
    cli::RenderOptions options = rendering(writeKick());
    options.call.raw = true;
    const auto line = renderWell(options);
    const std::string name = line["files"][0]["name"];
    EXPECT_EQ(line["files"][0]["bitDepth"], 16);
    EXPECT_EQ(dataOf(name), samples16(rising(480)));
}

TEST_F(RenderCommand, ATrackIsOfTwentyFourBitsFromTheStart) {
    const auto line = renderWell(rendering(writeKick()));
    const std::string name = line["files"][0]["name"];
    EXPECT_EQ(line["kind"], "tracks");
    EXPECT_EQ(line["files"][0]["frames"], 480);
    EXPECT_EQ(line["cutSamples"], 0);
    Bytes expected;
    for (const std::int16_t sample : rising(480)) {
        expected.push_back(std::byte{0});
        expected.push_back(static_cast<std::byte>(static_cast<std::uint16_t>(sample) & 0xFFU));
        expected.push_back(static_cast<std::byte>(static_cast<std::uint16_t>(sample) >> 8U));
    }
    EXPECT_EQ(dataOf(name), expected);
    const std::string file = textOf(readFile(out(name)));
    EXPECT_THAT(file, HasSubstr("bext"));
    EXPECT_THAT(file, HasSubstr("<TIMECODE_FLAG>"));
    EXPECT_THAT(namesIn(out()), ElementsAre(name, "MANIFEST.sha256", "losses.json"));
}

TEST_F(RenderCommand, TheManifestIsWhatSha256sumChecks) {
    renderWell(rendering(writeKick()));
    const std::string check = "cd '" + out() + "' && sha256sum --quiet -c MANIFEST.sha256";
    EXPECT_EQ(std::system(check.c_str()), 0);
}

TEST_F(RenderCommand, AClipComesWithHandles) {
    cli::RenderOptions options = rendering(writeKick());
    options.call.kind = RenderKind::clips;
    options.call.raw = true;
    options.call.handles = 0.005;
    const auto line = renderWell(options);
    // 240 samples behind the clip; the media begin with it.
    EXPECT_EQ(line["files"][0]["frames"], 720);
    EXPECT_EQ(dataOf(line["files"][0]["name"]), samples16(rising(720)));
}

TEST_F(RenderCommand, OtherRatesAreRefusedUntilTheyAreToBeConverted) {
    add({.name = "Kick.wav", .media = waveOf(rising(1'000)), .clipLength = 1});
    add({.name = "Snare.wav", .media = waveOf(rising(1'000)), .clipLength = 1});
    add({.name = "Tom.wav", .media = waveOf(rising(1'000), 24'000), .clipLength = 1});
    cli::RenderOptions options = rendering(writeDocument());
    const Said said = rendered(options);
    EXPECT_EQ(said.status, 1);
    EXPECT_THAT(said.errors, HasSubstr("Tom.wav (24000 Hz); --resample converts it"));
    EXPECT_FALSE(fs::exists(out()));
    options.call.resamples = true;
    const auto line = renderWell(options);
    EXPECT_EQ(line["resampled"][0]["name"], "Tom.wav");
    EXPECT_EQ(line["resampled"][0]["sampleRateExact"], "24000");
}

/// A steady sound is one at any rate.
TEST_F(RenderCommand, AConvertedSoundIsTheSame) {
    add({.name = "Kick.wav", .media = waveOf(rising(5'000)), .clipLength = 1});
    add({.name = "Snare.wav", .media = waveOf(rising(5'000)), .clipLength = 1});
    add({.name = "Tom.wav",
         .media = waveOf(std::vector<std::int16_t>(24'000, 1'000), 24'000),
         .clipLength = 50});
    cli::RenderOptions options = rendering(writeDocument());
    options.call.resamples = true;
    options.call.kind = RenderKind::clips;
    const auto line = renderWell(options);
    for (const auto& file : line["files"]) {
        if (file["clip"] == "Tom.wav") {
            const Bytes data = dataOf(file["name"]);
            ASSERT_EQ(data.size(), 24'000U * 3);
            // In the middle, far from the filter's ends: 1,000 steps of 16 bits are 256,000 of 24,
            // and 170 dB below full scale is far less than one.
            std::int64_t value = 0;
            for (std::size_t i = 0; i < 3; ++i) {
                value |= std::to_integer<std::int64_t>(data[36'000 + i]) << (8 * i);
            }
            EXPECT_NEAR(static_cast<double>(value), 256'000, 1);
        }
    }
}

TEST_F(RenderCommand, MissingMediaAreSilentAndTold) {
    add({.name = "Gone.wav", .locators = {omf_.dosLocator("D:\\Gone.wav")}, .clipLength = 1});
    cli::RenderOptions options = rendering(writeDocument());
    options.call.failOn = cli::FailOn::missing;
    const Said said = rendered(options);
    EXPECT_EQ(said.status, 3);
    EXPECT_THAT(said.out, HasSubstr("  Silent       1 clip of 1 missing audio file\n"));
    EXPECT_THAT(said.errors, HasSubstr("--media FOLDER"));
    const auto names = namesIn(out());
    ASSERT_EQ(names.size(), 3U);
    EXPECT_EQ(dataOf(names[0]), Bytes(std::size_t{480} * 3));
    EXPECT_THAT(textOf(readFile(out(names[0]))),
                HasSubstr("Its audio is missing, so there is silence."));
}

TEST_F(RenderCommand, UndecidedMediaAreToldApartFromMissingOnes) {
    add({.name = "Gone.wav", .locators = {omf_.dosLocator("D:\\Gone.wav")}, .clipLength = 1});
    add({.name = "Twice.wav", .locators = {omf_.dosLocator("D:\\Twice.wav")}, .clipLength = 1});
    for (const std::string take : {"one", "other"}) {
        fs::create_directory(folder_.file(take));
        writeFile(folder_.file(take + "/Twice.wav"), waveOf(rising(480)));
    }
    const Said said = rendered(rendering(writeDocument()));
    EXPECT_THAT(said.errors, HasSubstr("1 audio file is undecided, since several files of the name "
                                       "fit, and there is silence; trellant extract lists the "
                                       "files\n"));
    EXPECT_THAT(said.errors, HasSubstr("1 audio file is missing, and there is silence; name the "
                                       "folder that holds it with --media FOLDER\n"));
}

TEST_F(RenderCommand, NothingIsReplacedWithoutForce) {
    cli::RenderOptions options = rendering(writeKick());
    renderWell(options);
    const Said said = rendered(options);
    EXPECT_EQ(said.status, 1);
    EXPECT_THAT(said.errors, HasSubstr("is there already; --force replaces it, another folder"));
    options.call.force = true;
    renderWell(options);
}

TEST_F(RenderCommand, AStopLeavesNothing) {
    StopSource source;
    source.request_stop();
    const Said said = rendered(rendering(writeKick()), source.get_token());
    EXPECT_EQ(said.status, 2);
    EXPECT_FALSE(fs::exists(out()));
}

TEST_F(RenderCommand, WhatCannotBeMeantIsRefused) {
    const std::string file = writeKick();
    cli::RenderOptions options = rendering(file);
    options.call.handles = 1;
    EXPECT_EQ(rendered(options).errors, "trellant: --handles is for --clips\n");
    options.call.kind = RenderKind::clips;
    options.call.handles = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(rendered(options).errors, "trellant: --handles needs a number of seconds\n");
    options = rendering(file);
    options.call.from = "1:00";
    EXPECT_EQ(rendered(options).errors,
              "trellant: \"1:00\" is no timecode; one is written as 01:00:00:00\n");
    options = rendering(file);
    options.call.raw = true;
    options.call.kind = RenderKind::mix;
    EXPECT_EQ(rendered(options).status, 1);
    EXPECT_FALSE(fs::exists(out()));
}

/// 23 hours of 192,000 samples of 4 bytes are 63.6 GB, and 500 tracks of them 31,795.2 GB.
TEST_F(RenderCommand, WhatTheDiskHasNoRoomForIsRefused) {
    for (int i = 0; i < 500; ++i) {
        add({.name = "A.wav", .media = waveOf({1, 2}, 192'000), .clipLength = 23 * 360'000});
    }
    cli::RenderOptions options = rendering(writeDocument());
    options.call.format = audio::PcmFormat{32, true};
    const Said said = rendered(options);
    EXPECT_EQ(said.status, 1);
    EXPECT_THAT(said.errors, HasSubstr("the files take 31795.2 GB, and of the "));
    EXPECT_THAT(said.errors, HasSubstr(" GB that are free a twentieth is left alone; "));
    EXPECT_FALSE(fs::exists(out()));
}

TEST_F(RenderCommand, ADayIsTheMostOfAFile) {
    add({.name = "A.wav", .media = waveOf({1, 2}), .clipLength = 365 * 24 * 360'000LL});
    const Said said = rendered(rendering(writeDocument()));
    EXPECT_EQ(said.status, 1);
    EXPECT_THAT(said.errors, HasSubstr("what is to be rendered is 8760 hours long, and a file has "
                                       "24 at most; --from and --until name a part"));
    EXPECT_FALSE(fs::exists(out()));
}

TEST_F(RenderCommand, SoxAndFfmpegReadWhatIsWritten) {
    if (std::system("command -v sox ffmpeg >/dev/null 2>&1") != 0) {
        GTEST_SKIP() << "sox or ffmpeg is not installed";
    }
    const std::string file = writeKick();
    for (const RenderKind kind : {RenderKind::tracks, RenderKind::mix, RenderKind::clips}) {
        for (const audio::PcmFormat format :
             {audio::PcmFormat{24, false}, audio::PcmFormat{32, true}}) {
            cli::RenderOptions options = rendering(file);
            options.call.kind = kind;
            options.call.format = format;
            options.call.force = true;
            const std::string wave = out(renderWell(options)["files"][0]["name"]);
            const std::string sox = "test \"$(sox --info -s '" + wave + "')\" = 480";
            EXPECT_EQ(std::system(sox.c_str()), 0) << wave;
            const std::string ffmpeg =
                "ffmpeg -v error -xerror -i '" + wave + "' -f null - </dev/null";
            EXPECT_EQ(std::system(ffmpeg.c_str()), 0) << wave;
        }
    }
}

}  // namespace
}  // namespace trellant::testing
