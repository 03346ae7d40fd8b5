// SPDX-License-Identifier: Apache-2.0
#include "scene.h"

#include <cstring>
#include <filesystem>
#include <sys/stat.h>
#include <trellant_testing/omf_builder.h>
#include <trellant_testing/requests.h>
#include <trellant_testing/tone.h>
#include <trellant_testing/wave_builder.h>
#include <vector>

namespace trellant::testing {

namespace {

constexpr std::uint32_t frames = 480;
/// 66,044 bytes with the head of the file; pages of 4 KiB are what a copy by the kernel needs.
constexpr std::uint32_t manyFrames = 33'000;
constexpr std::size_t pageSize = 4'096;

Bytes toneWave(std::uint32_t frequency, std::uint32_t frameCount = frames) {
    return waveImage({.samples = toneSamples({.frames = frameCount, .frequency = frequency})});
}

}  // namespace

Scene::Scene(const SceneOptions& options)
    : embeddedAudio_(textOf(toneWave(440, options.suitsKernelCopy ? manyFrames : frames))) {
    constexpr mode_t everybodyMayLook = 0755;
    ::chmod(folder_.path().c_str(), everybodyMayLook);
    std::filesystem::create_directory(search());
    std::filesystem::create_directory(folder_.file("named"));
    writeFile(searchedFile(), toneWave(880));
    writeFile(namedFile(), toneWave(220));
    Bytes source = document(options, pageSize);
    if (options.suitsKernelCopy) {
        const std::size_t offset = textOf(source).find(embeddedAudio_);
        source = document(options, 2 * pageSize - offset % pageSize);
    }
    writeFile(this->source(), source);
}

Bytes Scene::document(const SceneOptions& options, std::size_t bytesBefore) const {
    constexpr MobID tone{1, 0, 0};
    constexpr MobID rain{2, 0, 0};
    constexpr MobID door{3, 0, 0};
    OmfBuilder omf;
    omf.object("PADS").bytes("OMFI:PADS:Data", Bytes(bytesBefore));
    omf.audioFile({.id = tone,
                   .name = "Tone.wav",
                   .media = bytesOf(embeddedAudio_),
                   .length = static_cast<std::int64_t>(embeddedAudio_.size() / 2)});
    omf.audioFile({.id = rain,
                   .name = "Rain",
                   .length = frames,
                   .locators = {omf.dosLocator("D:\\Audio\\Rain.wav")}});
    omf.audioFile(
        {.id = door, .name = "Door", .length = frames, .locators = {omf.unixLocator(namedFile())}});
    std::vector<ObjectID> clips;
    for (const MobID& id : {tone, rain, door}) {
        clips.push_back(omf.clip({.length = frames, .source = id}));
    }
    for (int more = 0; more < options.moreClips; ++more) {
        clips.push_back(omf.clip({.length = frames, .source = tone}));
    }
    const ObjectID track = omf.track({.name = "A"});
    const ObjectID slot =
        omf.slot({.editRate = Ratio{48'000}, .segment = omf.sequence(clips), .track = track});
    omf.composition({.name = "Scene", .slots = {slot}});
    return omf.build();
}

std::string Scene::request(std::string_view operation) const {
    return requestFor(operation, source(), work(), search()).json();
}

std::map<std::string, std::string> Scene::everything() const {
    std::map<std::string, std::string> found;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder_.path())) {
        const auto name = entry.path().lexically_relative(folder_.path()).string();
        found[name] = entry.is_directory() ? "/" : textOf(readFile(entry.path().string()));
    }
    return found;
}

std::string refusal(std::string_view action, std::string_view path, int errorNumber) {
    return logLineText("unexpected failure: cannot " + std::string(action) + " \"" +
                       std::string(path) + "\": " + std::strerror(errorNumber));
}

}  // namespace trellant::testing
