// SPDX-License-Identifier: Apache-2.0
#include <trellant/xml/xml_tree.h>

#include <cstddef>
#include <new>
#include <pugixml.hpp>
#include <string>

namespace trellant::xml {

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
    explicit Writer(const std::function<void(ByteView)>& sink) : sink_(sink) {}
    void write(const void* data, std::size_t size) override {
        sink_({static_cast<const std::byte*>(data), size});
    }

  private:
    const std::function<void(ByteView)>& sink_;
};

}  // namespace

XmlElement XmlElement::add(const char* name) const {
    return XmlElement(present(pugi::xml_node(node_).append_child(name)).internal_object());
}

const XmlElement& XmlElement::with(const char* attribute, std::string_view value) const {
    if (!present(pugi::xml_node(node_).append_attribute(attribute))
             .set_value(std::string(value).c_str())) {
        throw std::bad_alloc();
    }
    return *this;
}

const XmlElement& XmlElement::with(const char* attribute, std::int64_t value) const {
    return with(attribute, std::to_string(value));
}

const XmlElement& XmlElement::withFlag(const char* attribute, bool value) const {
    return with(attribute, value ? "true" : "false");
}

void XmlElement::setText(std::string_view text) const {
    const std::string value(text);
    if (!present(pugi::xml_node(node_).append_child(pugi::node_pcdata)).set_value(value.c_str())) {
        throw std::bad_alloc();
    }
}

XmlTree::XmlTree(const char* rootName) : document_(std::make_unique<pugi::xml_document>()) {
    const XmlElement declaration(
        present(document_->append_child(pugi::node_declaration)).internal_object());
    declaration.with("version", "1.0").with("encoding", "UTF-8");
    present(document_->append_child(rootName));
}

XmlTree::~XmlTree() = default;

XmlElement XmlTree::root() const {
    return XmlElement(document_->document_element().internal_object());
}

void XmlTree::write(const std::function<void(ByteView)>& sink) const {
    Writer writer(sink);
    document_->save(writer, "  ", pugi::format_default, pugi::encoding_utf8);
}

}  // namespace trellant::xml
