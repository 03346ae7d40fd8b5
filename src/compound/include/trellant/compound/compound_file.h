// SPDX-License-Identifier: Apache-2.0
// Compound files (structured storage): storages and streams, like folders and files, in one file.
// Written as version 4, in sectors of 4096 bytes; streams below 4096 bytes share sectors.
#pragma once

#include <trellant/base/bytes.h>
#include <trellant/compound/byte_source.h>
#include <trellant/compound/errors.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

namespace [[gnu::visibility("default")]] trellant {
namespace compound {

/// As it is stored.
using ClassID = std::array<std::byte, 16>;

struct Tree;

/// A tree of storages and streams, to be written in one go. For one thread at a time.
class CompoundFile {
  public:
    /// A storage of one file; others do not know it.
    enum class Storage : std::uint32_t { root = 0 };

    CompoundFile(const ClassID& headerClass, const ClassID& rootClass);
    ~CompoundFile();
    CompoundFile(CompoundFile&&) noexcept;
    CompoundFile& operator=(CompoundFile&&) noexcept;
    CompoundFile(const CompoundFile&) = delete;
    CompoundFile& operator=(const CompoundFile&) = delete;

    /// A new storage inside `parent`. Names have 1 to 31 units, none of them / \ : ! or zero, and
    /// are unique among siblings, upper and lower case taken for the same. Throws CompoundError
    /// for a name that cannot be; duplicates are found when the file is written.
    Storage addStorage(Storage parent, std::u16string_view name, const ClassID& classID = {});
    /// A new stream inside `parent` that holds a copy of `bytes`; names as above.
    void addStream(Storage parent, std::u16string_view name, ByteView bytes);
    /// A new stream of `byteCount` bytes, which `source` gives each time the file is written.
    void addStream(Storage parent, std::u16string_view name, std::uint64_t byteCount,
                   ByteSource source);

    /// Storages and streams, the root too.
    [[nodiscard]] std::size_t entryCount() const noexcept;

    /// Writes the whole file in file order; the same tree added in the same order gives the same
    /// bytes. Needs memory in proportion to the entries, not to what the sources give. Throws
    /// CompoundError, before the first byte goes out unless it is a source that gives a wrong
    /// number of bytes, and whatever the sink or a source throws.
    void write(const ByteSink& sink) const;

  private:
    std::unique_ptr<Tree> tree_;
};

}  // namespace compound
}  // namespace trellant
