// SPDX-License-Identifier: Apache-2.0
#include "table.h"

#include "say.h"

#include <string>

namespace trellant::page {

Table::Table(Markup& markup, const Shape& shape) : markup_(markup), rows_(shape.rows) {
    const std::string id(shape.id);
    markup_.raw("<section id=\"" + id + "\" aria-labelledby=\"" + id + "-title\">\n<h2 id=\"" + id +
                "-title\">");
    markup_.text(say(shape.title)).raw(" <span class=\"count\">" + std::to_string(rows_));
    markup_.raw("</span></h2>\n");
    if (rows_ == 0) {
        markup_.raw("<p class=\"none\">").text(say("noRows")).raw("</p>\n</section>\n");
        return;
    }
    markup_.raw("<div class=\"rows\" tabindex=\"0\" role=\"group\" aria-labelledby=\"" + id +
                "-title\">");
    if (rows_ > mostShownRows) {
        markup_.raw("<noscript>");
    }
    markup_.raw("<table>\n<caption>").text(say(shape.title)).raw("</caption>\n<thead><tr>");
    for (const std::string_view column : shape.columns) {
        markup_.raw("<th scope=\"col\">").text(say(column));
    }
    markup_.raw("\n<tbody>");
}

Table::~Table() {
    if (rows_ == 0) {
        return;
    }
    markup_.raw("\n</table>");
    if (rows_ > mostShownRows) {
        markup_.raw("</noscript>");
    }
    markup_.raw("</div>\n</section>\n");
}

Table& Table::row() {
    markup_.raw("\n<tr>");
    return *this;
}

Table& Table::cell(std::string_view text) {
    markup_.raw("<td>").text(text);
    return *this;
}

Table& Table::nameCell(std::string_view text) {
    markup_.raw("<td>").name(text);
    return *this;
}

Table& Table::numberCell(std::size_t number) {
    markup_.raw("<td>").raw(std::to_string(number));
    return *this;
}

}  // namespace trellant::page
