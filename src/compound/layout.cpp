// SPDX-License-Identifier: Apache-2.0
#include "layout.h"

#include "directory_entry.h"

namespace trellant::compound {

namespace {

using Bound = CompoundError::Bound;

/// Numbers beyond FFFFFFFA have meanings of their own.
constexpr std::uint64_t mostNumbers = 0xFFFFFFFB;

/// A number of things of which the format can number so many only.
class BoundedCount {
  public:
    explicit BoundedCount(Bound bound) noexcept : bound_(bound) {}

    void add(std::uint64_t count) {
        if (count > mostNumbers - count_) {
            throw CompoundError(CompoundError::TooLarge{bound_});
        }
        count_ += count;
    }
    [[nodiscard]] std::uint64_t count() const noexcept { return count_; }

  private:
    Bound bound_;
    std::uint64_t count_ = 0;
};

struct StreamSectors {
    std::uint64_t own = 0;
    std::uint64_t mini = 0;
};

StreamSectors sectorsOfStreams(const std::deque<Entry>& entries) {
    BoundedCount own(Bound::sectors);
    BoundedCount mini(Bound::miniSectors);
    for (const Entry& entry : entries) {
        if (entry.kind == EntryKind::storage) {
            continue;
        }
        if (isMiniStream(entry.byteCount)) {
            mini.add(unitsFor(entry.byteCount, miniSectorSize));
        } else {
            own.add(unitsFor(entry.byteCount, sectorSize));
        }
    }
    return {.own = own.count(), .mini = mini.count()};
}

struct TableSectors {
    std::uint64_t fat = 0;
    std::uint64_t difat = 0;
};

/// The tables for so many other sectors. They describe themselves too.
TableSectors tablesFor(std::uint64_t others) {
    TableSectors tables;
    for (;;) {
        BoundedCount all(Bound::sectors);
        all.add(others);
        all.add(tables.fat + tables.difat);
        if (all.count() > rangeLockSector) {
            all.add(1);
        }
        const std::uint64_t fat = unitsFor(all.count(), numbersInSector);
        if (fat == tables.fat) {
            return tables;
        }
        tables.fat = fat;
        // The last number of each leads to the next.
        tables.difat =
            fat <= headerDIFATEntries ? 0 : unitsFor(fat - headerDIFATEntries, numbersInSector - 1);
    }
}

}  // namespace

Layout layOut(const Tree& tree) {
    BoundedCount entries(Bound::entries);
    entries.add(tree.entries.size());
    const StreamSectors streams = sectorsOfStreams(tree.entries);
    const std::uint64_t directory = unitsFor(entries.count(), sectorSize / entrySize);
    const std::uint64_t miniFAT = unitsFor(streams.mini, numbersInSector);
    const std::uint64_t miniStream = unitsFor(streams.mini, sectorSize / miniSectorSize);
    BoundedCount others(Bound::sectors);
    for (const std::uint64_t count : {directory, miniFAT, miniStream, streams.own}) {
        others.add(count);
    }
    const TableSectors tables = tablesFor(others.count());

    std::uint32_t next = 0;
    const auto run = [&next](std::uint64_t count) {
        const SectorRun result{.first = next, .count = static_cast<std::uint32_t>(count)};
        next += result.count;
        return result;
    };
    return {.difat = run(tables.difat),
            .fat = run(tables.fat),
            .directory = run(directory),
            .miniFAT = run(miniFAT),
            .miniStream = run(miniStream),
            .streams = run(streams.own),
            .miniSectors = static_cast<std::uint32_t>(streams.mini)};
}

}  // namespace trellant::compound
