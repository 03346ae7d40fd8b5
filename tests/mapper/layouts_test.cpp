// SPDX-License-Identifier: Apache-2.0
// One composition in every layout that a file may have: the same timeline each time.
#include "song.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <trellant_testing/temporary_directory.h>

namespace trellant::testing {
namespace {

/// A song of everything: timecode, cuts, dissolves, fades, gain, pan, scopes, selection, losses.
void fill(Song& song) {
    OmfBuilder& omf = song.omf;
    song.name = "Everything";
    song.addSlot({.editRate = Ratio{30'000, 1'001}, .segment = omf.timecode(30, true, 107'892)});
    const ObjectID cut = omf.transition({.length = 20, .cutPoint = 8});
    const ObjectID automated =
        omf.gain(song.clip(80), omf.varyingValue({{{0}, {1, 2}}, {{1, 2}, {1}}, {{1}, {1, 4}}}));
    song.addSlot(
        omf.sequence({song.clip(100, FadeSpec{10, 2}, FadeSpec{5, 3}), cut, song.clip(50, 3),
                      omf.dissolve(10), song.clip(60), omf.filler(7), automated}),
        "Drums_L");
    song.addSlot(omf.selector(omf.pan(omf.gain(song.clip(90), omf.constantValue({1, 2})),
                                      omf.constantValue({3, 4}))),
                 "Bass");
    song.addSlot(omf.nestedScope(
        {song.clip(40), omf.sequence({omf.scopeReference(40, 0, 1), omf.segment("MGRP", 5),
                                      omf.clip({.length = 3})})}));
}

AAFTimeline mapped(const ContainerBuilder::Options& container, OMFByteOrder valueOrder) {
    Song song({.container = container, .valueOrder = valueOrder});
    fill(song);
    return song.map().timeline;
}

TEST(Layouts, GiveTheSameTimeline) {
    const AAFTimeline expected = mapped({}, OMFByteOrder::little);
    ASSERT_EQ(expected.events.size(), 6U);
    ASSERT_EQ(expected.tracks.size(), 3U);
    ASSERT_EQ(expected.unsupportedFeatures.size(), 3U);
    for (const OMFByteOrder order : {OMFByteOrder::little, OMFByteOrder::big}) {
        for (const OMFByteOrder valueOrder : {OMFByteOrder::little, OMFByteOrder::big}) {
            for (const TocForm form : {TocForm::compressed, TocForm::v1}) {
                for (const FileLayout layout : {FileLayout::simple, FileLayout::real}) {
                    EXPECT_EQ(
                        mapped({.byteOrder = order, .form = form, .layout = layout}, valueOrder),
                        expected)
                        << static_cast<int>(order) << static_cast<int>(valueOrder)
                        << static_cast<int>(form) << static_cast<int>(layout);
                }
            }
        }
    }
}

TEST(Layouts, ExtendedFooterGivesTheSameTimeline) {
    EXPECT_EQ(mapped({.extendedFooter = true}, OMFByteOrder::little),
              mapped({}, OMFByteOrder::little));
}

TEST(Layouts, MediaComeOutOfTheRealLayoutUnchanged) {
    const TemporaryDirectory work;
    Song song({.container = {.layout = FileLayout::real}});
    fill(song);
    const Mapped result = song.map({.workDirectory = work.path().string(), .extract = true});
    EXPECT_EQ(readFile(work.file("Kick.wav")), shortWave());
}

}  // namespace
}  // namespace trellant::testing
