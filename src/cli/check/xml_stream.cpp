// SPDX-License-Identifier: Apache-2.0
#include "xml_stream.h"

#include <trellant/base/precondition.h>
#include <trellant/base/text.h>

namespace trellant::cli {

namespace {

std::string escaped(std::string_view text) {
    std::string result;
    for (const char character : madeValidUTF8(text)) {
        switch (character) {
            case '&':
                result += "&amp;";
                break;
            case '<':
                result += "&lt;";
                break;
            case '>':
                result += "&gt;";
                break;
            case '"':
                result += "&quot;";
                break;
            case '\n':
                result += "&#10;";
                break;
            case '\t':
                result += "&#9;";
                break;
            default:
                if (static_cast<unsigned char>(character) < 0x20) {
                    result += "\xEF\xBF\xBD";
                } else {
                    result += character;
                }
        }
    }
    // Two code points of the basic plane are no characters of XML.
    for (const std::string_view refused : {"\xEF\xBF\xBE", "\xEF\xBF\xBF"}) {
        for (auto at = result.find(refused); at != std::string::npos;
             at = result.find(refused, at)) {
            result.replace(at, refused.size(), "\xEF\xBF\xBD");
        }
    }
    return result;
}

}  // namespace

XmlStream::XmlStream(JsonSink& sink) : sink_(sink) {
    sink_.write("<?xml version=\"1.0\" encoding=\"UTF-8\"?>");
}

void XmlStream::open(std::string_view name) {
    endHead();
    std::string line = "\n";
    line.append(2 * open_.size(), ' ').append("<").append(name);
    sink_.write(line);
    open_.emplace_back(name);
    isInHead_ = true;
    hasText_ = false;
}

void XmlStream::attribute(std::string_view name, std::string_view value) {
    precondition(isInHead_, "attributes stand in the head of an element");
    sink_.write(" " + std::string(name) + "=\"" + escaped(value) + "\"");
}

void XmlStream::text(std::string_view text) {
    endHead();
    sink_.write(escaped(text));
    hasText_ = true;
}

void XmlStream::close() {
    precondition(!open_.empty(), "an element is open");
    const std::string name = std::move(open_.back());
    open_.pop_back();
    if (isInHead_) {
        sink_.write("/>");
    } else {
        std::string line = hasText_ ? "" : "\n" + std::string(2 * open_.size(), ' ');
        sink_.write(line + "</" + name + ">");
    }
    isInHead_ = false;
    hasText_ = false;
    if (open_.empty()) {
        sink_.write("\n");
    }
}

void XmlStream::endHead() {
    if (isInHead_) {
        sink_.write(">");
        isInHead_ = false;
    }
}

}  // namespace trellant::cli
