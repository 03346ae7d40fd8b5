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
// Entry of the directory:
//        0    64  name, zero behind it
//       64     2  bytes of the name with one zero unit
//       66     1  1 storage, 2 stream, 5 root
//       67     1  0 red, 1 black
//       68    12  entries left and right of it among its siblings, root of the tree that it holds
//       80    16  class
//       96    20  state, times of creation and change: zero
//      116     4  first sector, or mini sector
//      120     8  length
#include "writer.h"

#include "layout.h"
#include "names.h"
#include "output.h"
#include "siblings.h"

#include <algorithm>

namespace trellant::compound {

namespace {

constexpr std::uint32_t freeSector = 0xFFFFFFFF;
constexpr std::uint32_t endOfChain = 0xFFFFFFFE;
constexpr std::uint32_t fatSectorMark = 0xFFFFFFFD;
constexpr std::uint32_t difatSectorMark = 0xFFFFFFFC;
constexpr auto freeByte = static_cast<std::byte>(0xFF);

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
        output_.fill(std::byte{0}, 6);
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
        output_.fillUnit(std::byte{0}, sectorSize);
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
        output_.fillUnit(freeByte, sectorSize);
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
            if (index == 0) {
                writeEntry(index, firstOf(layout_.miniStream),
                           std::uint64_t{layout_.miniSectors} * miniSectorSize);
            } else if (entry.kind == EntryKind::storage) {
                writeEntry(index, 0, 0);
            } else if (entry.byteCount == 0) {
                writeEntry(index, endOfChain, 0);
            } else if (hasOwnSectors(entry)) {
                writeEntry(index, numberInFile(nextSector), entry.byteCount);
                nextSector += static_cast<std::uint32_t>(unitsFor(entry.byteCount, sectorSize));
            } else {
                writeEntry(index, nextMiniSector, entry.byteCount);
                nextMiniSector +=
                    static_cast<std::uint32_t>(unitsFor(entry.byteCount, miniSectorSize));
            }
        }
        writeUnusedEntries();
    }

    void writeEntry(std::size_t index, std::uint32_t firstSector, std::uint64_t byteCount) {
        const Entry& entry = tree_.entries[index];
        const EntryLinks& links = links_[index];
        output_.text(tree_.nameOf(entry));
        output_.fill(std::byte{0}, 2 * (maximumNameLength + 1 - entry.nameLength));
        output_.u16(static_cast<std::uint16_t>(2 * (entry.nameLength + 1)));
        output_.u8(typeOf(index));
        output_.u8(links.isRed ? 0 : 1);
        output_.u32(links.left);
        output_.u32(links.right);
        output_.u32(links.child);
        if (entry.kind == EntryKind::storage) {
            output_.bytes(tree_.storageClasses[entry.content]);
        } else {
            output_.fill(std::byte{0}, sizeof(ClassID));
        }
        output_.fill(std::byte{0}, 20);
        output_.u32(firstSector);
        output_.u64(byteCount);
    }

    [[nodiscard]] std::uint8_t typeOf(std::size_t index) const noexcept {
        constexpr std::uint8_t storage = 1;
        constexpr std::uint8_t stream = 2;
        constexpr std::uint8_t root = 5;
        if (index == 0) {
            return root;
        }
        return tree_.entries[index].kind == EntryKind::storage ? storage : stream;
    }

    void writeUnusedEntries() {
        constexpr std::size_t entriesInSector = sectorSize / entrySize;
        const std::size_t used = tree_.entries.size() % entriesInSector;
        for (std::size_t index = used; index != 0 && index < entriesInSector; ++index) {
            output_.fill(std::byte{0}, 68);
            output_.fill(freeByte, 12);
            output_.fill(std::byte{0}, 48);
        }
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
        output_.fillUnit(freeByte, sectorSize);
    }

    /// Those that share sectors, or the others.
    void writeStreams(bool mini) {
        for (const Entry& entry : tree_.entries) {
            if (entry.kind != EntryKind::storage && isMiniStream(entry.byteCount) == mini) {
                writeContent(entry);
                output_.fillUnit(std::byte{0}, mini ? miniSectorSize : sectorSize);
            }
        }
        output_.fillUnit(std::byte{0}, sectorSize);
    }

    void writeContent(const Entry& entry) {
        if (entry.kind == EntryKind::heldStream) {
            output_.bytes(ByteView(tree_.heldBytes)
                              .subspan(entry.content, static_cast<std::size_t>(entry.byteCount)));
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
