// SPDX-License-Identifier: Apache-2.0
#include <trellant/xml/xml_text.h>
#include <trellant/xml/xml_tree.h>

#include <gtest/gtest.h>

#include <string>

namespace trellant {

namespace {

using xml::XmlElement;
using xml::xmlText;
using xml::XmlTree;

std::string written(const XmlTree& tree) {
    std::string text;
    tree.write([&text](ByteView piece) {
        for (const std::byte byte : piece) {
            text += static_cast<char>(byte);
        }
    });
    return text;
}

TEST(XmlTree, WritesElementsAttributesAndTextsInTheOrderOfTheirAdding) {
    const XmlTree tree("Session");
    tree.root().with("rate", std::int64_t{48'000}).withFlag("open", true).withFlag("shut", false);
    const XmlElement reel = tree.root().add("Reel");
    reel.setText("A001");
    tree.root().add("Empty").with("id", "e");
    EXPECT_EQ(written(tree),
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
              "<Session rate=\"48000\" open=\"true\" shut=\"false\">\n"
              "  <Reel>A001</Reel>\n"
              "  <Empty id=\"e\" />\n"
              "</Session>\n");
}

TEST(XmlTree, EscapesMarkup) {
    const XmlTree tree("R");
    tree.root().with("a", "<\"&\"");
    tree.root().setText("</R> & ]]>");
    // What ends an attribute or begins markup; of a text the closing bracket too.
    EXPECT_EQ(written(tree),
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
              "<R a=\"&lt;&quot;&amp;&quot;\">&lt;/R&gt; &amp; ]]&gt;</R>\n");
}

TEST(XmlText, HoldsWhatXmlCanHold) {
    EXPECT_EQ(xmlText("B\u00E9n <1>"), "B\u00E9n <1>");
    EXPECT_EQ(xmlText("a\x01\x1F"
                      "b\n"),
              "a b ");
    // A byte that begins nothing, and the two characters without a form.
    EXPECT_EQ(xmlText("\xFF"
                      "\uFFFE\uFFFF"),
              "\uFFFD\uFFFD\uFFFD");
}

}  // namespace

}  // namespace trellant
