// SPDX-License-Identifier: Apache-2.0
// archive.omf: as an older machine wrote it: big-endian, the 1.0d4 form of the table of contents,
// texts in Latin-1, 25 frames per second, no composition among the primary mobs. Lengths and
// positions of the track are in frames.
//
// The file's time zero lies 441 samples (1/50 second) into its media at 22050 Hz.
//   filler               10        0     .. 2/5
//   Tape    from 2       20        2/5   .. 6/5      from sample 1764 + 441, fades in 2 frames
//   Tape    from 0        8        6/5   .. 38/25    from sample 441
#include "examples.h"
#include "source_file.h"

#include <trellant_testing/aiff_builder.h>
#include <trellant_testing/tone.h>

namespace trellant::examples {

using testing::FadeSpec;
using testing::MobID;
using testing::ObjectID;
using testing::Ratio;

namespace {

constexpr MobID transfer{0xA2C4, 1, 0x10};
constexpr MobID tape{0xA2C4, 1, 0x20};
constexpr std::int32_t sampleRate = 22'050;

/// The reel that the file was made from: no media, only a name.
void addTape(testing::OmfBuilder& omf) {
    const ObjectID reel = omf.slot(
        {.editRate = Ratio{25}, .segment = omf.filler(90'000), .track = omf.track({.id = 1})});
    omf.sourceMob({.id = tape,
                   .name = "Reel 7",
                   .slots = {reel},
                   .descriptor = omf.descriptor({.classID = "MDTP"})});
}

}  // namespace

Example archive() {
    const Bytes media =
        testing::aiffImage({.formType = "AIFC",
                            .sampleRate = sampleRate,
                            .samples = testing::toneSamples({.sampleRate = sampleRate,
                                                             .frames = sampleRate,
                                                             .frequency = 294,
                                                             .order = OMFByteOrder::big})});
    testing::OmfBuilder omf({.container = {.byteOrder = OMFByteOrder::big,
                                           .form = testing::TocForm::v1,
                                           .layout = testing::FileLayout::real},
                             .valueOrder = OMFByteOrder::big});
    addTape(omf);
    const ObjectID master = addSourceFile(omf, {.id = transfer,
                                                .title = "Reel 7",
                                                .fileName = "Reel 7 transfer.aif",
                                                .kind = testing::MediaKind::aifc,
                                                .media = media,
                                                .sampleRate = sampleRate,
                                                .frames = sampleRate,
                                                .origin = 441,
                                                .madeFrom = tape});
    const ObjectID atmosphere = omf.sequence({omf.filler(10),
                                              omf.clip({.length = 20,
                                                        .source = transfer,
                                                        .start = 2,
                                                        .fadeIn = FadeSpec{2, std::nullopt},
                                                        .name = "Caf\xE9, morning"}),
                                              omf.clip({.length = 8, .source = transfer})});
    const ObjectID track = omf.slot({.editRate = Ratio{25},
                                     .segment = atmosphere,
                                     .track = omf.track({.id = 1, .name = "Caf\xE9"})});
    // 00:59:50:00 at 25 frames per second.
    const ObjectID timecode = omf.slot({.editRate = Ratio{25},
                                        .segment = omf.timecode(25, false, 89'750, 38),
                                        .track = omf.track({.id = 2, .name = "Timecode"})});
    omf.composition({.name = "Caf\xE9", .slots = {track, timecode}, .isPrimary = false});
    omf.head().refs("OMFI:HEAD:PrimaryMobs", {master});
    return {.name = "archive",
            .composition = omf.build(),
            .extracted = {{"Reel 7 transfer.aifc", media}}};
}

}  // namespace trellant::examples
