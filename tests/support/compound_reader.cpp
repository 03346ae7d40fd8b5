// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <trellant_testing/compound_reader.h>

namespace trellant::testing {

namespace {

constexpr std::uint32_t sectorBytes = 4096;
constexpr std::uint32_t miniBytes = 64;
constexpr std::uint32_t entryBytes = 128;
constexpr std::uint32_t perSector = 1024;
constexpr std::uint32_t freeMark = 0xFFFFFFFF;
constexpr std::uint32_t endMark = 0xFFFFFFFE;
constexpr std::uint32_t fatMark = 0xFFFFFFFD;
constexpr std::uint32_t difatMark = 0xFFFFFFFC;
constexpr std::uint32_t nobody = 0xFFFFFFFF;
/// The sector over the last 256 bytes below 2 GiB.
constexpr std::uint32_t lockSector = (0x7FFFFF00 / sectorBytes) - 1;

std::uint64_t number(ByteView bytes, std::size_t offset, std::size_t width) {
    std::uint64_t value = 0;
    for (std::size_t index = width; index-- > 0;) {
        value = value * 256 + std::to_integer<std::uint64_t>(bytes[offset + index]);
    }
    return value;
}

std::uint32_t number32(ByteView bytes, std::size_t offset) {
    return static_cast<std::uint32_t>(number(bytes, offset, 4));
}

bool isAll(ByteView bytes, unsigned value) {
    return std::all_of(bytes.begin(), bytes.end(), [value](std::byte byte) {
        return std::to_integer<unsigned>(byte) == value;
    });
}

/// Capitals of ASCII, Latin 1, Greek and Cyrillic letters.
char16_t capital(char16_t unit) {
    const bool plain =
        (unit >= u'a' && unit <= u'z') || (unit >= 0xE0 && unit <= 0xFE && unit != 0xF7) ||
        (unit >= 0x3B1 && unit <= 0x3C9 && unit != 0x3C2) || (unit >= 0x430 && unit <= 0x44F);
    return plain ? static_cast<char16_t>(unit - 32) : unit;
}

/// True when `left` has to stand before `right` among siblings.
bool precedes(std::u16string left, std::u16string right) {
    if (left.size() != right.size()) {
        return left.size() < right.size();
    }
    std::transform(left.begin(), left.end(), left.begin(), capital);
    std::transform(right.begin(), right.end(), right.begin(), capital);
    return left < right;
}

std::string numbered(const char* what, std::uint64_t which) {
    return what + std::to_string(which);
}

}  // namespace

CompoundReader::CompoundReader(const FileImage& image) : image_(image) {
    // Each step relies on the ones before.
    for (const auto step :
         {&CompoundReader::readHeader, &CompoundReader::readFAT, &CompoundReader::readDirectory,
          &CompoundReader::readMiniFAT, &CompoundReader::checkTrees, &CompoundReader::checkStreams,
          &CompoundReader::checkMiniStreams, &CompoundReader::checkEverySectorIsUsed}) {
        if (problems_.empty()) {
            (this->*step)();
        }
    }
}

void CompoundReader::check(bool holds, const std::string& problem) {
    if (!holds) {
        problems_.push_back(problem);
    }
}

Bytes CompoundReader::sector(std::uint32_t number) const {
    Bytes bytes(sectorBytes);
    image_.read((std::uint64_t{number} + 1) * sectorBytes, bytes);
    return bytes;
}

void CompoundReader::readHeader() {
    check(image_.size() >= std::uint64_t{3} * sectorBytes, "the file has no room for its tables");
    check(image_.size() % sectorBytes == 0, "the file ends within a sector");
    header_.resize(sectorBytes);
    image_.read(0, header_);
    sectorCount_ =
        static_cast<std::uint32_t>(std::max<std::uint64_t>(image_.size() / sectorBytes, 1) - 1);
    check(number(header_, 0, 8) == 0xE11AB1A1E011CFD0, "no compound file");
    std::copy_n(header_.begin() + 8, 16, headerClass_.begin());
    check(number(header_, 24, 2) == 0x3E, "minor version");
    check(number(header_, 26, 2) == 4, "version");
    check(number(header_, 28, 2) == 0xFFFE, "byte order");
    check(number(header_, 30, 2) == 12, "size of sectors");
    check(number(header_, 32, 2) == 6, "size of mini sectors");
    check(number(header_, 34, 6) == 0, "reserved bytes");
    fatSectors_ = number32(header_, 44);
    check(number(header_, 52, 4) == 0, "transaction");
    check(number(header_, 56, 4) == 4096, "cutoff");
    difatSectors_ = number32(header_, 72);
    check(isAll(ByteView(header_).subspan(512), 0), "bytes behind the header");
}

void CompoundReader::listFATSectors(std::vector<std::uint32_t>& sectors) {
    const auto take = [&](std::uint32_t value) {
        if (sectors.size() < fatSectors_) {
            sectors.push_back(value);
        } else {
            check(value == freeMark, "a FAT sector too many is listed");
        }
    };
    for (std::size_t index = 0; index < 109; ++index) {
        take(number32(header_, 76 + 4 * index));
    }
    std::uint32_t next = number32(header_, 68);
    for (std::uint32_t index = 0; index < difatSectors_; ++index) {
        check(next < sectorCount_, "a DIFAT sector lies outside");
        if (next >= sectorCount_) {
            return;
        }
        claim(next, "DIFAT");
        const Bytes stored = sector(next);
        for (std::size_t place = 0; place < perSector - 1; ++place) {
            take(number32(stored, 4 * place));
        }
        next = number32(stored, sectorBytes - 4);
    }
    check(next == endMark, "the chain of DIFAT sectors does not end as it has to");
    check(sectors.size() == fatSectors_, "not all FAT sectors are listed");
}

void CompoundReader::readFAT() {
    used_.assign(sectorCount_, false);
    std::vector<std::uint32_t> sectors;
    listFATSectors(sectors);
    check(fatSectors_ == (sectorCount_ + perSector - 1) / perSector,
          "the FAT is longer or shorter than the file");
    for (const std::uint32_t one : sectors) {
        claim(one, "FAT");
        const Bytes stored = sector(one);
        for (std::size_t place = 0; place < perSector; ++place) {
            fat_.push_back(number32(stored, 4 * place));
        }
    }
    if (!problems_.empty()) {
        return;
    }
    const auto fatMarks = std::count(fat_.begin(), fat_.end(), fatMark);
    const auto difatMarks = std::count(fat_.begin(), fat_.end(), difatMark);
    check(fatMarks == fatSectors_, "number of sectors marked as FAT");
    check(difatMarks == difatSectors_, "number of sectors marked as DIFAT");
    for (const std::uint32_t one : sectors) {
        check(fat_[one] == fatMark, numbered("unmarked FAT sector ", one));
    }
    for (std::size_t index = sectorCount_; index < fat_.size(); ++index) {
        check(fat_[index] == freeMark, numbered("the FAT knows a sector behind the end, ", index));
    }
    if (sectorCount_ > lockSector) {
        claim(lockSector, "lock");
        check(fat_[lockSector] == endMark, "the locked sector is not kept apart");
        check(isAll(sector(lockSector), 0), "the locked sector is not empty");
    }
}

void CompoundReader::claim(std::uint32_t sector, const std::string& owner) {
    if (sector >= sectorCount_) {
        check(false, owner + numbered(" has the sector outside ", sector));
    } else if (used_[sector]) {
        check(false, owner + numbered(" has the sector of another, ", sector));
    } else {
        used_[sector] = true;
    }
}

std::vector<std::uint32_t> CompoundReader::claimChain(std::uint32_t first,
                                                      const std::string& owner) {
    std::vector<std::uint32_t> sectors;
    for (std::uint32_t next = first; next != endMark; next = fat_[next]) {
        const std::size_t before = problems_.size();
        claim(next, owner);
        if (problems_.size() != before) {
            break;
        }
        sectors.push_back(next);
    }
    return sectors;
}

void CompoundReader::readDirectory() {
    const auto sectors = claimChain(number32(header_, 48), "directory");
    check(sectors.size() == number32(header_, 40), "number of directory sectors");
    std::uint32_t entry = 0;
    bool ended = false;
    for (const std::uint32_t one : sectors) {
        const Bytes stored = sector(one);
        for (std::size_t offset = 0; offset < sectorBytes; offset += entryBytes) {
            const ByteView bytes = ByteView(stored).subspan(offset, entryBytes);
            if (bytes[66] == std::byte{0}) {
                checkUnused(entry, bytes);
                ended = true;
            } else {
                check(!ended, numbered("a gap before entry ", entry));
                parseEntry(entry, bytes);
            }
            ++entry;
        }
    }
    check(!entries_.empty() && entries_[0].type == StoredEntry::Type::root, "no root");
    check(sectors.size() * 32 < entries_.size() + 32, "a directory sector without entries");
}

void CompoundReader::checkUnused(std::uint32_t number, ByteView stored) {
    check(isAll(stored.first(68), 0) && isAll(stored.subspan(68, 12), 0xFF) &&
              isAll(stored.subspan(80), 0),
          numbered("something in the unused entry ", number));
}

void CompoundReader::parseEntry(std::uint32_t entryNumber, ByteView stored) {
    StoredEntry entry;
    entry.type = static_cast<StoredEntry::Type>(stored[66]);
    const auto nameBytes = static_cast<std::size_t>(number(stored, 64, 2));
    check(nameBytes >= 4 && nameBytes <= 64 && nameBytes % 2 == 0,
          numbered("length of the name of entry ", entryNumber));
    const std::size_t units = std::clamp<std::size_t>(nameBytes / 2, 1, 32) - 1;
    for (std::size_t index = 0; index < units; ++index) {
        entry.name.push_back(static_cast<char16_t>(number(stored, 2 * index, 2)));
    }
    check(entry.name.find_first_of(std::u16string_view(u"/\\:!\0", 5)) == std::u16string::npos,
          numbered("name of entry ", entryNumber));
    check(isAll(stored.subspan(2 * units, 64 - 2 * units), 0),
          numbered("something behind the name of entry ", entryNumber));
    const auto colour = number(stored, 67, 1);
    check(colour <= 1, numbered("colour of entry ", entryNumber));
    entry.isBlack = colour == 1;
    entry.left = number32(stored, 68);
    entry.right = number32(stored, 72);
    entry.child = number32(stored, 76);
    std::copy_n(stored.begin() + 80, 16, entry.classID.begin());
    check(isAll(stored.subspan(96, 20), 0), numbered("state or times of entry ", entryNumber));
    entry.firstSector = number32(stored, 116);
    entry.size = number(stored, 120, 8);

    const bool isRoot = entry.type == StoredEntry::Type::root;
    check(isRoot == (entryNumber == 0), numbered("a root at ", entryNumber));
    check(!isRoot || (entry.name == u"Root Entry" && entry.left == nobody &&
                      entry.right == nobody && entry.isBlack),
          "the root has a neighbour or another name");
    if (entry.type == StoredEntry::Type::storage) {
        check(entry.firstSector == 0 && entry.size == 0,
              numbered("a storage with bytes, entry ", entryNumber));
    } else if (entry.type == StoredEntry::Type::stream) {
        check(entry.child == nobody && isAll(stored.subspan(80, 16), 0),
              numbered("a stream with members or a class, entry ", entryNumber));
    } else {
        check(isRoot, numbered("type of entry ", entryNumber));
    }
    entries_.push_back(entry);
}

void CompoundReader::readMiniFAT() {
    const auto sectors = claimChain(number32(header_, 60), "mini FAT");
    check(sectors.size() == number32(header_, 64), "number of mini FAT sectors");
    for (const std::uint32_t one : sectors) {
        const Bytes stored = sector(one);
        for (std::size_t place = 0; place < perSector; ++place) {
            miniFAT_.push_back(number32(stored, 4 * place));
        }
    }
    const std::uint64_t size = entries_[0].size;
    miniStreamSectors_ = claimChain(entries_[0].firstSector, "mini stream");
    check(size % miniBytes == 0, "the mini stream ends within a mini sector");
    check(miniStreamSectors_.size() == (size + sectorBytes - 1) / sectorBytes,
          "length of the mini stream");
    const std::uint64_t count = size / miniBytes;
    check(sectors.size() == (count + perSector - 1) / perSector,
          "the mini FAT is longer or shorter than the mini stream");
    for (auto index = static_cast<std::size_t>(count); index < miniFAT_.size(); ++index) {
        check(miniFAT_[index] == freeMark, "the mini FAT knows a mini sector behind the end");
    }
    if (!miniStreamSectors_.empty() && size % sectorBytes != 0) {
        const Bytes last = sector(miniStreamSectors_.back());
        check(isAll(ByteView(last).subspan(static_cast<std::size_t>(size % sectorBytes)), 0),
              "bytes behind the mini stream");
    }
}

void CompoundReader::checkTrees() {
    visited_.assign(entries_.size(), false);
    visited_[0] = true;
    for (StoredEntry& entry : entries_) {
        const std::uint32_t child = entry.child;
        if (child == nobody) {
            continue;
        }
        std::vector<std::uint32_t> inOrder;
        check(child < entries_.size() && entries_[child].isBlack, "the root of a tree is red");
        walkTree(child, false, inOrder);
        for (std::size_t place = 1; place < inOrder.size(); ++place) {
            check(precedes(entries_[inOrder[place - 1]].name, entries_[inOrder[place]].name),
                  numbered("order of siblings, entry ", inOrder[place]));
        }
        entry.members = std::move(inOrder);
    }
    check(std::all_of(visited_.begin(), visited_.end(), [](bool visited) { return visited; }),
          "an entry stands in no storage");
}

/// Black entries on each way down from here.
unsigned CompoundReader::walkTree(std::uint32_t entry, bool parentIsRed,
                                  std::vector<std::uint32_t>& inOrder) {
    if (entry == nobody) {
        return 0;
    }
    if (entry >= entries_.size() || visited_[entry]) {
        check(false, numbered("a link to nowhere or to one seen before, ", entry));
        return 0;
    }
    visited_[entry] = true;
    const bool isRed = !entries_[entry].isBlack;
    check(!(isRed && parentIsRed), numbered("a red entry below a red one, ", entry));
    const unsigned left = walkTree(entries_[entry].left, isRed, inOrder);
    inOrder.push_back(entry);
    const unsigned right = walkTree(entries_[entry].right, isRed, inOrder);
    check(left == right, numbered("more black entries on one side of entry ", entry));
    return left + (isRed ? 0 : 1);
}

unsigned CompoundReader::depthOf(std::uint32_t storage) const {
    unsigned depth = 0;
    std::vector<std::uint32_t> level{entries_[storage].child};
    for (;;) {
        std::vector<std::uint32_t> next;
        for (const std::uint32_t entry : level) {
            if (entry != nobody) {
                next.push_back(entries_[entry].left);
                next.push_back(entries_[entry].right);
            }
        }
        if (next.empty()) {
            return depth;
        }
        ++depth;
        level = std::move(next);
    }
}

void CompoundReader::checkPadding(std::uint32_t stream, ByteView lastUnit) {
    const auto used = static_cast<std::size_t>(entries_[stream].size % lastUnit.size());
    check(used == 0 || isAll(lastUnit.subspan(used), 0), numbered("bytes behind stream ", stream));
}

void CompoundReader::checkStreams() {
    for (std::uint32_t index = 1; index < entries_.size(); ++index) {
        const StoredEntry& entry = entries_[index];
        if (entry.type != StoredEntry::Type::stream || (entry.size > 0 && entry.size < 4096)) {
            continue;
        }
        const auto sectors = claimChain(entry.firstSector, numbered("stream ", index));
        check(sectors.size() == (entry.size + sectorBytes - 1) / sectorBytes,
              numbered("length of the chain of stream ", index));
        if (!sectors.empty()) {
            checkPadding(index, sector(sectors.back()));
        }
    }
}

void CompoundReader::checkMiniStreams() {
    std::vector<bool> used(static_cast<std::size_t>(entries_[0].size / miniBytes), false);
    for (std::uint32_t index = 1; index < entries_.size(); ++index) {
        const StoredEntry& entry = entries_[index];
        if (entry.type != StoredEntry::Type::stream || entry.size == 0 || entry.size >= 4096) {
            continue;
        }
        std::uint64_t length = 0;
        std::uint32_t last = 0;
        for (std::uint32_t next = entry.firstSector; next != endMark; next = miniFAT_[next]) {
            if (next >= used.size() || used[next]) {
                check(false, numbered("a mini sector outside or of another, stream ", index));
                break;
            }
            used[next] = true;
            last = next;
            ++length;
        }
        check(length == (entry.size + miniBytes - 1) / miniBytes,
              numbered("length of the chain of stream ", index));
        const Bytes holder = sector(miniStreamSectors_.at(last / miniBytes));
        checkPadding(
            index, ByteView(holder).subspan(std::size_t{last % miniBytes} * miniBytes, miniBytes));
    }
    check(std::all_of(used.begin(), used.end(), [](bool one) { return one; }),
          "a mini sector belongs to no stream");
}

void CompoundReader::checkEverySectorIsUsed() {
    const auto unused = std::find(used_.begin(), used_.end(), false);
    check(unused == used_.end(),
          numbered("nothing uses the sector ", static_cast<std::uint64_t>(unused - used_.begin())));
}

std::optional<std::uint32_t> CompoundReader::find(std::uint32_t storage,
                                                  std::u16string_view name) const {
    const auto& members = entries_.at(storage).members;
    const auto found = std::lower_bound(members.begin(), members.end(), std::u16string(name),
                                        [this](std::uint32_t one, const std::u16string& wanted) {
                                            return precedes(entries_[one].name, wanted);
                                        });
    if (found == members.end() || entries_[*found].name != name) {
        return std::nullopt;
    }
    return *found;
}

Bytes CompoundReader::content(std::uint32_t stream) const {
    return content(stream, 0, static_cast<std::size_t>(entries_.at(stream).size));
}

Bytes CompoundReader::content(std::uint32_t stream, std::uint64_t offset, std::size_t count) const {
    const StoredEntry& entry = entries_.at(stream);
    const bool mini = entry.size < 4096;
    const std::uint32_t unit = mini ? miniBytes : sectorBytes;
    const std::uint64_t end = std::min<std::uint64_t>(entry.size, offset + count);
    Bytes result;
    std::uint64_t start = 0;
    for (std::uint32_t next = entry.firstSector; start < end;
         next = mini ? miniFAT_[next] : fat_[next]) {
        if (start + unit > offset) {
            Bytes bytes(unit);
            const std::uint64_t holder = mini ? miniStreamSectors_.at(next / miniBytes) : next;
            image_.read((holder + 1) * sectorBytes + (mini ? next % miniBytes * miniBytes : 0),
                        bytes);
            const std::uint64_t from = std::max(start, offset) - start;
            const std::uint64_t to = std::min(start + unit, end) - start;
            result.insert(result.end(), bytes.begin() + static_cast<std::ptrdiff_t>(from),
                          bytes.begin() + static_cast<std::ptrdiff_t>(to));
        }
        start += unit;
    }
    return result;
}

}  // namespace trellant::testing
