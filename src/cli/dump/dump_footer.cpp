// The layout is that of the container reader: 24 bytes with signature (8), flags (2), block size
// (2), major version (2), minor version (2), table offset (4) and size (4); before it, where those
// are 0 and the minor version is 1, 24 bytes with signature (8), table offset (8) and size (8).
// What is wrong is told apart here: a reader needs only the first of it.
#include "dump_footer.h"

#include <algorithm>
#include <array>
#include <span>
#include <string_view>

namespace trellant::cli {

namespace {

using namespace std::string_view_literals;

constexpr std::string_view standardMagic = "\xA4\x43\x4D\xA5\x48\x64\x72\xD7"sv;
constexpr std::string_view extendedMagic = "\xA5\x43\x4D\xA5\x48\x64\x72\xD7"sv;
constexpr std::uint64_t footerSize = 24;
/// A footer is searched for in so many bytes at the end.
constexpr std::uint64_t searchedBytes = 1'048'576;

using Footer = std::array<std::byte, footerSize>;

bool startsWith(ByteView bytes, std::string_view magic) {
    return std::equal(magic.begin(), magic.end(), bytes.begin(),
                      [](char left, std::byte right) { return std::byte(left) == right; });
}

Footer readFooter(const RandomAccessFile& file, std::uint64_t offset) {
    Footer bytes{};
    static_cast<void>(file.readAvailable(offset, bytes));
    return bytes;
}

/// The last footer before the file's end.
std::optional<std::uint64_t> searchFooter(const RandomAccessFile& file) {
    const std::uint64_t count = std::min(file.size(), searchedBytes);
    std::string tail(static_cast<std::size_t>(count), '\0');
    tail.resize(file.readAvailable(file.size() - count, std::as_writable_bytes(std::span(tail))));
    const std::size_t place = tail.rfind(standardMagic);
    if (place == std::string::npos || tail.size() - place < footerSize) {
        return std::nullopt;
    }
    return file.size() - count + place;
}

std::optional<OMFByteOrder> orderOf(const Footer& bytes) {
    for (const OMFByteOrder order : {OMFByteOrder::little, OMFByteOrder::big}) {
        const auto major = u16(bytes, 12, order);
        if (major == 1 || major == 2) {
            return order;
        }
    }
    return std::nullopt;
}

void findFooter(const RandomAccessFile& file, FooterLook& look) {
    if (file.size() < footerSize) {
        look.faults.emplace_back("shorter than the 24 bytes that end a container");
        return;
    }
    if (startsWith(readFooter(file, file.size() - footerSize), standardMagic)) {
        look.offset = file.size() - footerSize;
        return;
    }
    look.offset = searchFooter(file);
    if (look.offset) {
        look.faults.push_back("the footer does not stand at the end: " +
                              std::to_string(file.size() - *look.offset - footerSize) +
                              " bytes were appended to it");
    } else {
        look.faults.emplace_back("no container footer at the end");
    }
}

void checkTable(const BentoFooter& footer, std::uint64_t limit, std::vector<std::string>& faults) {
    if (footer.tocSize == 0) {
        faults.emplace_back("the footer names no table of contents");
    } else if (footer.tocOffset >= limit) {
        faults.push_back("the table of contents would begin at byte " +
                         std::to_string(footer.tocOffset) + ", not before the footer");
    } else if (footer.tocSize > limit - footer.tocOffset) {
        faults.push_back("the table of contents would end " +
                         std::to_string(footer.tocSize - (limit - footer.tocOffset)) +
                         " bytes behind the footer's begin");
    }
}

/// The numbers of the footer at `look.offset`, and where the table must end.
void readNumbers(const RandomAccessFile& file, FooterLook& look) {
    const std::uint64_t offset = *look.offset;
    const Footer bytes = readFooter(file, offset);
    const auto order = orderOf(bytes);
    if (!order) {
        look.faults.emplace_back("the footer's major version is neither 1 nor 2 in any byte order");
        return;
    }
    BentoFooter footer{.byteOrder = *order,
                       .majorVersion = u16(bytes, 12, *order),
                       .minorVersion = u16(bytes, 14, *order),
                       .tocOffset = u32(bytes, 16, *order),
                       .tocSize = u32(bytes, 20, *order)};
    if (footer.majorVersion == 2) {
        footer.blockSize = std::max<std::uint32_t>(u16(bytes, 10, *order), 1U) * 1024U;
    }
    std::uint64_t limit = offset;
    if (footer.tocSize == 0 && footer.minorVersion == 1 && offset >= footerSize) {
        const Footer extended = readFooter(file, offset - footerSize);
        if (startsWith(extended, extendedMagic)) {
            limit = offset - footerSize;
            footer.tocOffset = u64(extended, 8, *order);
            footer.tocSize = u64(extended, 16, *order);
            footer.hasExtendedFooter = true;
        } else {
            look.faults.emplace_back("the extended footer before the footer is missing");
        }
    }
    checkTable(footer, limit, look.faults);
    look.footer = footer;
}

}  // namespace

FooterLook lookAtFooter(const RandomAccessFile& file) {
    FooterLook look;
    findFooter(file, look);
    if (look.offset) {
        readNumbers(file, look);
    }
    return look;
}

}  // namespace trellant::cli
