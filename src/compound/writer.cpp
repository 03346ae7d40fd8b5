// SPDX-License-Identifier: Apache-2.0
// Header, in one sector's room; all numbers little-endian:
//   offset  size  meaning
//        0     8  D0 CF 11 E0 A1 B1 1A E1
//        8    16  class of the file
//       24     2  minor version, 3E
//       26     2  version, 4
//       28     2  FFFE: little-endian
//       30     2  bits of a sector's size, 12
//       32     2  bits of a mini sector's size, 6
//       34     6  zero
//       40     4  directory sectors
//       44     4  FAT sectors
//       48     4  first directory sector
//       52     4  transaction, 0
//       56     4  length from which on streams have sectors of their own, 4096
//       60     4  first mini FAT sector
//       64     4  mini FAT sectors
//       68     4  first DIFAT sector
//       72     4  DIFAT sectors
//       76   436  the first 109 FAT sectors
#include "writer.h"

#include "directory_entry.h"
#include "layout.h"
#include "output.h"
#include "siblings.h"

#include <utility>

namespace trellant::compound {

namespace {

constexpr std::uint32_t freeSector = 0xFFFFFFFF;
constexpr std::uint32_t endOfChain = 0xFFFFFFFE;
constexpr std::uint32_t fatSectorMark = 0xFFFFFFFD;
constexpr std::uint32_t difatSectorMark = 0xFFFFFFFC;

std::uint32_t firstOf(const SectorRun& run) noexcept {
    return run.count == 0 ? endOfChain : numberInFile(run.first);
}

class TreeWriter {
  public:
    TreeWriter(const Tree& tree, const ByteSink& sink)
        : tree_(tree), links_(linkSiblings(tree)), layout_(layOut(tree)), output_(sink) {}

    void write() {
        writeHeader();
        writeDIFAT();
        writeFAT();
        writeDirectory();
        writeMiniFAT();
        writeStreams(true);
        writeStreams(false);
        output_.flush();
    }

  private:
    void writeHeader() {
        output_.u64(0xE11AB1A1E011CFD0);
        output_.bytes(tree_.headerClass);
        output_.u16(0x3E);
        output_.u16(4);
        output_.u16(0xFFFE);
        output_.u16(12);
        output_.u16(6);
        output_.fill(Padding::zeros, 6);
        output_.u32(layout_.directory.count);
        output_.u32(layout_.fat.count);
        output_.u32(firstOf(layout_.directory));
        output_.u32(0);
        output_.u32(miniStreamCutoff);
        output_.u32(firstOf(layout_.miniFAT));
        output_.u32(layout_.miniFAT.count);
        output_.u32(firstOf(layout_.difat));
        output_.u32(layout_.difat.count);
        for (std::uint32_t index = 0; index < headerDIFATEntries; ++index) {
            output_.u32(fatSector(index));
        }
        output_.fillUnit(Padding::zeros, sectorSize);
    }

    /// The number of the FAT sector at this place in the list of them.
    [[nodiscard]] std::uint32_t fatSector(std::uint32_t index) const noexcept {
        return index < layout_.fat.count ? numberInFile(layout_.fat.first + index) : freeSector;
    }

    void writeDIFAT() {
        std::uint32_t listed = headerDIFATEntries;
        for (std::uint32_t sector = 1; sector <= layout_.difat.count; ++sector) {
            for (std::uint32_t place = 0; place < numbersInSector - 1; ++place) {
                output_.u32(fatSector(listed++));
            }
            output_.u32(sector < layout_.difat.count ? numberInFile(layout_.difat.first + sector)
                                                     : endOfChain);
        }
    }

    void writeFAT() {
        nextInFAT_ = 0;
        putMarks(layout_.difat.count, difatSectorMark);
        putMarks(layout_.fat.count, fatSectorMark);
        putChain(layout_.directory.count);
        putChain(layout_.miniFAT.count);
        putChain(layout_.miniStream.count);
        for (const Entry& entry : tree_.entries) {
            if (hasOwnSectors(entry)) {
                putChain(static_cast<std::uint32_t>(unitsFor(entry.byteCount, sectorSize)));
            }
        }
        output_.fillUnit(Padding::ones, sectorSize);
    }

    void putMarks(std::uint32_t count, std::uint32_t mark) {
        for (; count > 0; --count) {
            putInFAT(mark);
        }
    }

    void putChain(std::uint32_t count) {
        for (; count > 1; --count) {
            putInFAT(numberInFile(nextInFAT_ + 1));
        }
        putMarks(count, endOfChain);
    }

    /// What the FAT says of the next sector.
    void putInFAT(std::uint32_t value) {
        if (nextInFAT_ == rangeLockSector) {
            output_.u32(endOfChain);
        }
        ++nextInFAT_;
        output_.u32(value);
    }

    void writeDirectory() {
        std::uint32_t nextSector = layout_.streams.first;
        std::uint32_t nextMiniSector = 0;
        for (std::size_t index = 0; index < tree_.entries.size(); ++index) {
            const Entry& entry = tree_.entries[index];
            DirectoryEntry described{.name = tree_.nameOf(entry), .links = links_[index]};
            if (entry.kind == EntryKind::storage) {
                described.type = EntryType::storage;
                described.classID = tree_.storageClasses[entry.content];
            } else {
                described.type = EntryType::stream;
                described.byteCount = entry.byteCount;
                described.firstSector = takeSectors(entry, nextSector, nextMiniSector);
            }
            if (index == 0) {
                described.type = EntryType::root;
                described.byteCount = std::uint64_t{layout_.miniSectors} * miniSectorSize;
                described.firstSector = firstOf(layout_.miniStream);
            }
            output_.bytes(stored(described));
        }
        constexpr std::size_t entriesInSector = sectorSize / entrySize;
        for (std::size_t used = tree_.entries.size(); used % entriesInSector != 0; ++used) {
            output_.bytes(stored(DirectoryEntry{}));
        }
    }

    /// The number of a stream's first sector; the next stream's come behind.
    [[nodiscard]] static std::uint32_t takeSectors(const Entry& entry, std::uint32_t& nextSector,
                                                   std::uint32_t& nextMiniSector) noexcept {
        if (entry.byteCount == 0) {
            return endOfChain;
        }
        if (hasOwnSectors(entry)) {
            const auto count = static_cast<std::uint32_t>(unitsFor(entry.byteCount, sectorSize));
            return numberInFile(std::exchange(nextSector, nextSector + count));
        }
        const auto count = static_cast<std::uint32_t>(unitsFor(entry.byteCount, miniSectorSize));
        return std::exchange(nextMiniSector, nextMiniSector + count);
    }

    void writeMiniFAT() {
        std::uint32_t sector = 0;
        for (const Entry& entry : tree_.entries) {
            if (entry.kind == EntryKind::storage || hasOwnSectors(entry)) {
                continue;
            }
            auto count = static_cast<std::uint32_t>(unitsFor(entry.byteCount, miniSectorSize));
            for (; count > 0; --count) {
                ++sector;
                output_.u32(count > 1 ? sector : endOfChain);
            }
        }
        output_.fillUnit(Padding::ones, sectorSize);
    }

    /// Those that share sectors, or the others.
    void writeStreams(bool mini) {
        for (const Entry& entry : tree_.entries) {
            if (entry.kind != EntryKind::storage && isMiniStream(entry.byteCount) == mini) {
                writeContent(entry);
                output_.fillUnit(Padding::zeros, mini ? miniSectorSize : sectorSize);
            }
        }
        output_.fillUnit(Padding::zeros, sectorSize);
    }

    void writeContent(const Entry& entry) {
        if (entry.kind == EntryKind::heldStream) {
            output_.bytes(
                tree_.heldBytes.at(entry.content, static_cast<std::size_t>(entry.byteCount)));
            return;
        }
        std::uint64_t got = 0;
        const auto refuse = [&] {
            throw CompoundError(CompoundError::WrongStreamLength{
                std::u16string(tree_.nameOf(entry)), entry.byteCount, got});
        };
        tree_.sources[entry.content]([&](ByteView piece) {
            const std::uint64_t left = entry.byteCount - got;
            got += piece.size();
            if (piece.size() > left) {
                refuse();
            }
            output_.bytes(piece);
        });
        if (got != entry.byteCount) {
            refuse();
        }
    }

    [[nodiscard]] static bool hasOwnSectors(const Entry& entry) noexcept {
        return entry.kind != EntryKind::storage && !isMiniStream(entry.byteCount);
    }

    const Tree& tree_;
    std::vector<EntryLinks> links_;
    Layout layout_;
    Output output_;
    /// The sector that the FAT speaks of next.
    std::uint32_t nextInFAT_ = 0;
};

}  // namespace

void writeTree(const Tree& tree, const ByteSink& sink) {
    TreeWriter(tree, sink).write();
}

}  // namespace trellant::compound
