// SPDX-License-Identifier: Apache-2.0
#include "recorded_fixture.h"

namespace trellant::testing {

namespace {

const MobID tapeID{7, 0, 7};

}  // namespace

void RecordedTest::addTape() {
    const ObjectID labels =
        omf_.slot({.editRate = Ratio{25}, .segment = omf_.timecode(25, false, 900'000)});
    omf_.sourceMob({.id = tapeID,
                    .name = "TAPE <7>",
                    .slots = {labels},
                    .descriptor = omf_.descriptor({.classID = "MDTP"})});
}

void RecordedTest::addRecorded(std::uint32_t number, const std::string& name, MediaKind kind,
                               const Bytes& media, const std::optional<std::string>& title) {
    const MobID fileID{1, 0, number};
    const MobID masterID{2, 0, number};
    const ObjectID clip = omf_.clip({.length = 480, .source = tapeID, .start = 4'344'000});
    const ObjectID slot = omf_.slot({.editRate = Ratio{48'000},
                                     .segment = clip,
                                     .track = omf_.track({.id = 1, .physicalTrack = 1})});
    const bool isWave = kind == MediaKind::wave;
    omf_.sourceMob(
        {.id = fileID,
         .name = name,
         .slots = {slot},
         .descriptor = omf_.descriptor(
             {.classID = isWave ? "WAVD" : "AIFD", .sampleRate = Ratio{48'000}, .length = 480})});
    if (isWave) {
        omf_.waveMedia(fileID, media);
    } else {
        omf_.aifcMedia(fileID, media);
    }
    const ObjectID played = omf_.clip({.length = 480, .source = fileID});
    omf_.masterMob(
        {.id = masterID,
         .name = title,
         .slots = {omf_.slot(
             {.editRate = Ratio{48'000}, .segment = played, .track = omf_.track({.id = 1})})}});
    tracks_.push_back(omf_.slot(
        {.editRate = Ratio{100}, .segment = omf_.clip({.length = 1, .source = masterID})}));
}

std::string RecordedTest::writeRecorded() {
    omf_.composition({.name = "Night", .slots = tracks_});
    return writeFile(folder_.file("mix.omf"), omf_.build());
}

}  // namespace trellant::testing
