// SPDX-License-Identifier: Apache-2.0
#include "xml_tree.h"

#include "session_text.h"

#include <cstddef>
#include <new>
#include <string>

namespace trellant::sessions {

namespace {

/// Part of a document, or nothing for want of memory.
template <class Part>
Part present(Part part) {
    if (!part) {
        throw std::bad_alloc();
    }
    return part;
}

class Writer final : public pugi::xml_writer {
  public:
    explicit Writer(const compound::ByteSink& sink) : sink_(sink) {}
    void write(const void* data, std::size_t size) override {
        sink_({static_cast<const std::byte*>(data), size});
    }

  private:
    const compound::ByteSink& sink_;
};

}  // namespace

XmlElement XmlElement::add(const char* name) const {
    pugi::xml_node node = node_;
    return XmlElement(present(node.append_child(name)));
}

const XmlElement& XmlElement::with(const char* attribute, std::string_view value) const {
    pugi::xml_node node = node_;
    if (!present(node.append_attribute(attribute)).set_value(std::string(value).c_str())) {
        throw std::bad_alloc();
    }
    return *this;
}

const XmlElement& XmlElement::with(const char* attribute, double value) const {
    return with(attribute, numberText(value));
}

const XmlElement& XmlElement::with(const char* attribute, std::int64_t value) const {
    return with(attribute, std::to_string(value));
}

const XmlElement& XmlElement::withFlag(const char* attribute, bool value) const {
    return with(attribute, value ? "true" : "false");
}

void XmlElement::setText(std::string_view text) const {
    pugi::xml_node node = node_;
    const std::string value(text);
    if (!present(node.append_child(pugi::node_pcdata)).set_value(value.c_str())) {
        throw std::bad_alloc();
    }
}

XmlTree::XmlTree(const char* rootName) {
    const XmlElement declaration(present(document_.append_child(pugi::node_declaration)));
    declaration.with("version", "1.0").with("encoding", "UTF-8");
    present(document_.append_child(rootName));
}

void XmlTree::write(const compound::ByteSink& sink) const {
    Writer writer(sink);
    document_.save(writer, "  ", pugi::format_default, pugi::encoding_utf8);
}

}  // namespace trellant::sessions
