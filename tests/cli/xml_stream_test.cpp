// SPDX-License-Identifier: Apache-2.0
#include "check/xml_stream.h"

#include <gtest/gtest.h>

namespace trellant::cli {
namespace {

const std::string declaration = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>";

TEST(XmlStream, NestsElements) {
    StringSink sink;
    XmlStream xml(sink);
    xml.open("a");
    xml.attribute("n", "1");
    xml.open("b");
    xml.close();
    xml.open("c");
    xml.text("text");
    xml.close();
    xml.close();
    EXPECT_EQ(sink.text, declaration + "\n<a n=\"1\">\n  <b/>\n  <c>text</c>\n</a>\n");
}

TEST(XmlStream, EscapesWhatMarkupIsMadeOf) {
    StringSink sink;
    XmlStream xml(sink);
    xml.open("a");
    xml.attribute("n", "<\"&>\t\n");
    xml.text("]]> & <");
    xml.close();
    EXPECT_EQ(sink.text, declaration +
                             "\n<a n=\"&lt;&quot;&amp;&gt;&#9;&#10;\">"
                             "]]&gt; &amp; &lt;</a>\n");
}

TEST(XmlStream, ReplacesWhatNoDocumentCanHold) {
    StringSink sink;
    XmlStream xml(sink);
    xml.open("a");
    // A control, a byte that is no UTF-8, and the two code points that are no characters.
    xml.text("\x01|\xFF|\xEF\xBF\xBE|\xEF\xBF\xBF");
    xml.close();
    EXPECT_EQ(sink.text, declaration +
                             "\n<a>\xEF\xBF\xBD|\xEF\xBF\xBD|\xEF\xBF\xBD|\xEF\xBF\xBD"
                             "</a>\n");
}

}  // namespace
}  // namespace trellant::cli
