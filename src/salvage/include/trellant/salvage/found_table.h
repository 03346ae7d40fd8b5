// SPDX-License-Identifier: Apache-2.0
// The table of contents of a damaged container, as far as it makes sense: where the label says,
// right before the label, or where a table begins by its look. Reading ends at the first entry that
// makes no sense.
#pragma once

#include <trellant/io/random_access_file.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace [[gnu::visibility("default")]] trellant {
namespace salvage {

enum class TablePlace {
    /// Where the label at the end of the file says.
    label,
    /// Where a label says that something else follows.
    earlierLabel,
    /// It ends where a label begins that names another place.
    beforeLabel,
    /// Found by its first entry; no label tells of it.
    byItsLook
};

class FoundTable {
  public:
    /// Bytes at the end of the file in which a label or, without one, a table is looked for.
    static constexpr std::uint64_t searchedBytes = 8'388'608;
    /// What is read of a table at most.
    static constexpr std::uint64_t readBytes = 67'108'864;

    /// Absent when there is none of which at least one entry makes sense. Throws FileSystemError.
    [[nodiscard]] static std::optional<FoundTable> in(const RandomAccessFile& file);

    [[nodiscard]] TablePlace place() const noexcept { return place_; }
    /// In bytes of the file.
    [[nodiscard]] std::uint64_t offset() const noexcept { return offset_; }
    /// As the label says; 0 without a label.
    [[nodiscard]] std::uint64_t claimedBytes() const noexcept { return claimedBytes_; }
    /// Bytes that were read and made sense, entries in them.
    [[nodiscard]] std::uint64_t sensibleBytes() const noexcept { return sensibleBytes_; }
    [[nodiscard]] std::uint64_t entries() const noexcept { return entries_; }
    [[nodiscard]] bool isWhole() const noexcept {
        return claimedBytes_ != 0 && sensibleBytes_ == claimedBytes_;
    }

    /// The pieces of the value that begins at byte `offset` of the file, all inside of it; empty
    /// when the table names none, or several.
    [[nodiscard]] std::span<const BentoRange> valueAt(std::uint64_t offset) const noexcept;

  private:
    struct Value {
        std::uint64_t offset = 0;
        std::size_t firstPiece = 0;
        std::size_t pieceCount = 0;
    };
    struct Layout;
    class Reader;

    FoundTable() = default;
    [[nodiscard]] static FoundTable read(const RandomAccessFile& file, const Layout& layout);

    TablePlace place_ = TablePlace::label;
    std::uint64_t offset_ = 0;
    std::uint64_t claimedBytes_ = 0;
    std::uint64_t sensibleBytes_ = 0;
    std::uint64_t entries_ = 0;
    std::vector<BentoRange> pieces_;
    /// Ascending by offset.
    std::vector<Value> values_;
};

}  // namespace salvage
}  // namespace trellant
