// SPDX-License-Identifier: Apache-2.0
#include "hand_offs.h"

#include <gtest/gtest.h>

namespace trellant::page {

namespace {

std::string indexOf(const std::vector<IndexEntry>& entries) {
    StringSink sink;
    writeIndex(entries, sink);
    return std::move(sink.text);
}

TEST(PageIndex, LeadsToEachPageWithItsSummary) {
    const HandOff handOff = handOffOfEverything();
    const std::string index =
        indexOf({indexEntry({.handOff = handOff, .file = "reel <1>.omf"}, "reel 1#.html")});
    EXPECT_NE(index.find("<tr><td><a href=\"reel%201%23.html\">reel &lt;1&gt;.omf</a><td>Everything"
                         "<td>01:00:00:00<td>00:00:20:00<td>7<td>8<td>1 embedded, 1 missing"
                         "<td>1 dropped, 1 kept but sounding different, in 2 places\n"),
              std::string::npos)
        << index;
}

TEST(PageIndex, SaysWhyAFileHasNoPage) {
    const std::string index = indexOf({{.file = "bad.omf", .failure = "it is <empty>"}});
    EXPECT_NE(index.find("<tr><td>bad.omf<td>Could not be read: it is &lt;empty&gt;"
                         "<td><td><td><td><td><td>\n"),
              std::string::npos)
        << index;
}

TEST(PageIndex, RunsNoScript) {
    const std::string index = indexOf({});
    EXPECT_EQ(index.find("<script"), std::string::npos);
    EXPECT_NE(index.find("script-src 'none'"), std::string::npos);
}

}  // namespace

}  // namespace trellant::page
