// SPDX-License-Identifier: Apache-2.0
#include "frame.h"

#include <gtest/gtest.h>

namespace trellant::page {

namespace {

std::string filled(std::string_view frame) {
    StringSink sink;
    Markup markup(sink);
    writeFrame(markup, frame,
               [&markup](std::string_view name) { markup.raw("<").raw(name).raw(">"); });
    markup.flush();
    return sink.text;
}

TEST(Frame, SlotsAreFilledInTheirPlaces) {
    EXPECT_EQ(filled("a{{one}}b{{two}}"), "a<one>b<two>");
}

TEST(Frame, TextsAreSaid) {
    EXPECT_EQ(filled("<p>{{say zoomIn}}</p>"), "<p>Zoom in</p>");
}

TEST(Frame, WithoutSlotsItStaysAsItIs) {
    EXPECT_EQ(filled("a } b { c"), "a } b { c");
}

TEST(FrameDeathTest, SlotWithoutAnEndIsAProgrammingError) {
    EXPECT_DEATH((void)filled("a{{one"), "slot of a frame without an end");
}

}  // namespace

}  // namespace trellant::page
