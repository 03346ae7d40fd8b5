// SPDX-License-Identifier: Apache-2.0
// Where everything stands in the file. After the header, which takes one sector's room, come in
// this order:
//   DIFAT sectors    where the FAT sectors are, from the 110th on
//   FAT sectors      for each sector the next one of its chain
//   directory        128 bytes for each entry
//   mini FAT         for each mini sector the next one of its stream
//   mini stream      the streams below 4096 bytes, in mini sectors of 64
//   other streams    in the order of their entries
// Sectors are numbered here without the one that covers the bytes before 2 GiB. Systems lock these
// bytes, so that sector belongs to nothing; whatever comes after it stands one further on.
#pragma once

#include "tree.h"

#include <cstddef>
#include <cstdint>

namespace trellant::compound {

inline constexpr std::uint32_t sectorSize = 4096;
inline constexpr std::uint32_t miniSectorSize = 64;
/// Streams from this length on have sectors of their own.
inline constexpr std::uint32_t miniStreamCutoff = 4096;
inline constexpr std::uint32_t numbersInSector = sectorSize / 4;
/// FAT sectors that the header names itself.
inline constexpr std::uint32_t headerDIFATEntries = 109;

/// The one that is left out, which is also its number in the file: bytes 7FFFF000 to 7FFFFFFF.
inline constexpr std::uint32_t rangeLockSector = 0x7FFFE;
inline constexpr std::uint64_t rangeLockOffset = (std::uint64_t{rangeLockSector} + 1) * sectorSize;

/// The number in the file of a sector that is numbered without the locked one.
[[nodiscard]] constexpr std::uint32_t numberInFile(std::uint32_t sector) noexcept {
    return sector < rangeLockSector ? sector : sector + 1;
}

/// Sectors beside each other, numbered without the locked one.
struct SectorRun {
    std::uint32_t first = 0;
    std::uint32_t count = 0;
};

struct Layout {
    SectorRun difat{};
    SectorRun fat{};
    SectorRun directory{};
    SectorRun miniFAT{};
    SectorRun miniStream{};
    /// Of all streams that have sectors of their own, each from the end of the one before.
    SectorRun streams{};
    /// In use, all of them.
    std::uint32_t miniSectors = 0;
};

[[nodiscard]] constexpr bool isMiniStream(std::uint64_t byteCount) noexcept {
    return byteCount < miniStreamCutoff;
}

/// Units of `unitSize` that `byteCount` bytes take.
[[nodiscard]] constexpr std::uint64_t unitsFor(std::uint64_t byteCount,
                                               std::uint64_t unitSize) noexcept {
    return byteCount / unitSize + (byteCount % unitSize == 0 ? 0 : 1);
}

/// Throws CompoundError when the format cannot number all of it.
[[nodiscard]] Layout layOut(const Tree& tree);

}  // namespace trellant::compound
