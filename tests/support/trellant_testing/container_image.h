// SPDX-License-Identifier: Apache-2.0
// A container file in its three parts, so that a test can damage one of them before they are put
// together: value bytes from offset 0, then the table of contents, then the footer.
#pragma once

#include <trellant/io/bento_types.h>
#include <trellant/io/byte_readers.h>

#include <cstdint>
#include <optional>
#include <span>

namespace trellant::testing {

enum class TocForm {
    compressed,
    /// 1.0d4: fixed entries, no reference lists.
    v1,
};

/// What the footer says; absent fields are the true ones of the image.
struct FooterFields {
    Bytes signature{};
    std::uint16_t blockSizeKiB = 1;
    std::uint16_t majorVersion = 2;
    std::uint16_t minorVersion = 0;
    std::optional<std::uint32_t> tocOffset{};
    std::optional<std::uint32_t> tocSize{};
    /// Writes an extended footer, minor version 1 and a zero table size in the standard one.
    bool extended = false;
    Bytes extendedSignature{};
    std::optional<std::uint64_t> extendedTocOffset{};
    std::optional<std::uint64_t> extendedTocSize{};
};

struct ContainerImage {
    OMFByteOrder byteOrder = OMFByteOrder::little;
    Bytes data{};
    Bytes toc{};
    FooterFields footer{};

    /// An empty image of the given form with right signatures and versions.
    [[nodiscard]] static ContainerImage ofForm(TocForm form, OMFByteOrder order);

    /// The file.
    [[nodiscard]] Bytes bytes() const;
};

/// The table of contents of `items`, in their order. 1.0d4 leaves reference lists out.
[[nodiscard]] Bytes encodeToc(TocForm form, OMFByteOrder order, std::uint16_t blockSizeKiB,
                              std::span<const BentoTOCItem> items);

}  // namespace trellant::testing
