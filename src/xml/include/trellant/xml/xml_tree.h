// SPDX-License-Identifier: Apache-2.0
// XML documents made of elements. The library behind them keeps them; what it says nothing about,
// that it ran out of memory, is an exception here.
#pragma once

#include <trellant/base/bytes.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace pugi {
class xml_document;
struct xml_node_struct;
}  // namespace pugi

namespace [[gnu::visibility("default")]] trellant {
namespace xml {

/// An element of a document, which must outlive it. Every call may throw std::bad_alloc.
class XmlElement {
  public:
    explicit XmlElement(pugi::xml_node_struct* node) : node_(node) {}

    /// A new last child. `name` is a name of XML.
    [[nodiscard]] XmlElement add(const char* name) const;
    /// A new last attribute. `value` is text that XML can hold (xmlText).
    const XmlElement& with(const char* attribute, std::string_view value) const;
    const XmlElement& with(const char* attribute, std::int64_t value) const;
    /// Which digits is for the caller to say.
    const XmlElement& with(const char* attribute, double value) const = delete;
    /// "true" or "false".
    const XmlElement& withFlag(const char* attribute, bool value) const;
    /// Adds text behind what the element has. `text` is text that XML can hold (xmlText).
    void setText(std::string_view text) const;

  private:
    pugi::xml_node_struct* node_;
};

/// A document. Its calls may throw std::bad_alloc.
class XmlTree {
  public:
    /// `rootName` is a name of XML.
    explicit XmlTree(const char* rootName);
    ~XmlTree();
    XmlTree(const XmlTree&) = delete;
    XmlTree& operator=(const XmlTree&) = delete;
    XmlTree(XmlTree&&) = delete;
    XmlTree& operator=(XmlTree&&) = delete;

    [[nodiscard]] XmlElement root() const;
    /// Gives the document to `sink`, piece by piece, in UTF-8 with a declaration and an indent of
    /// two blanks.
    void write(const std::function<void(ByteView)>& sink) const;

  private:
    std::unique_ptr<pugi::xml_document> document_;
};

}  // namespace xml
}  // namespace trellant
