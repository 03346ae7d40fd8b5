// SPDX-License-Identifier: Apache-2.0
#include "markup.h"

#include <gtest/gtest.h>

namespace trellant::page {

namespace {

std::string writtenText(std::string_view text) {
    StringSink sink;
    Markup markup(sink);
    markup.text(text).flush();
    return sink.text;
}

std::string scriptSafe(std::string_view json) {
    StringSink sink;
    Markup markup(sink);
    ScriptSafeSink(markup).write(json);
    markup.flush();
    return sink.text;
}

TEST(ShownText, PlainTextStaysAsItIs) {
    EXPECT_EQ(shownText("Müller, Take 3 \xE2\x80\x93 ruhig"), "Müller, Take 3 \xE2\x80\x93 ruhig");
}

TEST(ShownText, ControlsAreSpelledOut) {
    EXPECT_EQ(shownText(std::string_view("a\0b\x1B\n", 5)), "a\\u0000b\\u001b\\u000a");
}

TEST(ShownText, WhatTurnsTheDirectionOfWritingIsReplaced) {
    // U+202E, U+2066, U+200F and U+061C.
    EXPECT_EQ(shownText("\xE2\x80\xAE"
                        "a\xE2\x81\xA6"
                        "b\xE2\x80\x8F"
                        "c\xD8\x9C"),
              "\xEF\xBF\xBD"
              "a\xEF\xBF\xBD"
              "b\xEF\xBF\xBD"
              "c\xEF\xBF\xBD");
}

TEST(ShownText, LettersOfOtherDirectionsStay) {
    EXPECT_EQ(shownText("\xD7\xA9\xD8\xA7"), "\xD7\xA9\xD8\xA7");
}

TEST(ShownText, WhatIsNoUtf8IsReplaced) {
    EXPECT_EQ(shownText("a\xFF"), "a\xEF\xBF\xBD");
}

TEST(ShownText, LongNamesAreCut) {
    EXPECT_EQ(shownText(std::string(201, 'x')), std::string(200, 'x') + "...");
    EXPECT_EQ(shownText(std::string(200, 'x')), std::string(200, 'x'));
}

TEST(Markup, TextCannotBecomeMarkup) {
    EXPECT_EQ(writtenText("<b title=\"x\">&'</b>"),
              "&lt;b title=&quot;x&quot;&gt;&amp;'&lt;/b&gt;");
}

TEST(Markup, LongTextsComeOutWhole) {
    const std::string text(200'000, 'x');
    EXPECT_EQ(writtenText(text), text);
}

TEST(ScriptSafeSink, NothingCanEndTheElement) {
    EXPECT_EQ(scriptSafe(R"(["</script><!--",1])"), R"(["\u003c/script>\u003c!--",1])");
}

TEST(ScriptSafeSink, OtherTextStays) {
    EXPECT_EQ(scriptSafe(R"({"a":[1,"b"]})"), R"({"a":[1,"b"]})");
}

}  // namespace

}  // namespace trellant::page
