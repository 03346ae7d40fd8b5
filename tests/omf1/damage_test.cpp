// SPDX-License-Identifier: Apache-2.0
// A session of OMF 1.x cut off at every length and with every byte changed is read, or refused with
// an error of the file.
#include "mapped_older.h"

#include <gtest/gtest.h>

namespace trellant::testing {
namespace {

/// Small, with one of everything that is read.
Bytes session() {
    Omf1Builder omf;
    const MobID voice{1, 2, 3};
    omf.audioFile({.id = voice, .name = "Voice", .media = aifcOf(8), .length = 8});
    const ObjectBuilder locator = omf.object("UNXL").string("OMFI:UNXL:PathName", "/a.aif");
    omf.audioFile({.id = {4, 5, 6}, .name = "Far", .length = 8, .locators = {locator}});
    const ObjectBuilder first = omf.clip({.length = 4, .source = voice, .name = "A"});
    const ObjectBuilder cut = omf.transition(2, 1);
    const ObjectBuilder second = omf.clip({.length = 4, .source = {4, 5, 6}});
    omf.at(second).int32("OMFI:SCLP:FadeInLength", 1).int32("OMFI:SCLP:FadeInType", 1);
    const ObjectBuilder unknown = omf.component("WARP", 2);
    const ObjectBuilder sequence =
        omf.sequence({first, cut, second, omf.filler(1), unknown}, "Track");
    const ObjectID clock = omf.track(1, omf.timecode(25, 0));
    omf.mob({.name = "Song", .tracks = {omf.track(1, sequence), clock}});
    return omf.build();
}

TEST(OlderDamage, WholeItIsRead) {
    EXPECT_EQ(mapAny(session()).timeline.events.size(), 2U);
}

TEST(OlderDamage, CutOffAnywhereItIsRefused) {
    const Bytes whole = session();
    for (std::size_t length = 0; length < whole.size(); ++length) {
        EXPECT_NE(errorOf(ByteView(whole).first(length)), "") << length;
    }
}

TEST(OlderDamage, WithAnyByteChangedItIsReadOrRefused) {
    const Bytes whole = session();
    std::size_t read = 0;
    for (std::size_t place = 0; place < whole.size(); ++place) {
        Bytes damaged = whole;
        damaged[place] ^= place % 2 == 0 ? std::byte{0xFF} : std::byte{0x01};
        read += errorOf(damaged).empty() ? 1U : 0U;
    }
    // Names and lengths are changed in most of them.
    EXPECT_GT(read, whole.size() / 2);
}

}  // namespace
}  // namespace trellant::testing
