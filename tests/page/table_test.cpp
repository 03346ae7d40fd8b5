// SPDX-License-Identifier: Apache-2.0
#include "table.h"

#include <gtest/gtest.h>

namespace trellant::page {

namespace {

std::string tableOf(std::size_t rows) {
    StringSink sink;
    Markup markup(sink);
    {
        Table table(markup,
                    {.id = "clips", .title = "clips", .columns = {"number", "name"}, .rows = rows});
        for (std::size_t i = 0; i < rows; ++i) {
            table.row().numberCell(i + 1).nameCell("a<b\n");
        }
    }
    markup.flush();
    return sink.text;
}

TEST(Table, ShortOneStandsAsItIs) {
    EXPECT_EQ(tableOf(1),
              "<section id=\"clips\" aria-labelledby=\"clips-title\">\n"
              "<h2 id=\"clips-title\">Clips <span class=\"count\">1</span></h2>\n"
              "<div class=\"rows\" tabindex=\"0\" role=\"group\" aria-labelledby=\"clips-title\">"
              "<table>\n<caption>Clips</caption>\n"
              "<thead><tr><th scope=\"col\">No.<th scope=\"col\">Name\n"
              "<tbody>\n"
              "<tr><td>1<td>a&lt;b\\u000a\n"
              "</table></div>\n</section>\n");
}

TEST(Table, WithoutRowsItSaysSo) {
    EXPECT_EQ(tableOf(0),
              "<section id=\"clips\" aria-labelledby=\"clips-title\">\n"
              "<h2 id=\"clips-title\">Clips <span class=\"count\">0</span></h2>\n"
              "<p class=\"none\">None.</p>\n</section>\n");
}

TEST(Table, LongOneIsOneTextToABrowserWithScript) {
    EXPECT_EQ(tableOf(Table::mostShownRows).find("noscript"), std::string::npos);
    const std::string text = tableOf(Table::mostShownRows + 1);
    EXPECT_NE(text.find("aria-labelledby=\"clips-title\"><noscript><table>\n<caption>"),
              std::string::npos);
    EXPECT_NE(text.find("\n</table></noscript></div>"), std::string::npos);
}

}  // namespace

}  // namespace trellant::page
