// SPDX-License-Identifier: Apache-2.0
// XML documents made of elements. The library keeps them; what it says nothing about, that it ran
// out of memory, is an exception here.
#pragma once

#include <trellant/compound/byte_source.h>

#include <pugixml.hpp>
#include <string>
#include <string_view>

namespace trellant::sessions {

/// An element of a document, which must outlive it.
class XmlElement {
  public:
    explicit XmlElement(pugi::xml_node node) : node_(node) {}

    [[nodiscard]] XmlElement add(const char* name) const;
    /// `value` is text that XML can hold.
    const XmlElement& with(const char* attribute, std::string_view value) const;
    const XmlElement& with(const char* attribute, double value) const;
    const XmlElement& with(const char* attribute, std::int64_t value) const;
    const XmlElement& withFlag(const char* attribute, bool value) const;
    void setText(std::string_view text) const;

  private:
    pugi::xml_node node_;
};

class XmlTree {
  public:
    explicit XmlTree(const char* rootName);
    [[nodiscard]] XmlElement root() const { return XmlElement(document_.document_element()); }
    void write(const compound::ByteSink& sink) const;

  private:
    pugi::xml_document document_;
};

}  // namespace trellant::sessions
