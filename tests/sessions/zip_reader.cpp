// SPDX-License-Identifier: Apache-2.0
#include "zip_reader.h"

#include <stdexcept>
#include <zlib.h>

namespace trellant::testing {

namespace {

constexpr std::uint64_t inLargeForm = 0xFFFFFFFF;

void require(bool holds, const char* what) {
    if (!holds) {
        throw std::runtime_error(what);
    }
}

/// Little-endian numbers, one after the other.
class Numbers {
  public:
    explicit Numbers(Bytes bytes) : bytes_(std::move(bytes)) {}
    std::uint64_t next(std::size_t width) {
        std::uint64_t value = 0;
        for (std::size_t i = 0; i < width; ++i) {
            value |= std::to_integer<std::uint64_t>(bytes_.at(at_ + i)) << (8 * i);
        }
        at_ += width;
        return value;
    }
    std::string text(std::size_t length) {
        std::string text;
        for (std::size_t i = 0; i < length; ++i) {
            text += static_cast<char>(bytes_.at(at_ + i));
        }
        at_ += length;
        return text;
    }
    [[nodiscard]] bool isAtEnd() const { return at_ == bytes_.size(); }

  private:
    Bytes bytes_;
    std::size_t at_ = 0;
};

struct List {
    std::uint64_t offset = 0;
    std::uint64_t byteCount = 0;
    std::uint64_t count = 0;
};

/// What the archive says at its end, which has no comment.
List listOf(const ZipBytes& archive) {
    constexpr std::uint64_t endSize = 22;
    constexpr std::uint64_t locatorSize = 20;
    constexpr std::uint64_t largeEndSize = 56;
    const std::uint64_t end = archive.byteCount - endSize;
    Numbers fields(archive.read(end, endSize));
    require(fields.next(4) == 0x06054B50, "no end of the list");
    require(fields.next(4) == 0, "several volumes");
    List list;
    list.count = fields.next(2);
    require(fields.next(2) == list.count, "several volumes");
    list.byteCount = fields.next(4);
    list.offset = fields.next(4);
    require(fields.next(2) == 0, "a comment");
    const bool isLarge = list.offset == inLargeForm || list.count == 0xFFFF;
    if (!isLarge) {
        require(list.offset + list.byteCount == end, "the list does not end at its end");
        return list;
    }
    Numbers locator(archive.read(end - locatorSize, locatorSize));
    require(locator.next(4) == 0x07064B50, "no locator");
    require(locator.next(4) == 0, "several volumes");
    const std::uint64_t largeEnd = locator.next(8);
    require(largeEnd + largeEndSize + locatorSize == end, "the end does not follow");
    Numbers large(archive.read(largeEnd, largeEndSize));
    require(large.next(4) == 0x06064B50 && large.next(8) == largeEndSize - 12, "no large end");
    large.next(4);
    large.next(8);
    list.count = large.next(8);
    require(large.next(8) == list.count, "several volumes");
    list.byteCount = large.next(8);
    list.offset = large.next(8);
    require(list.offset + list.byteCount == largeEnd, "the list does not end at its end");
    return list;
}

/// Finds where the data lie, and compares the header in front of them with the list.
void readHeader(const ZipBytes& archive, std::uint64_t offset, ZipMember& member) {
    constexpr std::uint64_t headerSize = 30;
    Numbers header(archive.read(offset, headerSize));
    require(header.next(4) == 0x04034B50, "no header");
    header.next(2);
    const bool isUtf8 = (header.next(2) & 0x800U) != 0;
    require(isUtf8 == member.isNameUtf8, "another flag");
    require(header.next(2) == (member.isDeflated ? 8U : 0U), "another method");
    require(header.next(4) == member.dosDate, "another date");
    require(header.next(4) == member.checksum, "another checksum");
    const std::uint64_t packed = header.next(4);
    const std::uint64_t whole = header.next(4);
    const std::uint64_t nameLength = header.next(2);
    const std::uint64_t extraLength = header.next(2);
    Numbers rest(archive.read(offset + headerSize, nameLength + extraLength));
    require(rest.text(nameLength) == member.name, "another name");
    if (whole == inLargeForm) {
        require(rest.next(2) == 1 && rest.next(2) == 16, "no large lengths");
        require(rest.next(8) == member.byteCount, "another length");
        require(rest.next(8) == member.packedByteCount, "another packed length");
    } else {
        require(whole == member.byteCount && packed == member.packedByteCount, "another length");
    }
    member.dataOffset = offset + headerSize + nameLength + extraLength;
}

/// The member that the list describes next, and where its header lies.
std::pair<ZipMember, std::uint64_t> nextMember(Numbers& list) {
    require(list.next(4) == 0x02014B50, "no entry of the list");
    list.next(4);
    ZipMember member;
    const std::uint64_t flags = list.next(2);
    require((flags & 0x9U) == 0, "encrypted, or lengths behind the data");
    member.isNameUtf8 = (flags & 0x800U) != 0;
    member.isDeflated = list.next(2) == 8;
    member.dosDate = static_cast<std::uint32_t>(list.next(4));
    member.checksum = static_cast<std::uint32_t>(list.next(4));
    member.packedByteCount = list.next(4);
    member.byteCount = list.next(4);
    const std::uint64_t nameLength = list.next(2);
    const std::uint64_t extraLength = list.next(2);
    require(list.next(2) == 0 && list.next(2) == 0, "a comment, or another volume");
    list.next(2);
    member.attributes = static_cast<std::uint32_t>(list.next(4));
    std::uint64_t offset = list.next(4);
    member.name = list.text(nameLength);
    if (extraLength > 0) {
        require(list.next(2) == 1 && list.next(2) + 4 == extraLength, "no large numbers");
        for (std::uint64_t* const value : {&member.byteCount, &member.packedByteCount, &offset}) {
            *value = *value == inLargeForm ? list.next(8) : *value;
        }
    }
    return {member, offset};
}

}  // namespace

ZipBytes zipBytes(const Bytes& archive) {
    return {archive.size(), [&archive](std::uint64_t offset, std::uint64_t count) {
                require(count <= archive.size() && offset <= archive.size() - count, "cut off");
                const auto begin = archive.begin() + static_cast<std::ptrdiff_t>(offset);
                return Bytes(begin, begin + static_cast<std::ptrdiff_t>(count));
            }};
}

std::vector<ZipMember> zipMembers(const ZipBytes& archive) {
    const List list = listOf(archive);
    Numbers entries(archive.read(list.offset, list.byteCount));
    std::vector<ZipMember> members;
    std::uint64_t end = 0;
    for (std::uint64_t i = 0; i < list.count; ++i) {
        auto [member, offset] = nextMember(entries);
        require(offset == end, "bytes of no member");
        readHeader(archive, offset, member);
        end = member.dataOffset + member.packedByteCount;
        members.push_back(std::move(member));
    }
    require(end == list.offset && entries.isAtEnd(), "bytes of no member");
    return members;
}

std::string zipContent(const ZipBytes& archive, const ZipMember& member) {
    Bytes packed = archive.read(member.dataOffset, member.packedByteCount);
    std::string content(member.byteCount, '\0');
    z_stream stream{};
    stream.next_in = reinterpret_cast<Bytef*>(packed.data());
    stream.avail_in = static_cast<uInt>(packed.size());
    stream.next_out = reinterpret_cast<Bytef*>(content.data());
    stream.avail_out = static_cast<uInt>(content.size());
    if (member.isDeflated) {
        require(inflateInit2(&stream, -MAX_WBITS) == Z_OK, "no inflater");
        const int result = ::inflate(&stream, Z_FINISH);
        ::inflateEnd(&stream);
        require(result == Z_STREAM_END && stream.total_out == content.size(), "not deflated");
    } else {
        require(packed.size() == content.size(), "stored otherwise");
        content.assign(reinterpret_cast<const char*>(packed.data()), packed.size());
    }
    const uLong checksum = ::crc32(0, reinterpret_cast<const Bytef*>(content.data()),
                                   static_cast<uInt>(content.size()));
    require(checksum == member.checksum, "another checksum");
    return content;
}

std::string zipContent(const Bytes& archive, const std::string& name) {
    const ZipBytes bytes = zipBytes(archive);
    const ZipMember* found = nullptr;
    const std::vector<ZipMember> members = zipMembers(bytes);
    for (const ZipMember& member : members) {
        if (member.name == name) {
            require(found == nullptr, "two members of one name");
            found = &member;
        }
    }
    require(found != nullptr, "no such member");
    return zipContent(bytes, *found);
}

}  // namespace trellant::testing
