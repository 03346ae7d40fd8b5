// SPDX-License-Identifier: Apache-2.0
// Writes a table of contents item by item, in either written form.
#pragma once

#include "output_file.h"

#include <trellant/io/bento_types.h>

#include <cstdint>
#include <string>

namespace trellant::bench {

enum class TableForm {
    /// Tokens in blocks.
    compressed,
    /// 1.0d4: fixed entries, without reference lists, values below 4 GiB.
    v1,
};

class TocWriter {
  public:
    /// The table begins at the file's present end. `file` must outlive the writer.
    TocWriter(OutputFile& file, TableForm form, OMFByteOrder order)
        : file_(file), form_(form), order_(order), start_(file.position()) {}

    /// Items come in table order. Throws std::length_error for a value that the form cannot hold.
    void item(const BentoTOCItem& item);
    /// The footer that ends the file; nothing may follow.
    void footer();

  private:
    void compressedItem(const BentoTOCItem& item);
    void v1Item(const BentoTOCItem& item);
    void token(std::uint8_t code, const std::string& payload);
    [[nodiscard]] std::string number(std::uint64_t value, std::size_t width) const {
        return numberBytes(value, width, order_);
    }

    OutputFile& file_;
    TableForm form_;
    OMFByteOrder order_;
    std::uint64_t start_;
    BentoTOCItem previous_;
    bool isFirst_ = true;
};

}  // namespace trellant::bench
