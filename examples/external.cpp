// SPDX-License-Identifier: Apache-2.0
// external.omf: media outside of the composition, 24 frames per second. Lengths and positions of
// the track are in frames.
//
// Effects:
//   filler               24        0   .. 1
//   Door    from 6       12        1   .. 3/2      media/Door.wav, found by its name in any case
//   Steps   from 0       24        3/2 .. 5/2      missing on purpose
#include "examples.h"
#include "source_file.h"

#include <trellant_testing/tone.h>
#include <trellant_testing/wave_builder.h>

namespace trellant::examples {

using testing::MobID;
using testing::ObjectID;
using testing::Ratio;

Example external() {
    constexpr MobID door{0xE87, 1, 0x10};
    constexpr MobID steps{0xE87, 1, 0x20};
    constexpr std::int32_t doorRate = 11'025;
    testing::OmfBuilder omf;
    // The path of a machine that is not here: only its last component helps.
    const ObjectID doorPlace = omf.dosLocator("C:\\Recordings\\DOOR.WAV");
    addSourceFile(omf, {.id = door,
                        .title = "Door",
                        .fileName = "Door.wav",
                        .sampleRate = doorRate,
                        .frames = doorRate,
                        .locators = {doorPlace}});
    const ObjectID stepsPlace = omf.unixLocator("/recordings/scene 3/Steps.wav");
    addSourceFile(omf, {.id = steps,
                        .title = "Steps",
                        .fileName = "Steps.wav",
                        .frames = 48'000,
                        .locators = {stepsPlace}});
    const ObjectID effects = omf.sequence(
        {omf.filler(24), omf.clip({.length = 12, .source = door, .start = 6, .name = "Door shuts"}),
         omf.clip({.length = 24, .source = steps, .name = "Steps away"})});
    // 10:00:00:00 at 24 frames per second.
    const ObjectID timecode = omf.slot({.editRate = Ratio{24},
                                        .segment = omf.timecode(24, false, 864'000, 60),
                                        .track = omf.track({.id = 1, .name = "Timecode"})});
    const ObjectID track = omf.slot({.editRate = Ratio{24},
                                     .segment = effects,
                                     .track = omf.track({.id = 2, .name = "Effects"})});
    omf.composition({.name = "Scene 3, effects", .slots = {timecode, track}});
    const Bytes sound =
        testing::waveImage({.sampleRate = doorRate,
                            .samples = testing::toneSamples(
                                {.sampleRate = doorRate, .frames = doorRate, .frequency = 98})});
    return {.name = "external", .composition = omf.build(), .beside = {{"media/Door.wav", sound}}};
}

}  // namespace trellant::examples
