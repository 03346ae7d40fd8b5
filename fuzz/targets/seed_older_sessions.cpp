// SPDX-License-Identifier: Apache-2.0
// Sessions of OMF 1.x in every byte order.
#include "seeds.h"

#include <string>
#include <trellant_testing/aiff_builder.h>
#include <trellant_testing/omf1_builder.h>
#include <utility>

namespace trellant::fuzzing {

namespace {

using testing::MobID;
using testing::ObjectBuilder;
using testing::ObjectID;
using testing::Omf1Builder;

/// A clip by way of a master clip, one of a file elsewhere, and what is not known between them.
Bytes session(const Omf1Builder::Options& options) {
    Omf1Builder omf(options);
    const MobID voice{1, 2, 3};
    const MobID far{4, 5, 6};
    const MobID master{7, 8, 9};
    omf.audioFile({.id = voice,
                   .name = "Voice",
                   .media = testing::aiffImage({.formType = "AIFC", .samples = Bytes(32)}),
                   .length = 16});
    const ObjectBuilder locator = omf.object("MACL").string("OMFI:MACL:FileName", "Tom.aif");
    omf.audioFile({.id = far, .name = "Tom", .length = 16, .locators = {locator}});
    const ObjectID inMaster = omf.track(1, omf.clip({.length = 16, .source = voice}));
    omf.mob({.id = master, .tracks = {inMaster}, .usage = Omf1Builder::masterUsage});
    const ObjectBuilder first = omf.clip({.length = 8, .source = master, .name = "A"});
    omf.at(first).int32("OMFI:SCLP:FadeInLength", 2).int32("OMFI:SCLP:FadeInType", 3);
    const ObjectBuilder cut = omf.transition(2, 1);
    const ObjectBuilder second = omf.clip({.length = 8, .source = far});
    const ObjectBuilder unknown = omf.component("WARP", 3);
    const ObjectBuilder filler = omf.filler(5);
    const ObjectBuilder sequence = omf.sequence({first, cut, second, unknown, filler}, "Dialog");
    const ObjectID clock = omf.track(1, omf.timecode(30, 107'892, 1));
    omf.mob({.name = "Song", .tracks = {omf.track(1, sequence), clock}});
    return omf.build();
}

}  // namespace

std::vector<Seed> olderSeeds() {
    using enum OMFByteOrder;
    return {{"older-little", session({.container = little, .values = little})},
            {"older-mixed", session({.container = little, .values = big})},
            {"older-big", session({.container = big, .values = big})}};
}

}  // namespace trellant::fuzzing
