// SPDX-License-Identifier: Apache-2.0
// Opens a container under construction as a document.
#pragma once

#include <trellant/io/errors.h>
#include <trellant/omf/document.h>

#include <string>
#include <string_view>
#include <trellant_testing/byte_writer.h>
#include <trellant_testing/container_builder.h>
#include <trellant_testing/temporary_directory.h>

namespace trellant::testing {

constexpr std::string_view classProperty = "OMFI:OOBJ:ObjClass";

class OpenedDocument {
  public:
    explicit OpenedDocument(const ContainerBuilder& container)
        : document_(writeFile(folder_.file("document.omf"), container.build())) {}

    const OMFDocument* operator->() const { return &document_; }
    const OMFDocument& operator*() const { return document_; }

  private:
    TemporaryDirectory folder_;
    OMFDocument document_;
};

/// The text of what opening throws; empty when it opens.
inline std::string openingError(const ContainerBuilder& container) {
    try {
        const OpenedDocument document(container);
    } catch (const OMFIOError& error) {
        return error.what();
    }
    return {};
}

inline OMFObject object(std::uint32_t number) {
    return static_cast<OMFObject>(number);
}

/// Object 1 is a header that says `order`; tests put values into object 2.
inline ContainerBuilder headedContainer(OMFByteOrder order = OMFByteOrder::little) {
    ContainerBuilder container;
    container.set(1, classProperty, bytesOf("HEAD"));
    container.set(1, "OMFI:HEAD:ByteOrder", bytesOf(order == OMFByteOrder::little ? "II" : "MM"));
    return container;
}

}  // namespace trellant::testing
