// SPDX-License-Identifier: Apache-2.0
// Writes a container of any size with little memory: the description of its objects runs twice,
// first for the value bytes, then for the table that tells where they lie. What is kept between
// the two is one number for each entry of a list.
//
// Objects are described one after the other, each with its properties in the order of `Property`;
// lists may grow while later objects are described.
#pragma once

#include "output_file.h"
#include "property_names.h"
#include "toc_writer.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace trellant::bench {

using ObjectID = std::uint32_t;

enum class FileLayout {
    /// Each value in one piece, the table sorted by object and property.
    plain,
    /// As workstations write: a reference is a reference-list item and the value after it, the
    /// list an object of its own; an entry of a list lies where it was added, between other values;
    /// the table is sorted by object only.
    real,
};

struct ContainerOptions {
    FileLayout layout = FileLayout::plain;
    TableForm table = TableForm::compressed;
    /// Of the table and of the values.
    OMFByteOrder byteOrder = OMFByteOrder::little;
};

class ContainerStream {
  public:
    using Description = std::function<void(ContainerStream&)>;
    /// A list that grows.
    using List = std::size_t;

    /// Writes the file. `description` must say the same both times.
    static void write(const std::string& path, const ContainerOptions& options,
                      const Description& description);

    [[nodiscard]] const ContainerOptions& options() const noexcept { return options_; }

    /// The next object, which the following properties belong to.
    ObjectID object(std::string_view classID);
    void value(Property property, std::string_view bytes);
    void number(Property property, std::uint64_t value, std::size_t width);
    /// Words of 4 bytes: a fraction or a mob identifier.
    void words(Property property, const std::vector<std::uint32_t>& words);
    void reference(Property property, ObjectID target);
    [[nodiscard]] List list(Property property);
    void append(List list, ObjectID target);
    /// A long value, its bytes made piece by piece: `piece(offset)` gives some bytes from there
    /// on. It begins at a file offset that gives `remainder` when divided by `alignment`.
    struct LongValue {
        std::uint64_t byteCount;
        std::function<std::string(std::uint64_t offset)> piece;
        std::uint64_t alignment = 1;
        std::uint64_t remainder = 0;
        /// Each piece is one of the table's, with a byte of something else behind it.
        bool scattered = false;
    };
    void longValue(Property property, const LongValue& value);

  private:
    /// What the first run leaves for the second.
    struct ListRecord {
        /// Where the entries lie; in the plain layout the targets, then the place of the whole.
        std::vector<std::uint64_t> entries;
    };
    /// The object that a reference list is, described after the object that has it.
    struct PendingList {
        ObjectID object;
        std::optional<List> list;
        std::uint64_t pair;
    };

    ContainerStream(OutputFile& file, const ContainerOptions& options)
        : options_(options), file_(file) {}

    [[nodiscard]] bool isReal() const { return options_.layout == FileLayout::real; }
    [[nodiscard]] bool writesTable() const { return table_.has_value(); }
    [[nodiscard]] std::string bytesOf(std::uint64_t value, std::size_t width) const {
        return numberBytes(value, width, options_.byteOrder);
    }
    [[nodiscard]] ObjectID idOf(Property property) const;

    /// Puts bytes into the data area, in the first run, and gives their place in both.
    std::uint64_t place(std::string_view bytes);
    void item(ObjectID object, ObjectID property, ObjectID type, const BentoStorage& storage,
              bool continued = false);
    void endObject();
    void listItems(Property property, const ListRecord& record);
    void pairItems(const PendingList& pending);
    void writeNames();
    void nameItems();
    void finishValues();
    void startTable();

    ContainerOptions options_;
    OutputFile& file_;
    std::optional<TocWriter> table_;
    std::uint64_t dataEnd_ = 0;
    ObjectID current_ = 0;
    ObjectID next_ = 1;
    std::vector<PendingList> pending_;
    std::vector<ListRecord> lists_;
    List nextList_ = 0;
    std::uint64_t namesPlace_ = 0;
};

}  // namespace trellant::bench
