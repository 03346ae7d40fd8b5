#include "source_file.h"

namespace trellant::examples {

using testing::MediaKind;
using testing::MobID;
using testing::ObjectID;
using testing::Ratio;

ObjectID addSourceFile(testing::OmfBuilder& omf, const SourceFileSpec& spec) {
    const MobID fileID{spec.id.a, spec.id.b, spec.id.c + 1};
    const bool isWave = spec.kind == MediaKind::wave;
    if (spec.media) {
        isWave ? omf.waveMedia(fileID, *spec.media) : omf.aifcMedia(fileID, *spec.media);
    }
    const ObjectID descriptor = omf.descriptor({.classID = isWave ? "WAVD" : "AIFD",
                                                .sampleRate = Ratio{spec.sampleRate},
                                                .length = spec.frames,
                                                .locators = spec.locators});
    std::vector<ObjectID> fileSlots;
    std::vector<ObjectID> masterSlots;
    for (std::uint32_t channel = 1; channel <= spec.channels; ++channel) {
        // A file made from nothing names no source, and no track of it.
        const std::uint32_t sourceTrack = spec.madeFrom == MobID{} ? 0 : channel;
        const ObjectID origin =
            omf.clip({.length = spec.frames, .source = spec.madeFrom, .track = sourceTrack});
        const ObjectID fileTrack = omf.track({.id = channel,
                                              .physicalTrack = static_cast<std::int32_t>(channel),
                                              .origin = spec.origin});
        fileSlots.push_back(
            omf.slot({.editRate = Ratio{spec.sampleRate}, .segment = origin, .track = fileTrack}));
        const ObjectID clip = omf.clip({.length = spec.frames, .source = fileID, .track = channel});
        const ObjectID masterTrack = omf.track({.id = channel});
        masterSlots.push_back(
            omf.slot({.editRate = Ratio{spec.sampleRate}, .segment = clip, .track = masterTrack}));
    }
    omf.sourceMob(
        {.id = fileID, .name = spec.fileName, .slots = fileSlots, .descriptor = descriptor});
    return omf.masterMob({.id = spec.id, .name = spec.title, .slots = masterSlots});
}

}  // namespace trellant::examples
