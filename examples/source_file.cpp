// SPDX-License-Identifier: Apache-2.0
#include "source_file.h"

namespace trellant::examples {

using testing::MediaKind;
using testing::MobID;
using testing::ObjectID;
using testing::Ratio;

ObjectID addSourceFile(testing::OmfBuilder& omf, const SourceFileSpec& given) {
    const MobID fileID{given.id.a, given.id.b, given.id.c + 1};
    const bool isWave = given.kind == MediaKind::wave;
    if (given.media) {
        isWave ? omf.waveMedia(fileID, *given.media) : omf.aifcMedia(fileID, *given.media);
    }
    const ObjectID descriptor = omf.descriptor({.classID = isWave ? "WAVD" : "AIFD",
                                                .sampleRate = Ratio{given.sampleRate},
                                                .length = given.frames,
                                                .locators = given.locators});
    std::vector<ObjectID> fileSlots;
    std::vector<ObjectID> masterSlots;
    for (std::uint32_t channel = 1; channel <= given.channels; ++channel) {
        // A file made from nothing names no source, and no track of it.
        const std::uint32_t sourceTrack = given.madeFrom == MobID{} ? 0 : channel;
        const ObjectID origin =
            omf.clip({.length = given.frames, .source = given.madeFrom, .track = sourceTrack});
        const ObjectID fileTrack = omf.track({.id = channel,
                                              .physicalTrack = static_cast<std::int32_t>(channel),
                                              .origin = given.origin});
        fileSlots.push_back(
            omf.slot({.editRate = Ratio{given.sampleRate}, .segment = origin, .track = fileTrack}));
        const ObjectID clip =
            omf.clip({.length = given.frames, .source = fileID, .track = channel});
        const ObjectID masterTrack = omf.track({.id = channel});
        masterSlots.push_back(
            omf.slot({.editRate = Ratio{given.sampleRate}, .segment = clip, .track = masterTrack}));
    }
    omf.sourceMob(
        {.id = fileID, .name = given.fileName, .slots = fileSlots, .descriptor = descriptor});
    return omf.masterMob({.id = given.id, .name = given.title, .slots = masterSlots});
}

}  // namespace trellant::examples
