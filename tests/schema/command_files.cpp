// SPDX-License-Identifier: Apache-2.0
// OMF files whose machine output has what that of the examples lacks, written into a folder.
#include <exception>
#include <iostream>
#include <string>
#include <trellant_testing/aiff_builder.h>
#include <trellant_testing/omf1_builder.h>
#include <trellant_testing/omf_builder.h>
#include <trellant_testing/temporary_directory.h>
#include <trellant_testing/wave_builder.h>
#include <vector>

namespace trellant::testing {
namespace {

constexpr MobID kick{1, 0, 1};
constexpr MobID voice{1, 0, 2};
constexpr MobID old{1, 0, 3};
constexpr MobID gone{1, 0, 4};
constexpr MobID recorded{1, 0, 5};
constexpr MobID tape{1, 0, 6};
constexpr MobID master{1, 0, 7};

Bytes secondOfSilence() {
    return waveImage({.samples = Bytes(96'000)});
}

/// Two rates, two compositions, a slot that is listed twice, gain automation, pan, silence, and a
/// source whose audio is not there.
Bytes unusual() {
    OmfBuilder omf;
    omf.audioFile({.id = kick, .name = "Kick.wav", .media = secondOfSilence(), .length = 48'000});
    omf.audioFile({.id = voice, .name = "Voice.wav", .media = secondOfSilence(), .length = 48'000});
    omf.audioFile({.id = gone,
                   .name = "Gone.wav",
                   .length = 48'000,
                   .locators = {omf.dosLocator("D:\\Audio\\Gone.WAV")}});
    const ObjectID clock =
        omf.slot({.editRate = Ratio{25}, .segment = omf.timecode(24, false, 86'400, 100)});
    const ObjectID automated = omf.gain(
        omf.clip({.length = 25, .source = kick, .fadeIn = FadeSpec{.length = 5, .type = 1}}),
        omf.varyingValue({{{0, 1}, {1, 1}}, {{1, 1}, {1, 2}}}));
    const ObjectID twice =
        omf.slot({.editRate = Ratio{25}, .segment = omf.sequence({automated, omf.filler(5)})});
    const ObjectID panned =
        omf.slot({.editRate = Ratio{25},
                  .segment = omf.pan(omf.clip({.length = 25, .source = voice, .name = "Anna"}),
                                     omf.constantValue(Ratio{1}))});
    const ObjectID silent = omf.slot({.editRate = Ratio{25},
                                      .segment = omf.gain(omf.clip({.length = 25, .source = gone}),
                                                          omf.constantValue(Ratio{0}))});
    omf.composition({.name = "Twice", .slots = {clock, twice, twice, panned, silent}});
    omf.composition({.name = "Other", .slots = {clock}, .id = {0xC0, 0, 2}, .isPrimary = false});
    return omf.build();
}

/// Clips that lie one upon the other, each with a gain setting that cannot be read, so that all of
/// these losses touch each clip; and a clip whose source is not described.
Bytes manyLosses() {
    constexpr int inputs = 120;
    constexpr std::int32_t inputArgument = -1;
    OmfBuilder omf;
    omf.audioFile({.id = kick, .name = "Kick.wav", .media = secondOfSilence(), .length = 48'000});
    std::vector<EffectSlotSpec> slots;
    for (int i = 0; i < inputs; ++i) {
        const ObjectID clip = omf.clip({.length = 25, .source = kick});
        slots.push_back({inputArgument, omf.gain(clip, omf.filler(25))});
    }
    const ObjectID nested =
        omf.effect({.effectID = "omfi:effect:MonoAudioGain", .length = 25, .slots = slots});
    const ObjectID lost = omf.clip({.length = 25, .source = gone, .name = "Lost"});
    omf.composition({.slots = {omf.slot({.editRate = Ratio{25},
                                         .segment = omf.sequence({nested, lost}),
                                         .track = omf.track({.id = 1, .name = "Dialog"})})}});
    return omf.build();
}

/// A clip with a name, from a source whose sample rate is below zero.
Bytes beyondSense() {
    OmfBuilder omf;
    omf.audioFile({.id = gone, .name = "Gone.wav", .sampleRate = Ratio{-48'000}, .length = 48'000});
    const ObjectID clip = omf.clip({.length = 25, .source = gone, .name = "Lost"});
    omf.composition({.slots = {omf.slot({.editRate = Ratio{25}, .segment = clip})}});
    return omf.build();
}

/// A clip without a name, of a master mob with one, whose source bears the name of the file and
/// comes from a tape with labels.
ObjectID clipFromTape(OmfBuilder& omf) {
    omf.sourceMob(
        {.id = tape,
         .name = "TAPE 7",
         .slots = {omf.slot({.editRate = Ratio{25}, .segment = omf.timecode(25, false, 900'000)})},
         .descriptor = omf.descriptor({.classID = "MDTP"})});
    const ObjectID origin = omf.clip({.length = 48'000, .source = tape});
    omf.sourceMob(
        {.id = recorded,
         .name = "media.wav",
         .slots = {omf.slot(
             {.editRate = Ratio{48'000}, .segment = origin, .track = omf.track({.id = 1})})},
         .descriptor =
             omf.descriptor({.classID = "WAVD", .sampleRate = Ratio{48'000}, .length = 48'000})});
    omf.waveMedia(recorded, secondOfSilence());
    const ObjectID played = omf.clip({.length = 48'000, .source = recorded});
    omf.masterMob(
        {.id = master,
         .name = "Rain",
         .slots = {omf.slot(
             {.editRate = Ratio{48'000}, .segment = played, .track = omf.track({.id = 1})})}});
    return omf.clip({.length = 25, .source = master});
}

/// AIFC whose audio is compressed, AIFC that is no audio, a stereo WAVE, and one from a tape.
Bytes oddMedia() {
    OmfBuilder omf;
    std::vector<ObjectID> slots;
    const auto play = [&](MobID id, const std::string& name, MediaKind kind, const Bytes& media) {
        omf.audioFile({.id = id, .name = name, .kind = kind, .media = media, .length = 48'000});
        slots.push_back(
            omf.slot({.editRate = Ratio{25}, .segment = omf.clip({.length = 25, .source = id})}));
    };
    play(old, "Old", MediaKind::aifc,
         aiffImage({.formType = "AIFC", .compressionType = "ulaw", .samples = Bytes(4)}));
    play(voice, "Broken", MediaKind::aifc, Bytes(12));
    play(kick, "Wide.wav", MediaKind::wave, waveImage({.channels = 2, .samples = Bytes(192'000)}));
    slots.push_back(omf.slot({.editRate = Ratio{25}, .segment = clipFromTape(omf)}));
    omf.composition({.name = "Odd media", .slots = slots});
    return omf.build();
}

/// A session of the older object model, with an effect on a clip that has no name and plays a
/// master clip that has one.
Bytes older() {
    Omf1Builder omf;
    omf.audioFile(
        {.id = voice,
         .name = "Voice",
         .media = aiffImage({.formType = "AIFC", .channels = 1, .samples = Bytes(96'000)}),
         .length = 48'000});
    const ObjectID clip = omf.clip({.length = 24'000, .source = voice, .name = "Take 1"});
    omf.mob({.id = master,
             .name = "Rain",
             .tracks = {omf.track(1, omf.clip({.length = 48'000, .source = voice}))},
             .usage = Omf1Builder::masterUsage});
    ObjectBuilder unnamed = omf.clip({.length = 24'000, .source = master});
    unnamed.string("OMFI:CPNT:EffectID", "reverb");
    const ObjectID track = omf.track(1, omf.sequence({clip, unnamed}, "Dialog"));
    omf.mob({.name = "Older", .tracks = {track}});
    return omf.build();
}

void writeAll(const std::string& folder) {
    writeFile(folder + "/unusual.omf", unusual());
    writeFile(folder + "/losses.omf", manyLosses());
    writeFile(folder + "/beyond.omf", beyondSense());
    writeFile(folder + "/media.omf", oddMedia());
    writeFile(folder + "/older.omf", older());
}

}  // namespace
}  // namespace trellant::testing

int main(int count, char** arguments) {
    if (count != 2) {
        std::cerr << "usage: command_files FOLDER\n";
        return 2;
    }
    try {
        trellant::testing::writeAll(arguments[1]);
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
        return 1;
    }
    return 0;
}
