// Standard footer, the last 24 bytes of the file, numbers in the footer's own byte order:
//
//   offset  size  meaning
//   0       8     signature A4 43 4D A5 48 64 72 D7
//   8       2     flags, not read
//   10      2     block size of the compressed table in KiB, 0 means 1
//   12      2     major version, 1 or 2; also tells the byte order
//   14      2     minor version
//   16      4     table offset
//   20      4     table size
//
// Extended footer, the 24 bytes before that, used when the standard table size is 0 and the minor
// version is 1:
//
//   0       8     signature A5 43 4D A5 48 64 72 D7
//   8       8     table offset
//   16      8     table size
#include "bento_footer.h"

#include <trellant/base/byte_load.h>
#include <trellant/io/errors.h>

#include <algorithm>
#include <array>
#include <cstdio>

namespace trellant {

namespace {

using Signature = std::array<std::uint8_t, 8>;
constexpr Signature standardMagic{0xA4, 0x43, 0x4D, 0xA5, 0x48, 0x64, 0x72, 0xD7};
constexpr Signature extendedMagic{0xA5, 0x43, 0x4D, 0xA5, 0x48, 0x64, 0x72, 0xD7};

bool startsWith(ByteView bytes, const Signature& signature) {
    const ByteView expected = std::as_bytes(std::span(signature));
    return std::equal(expected.begin(), expected.end(), bytes.begin());
}

OMFByteOrder byteOrderOfMarker(std::uint16_t littleEndianMarker) {
    if (littleEndianMarker == 0x0001 || littleEndianMarker == 0x0002) {
        return OMFByteOrder::little;
    }
    if (littleEndianMarker == 0x0100 || littleEndianMarker == 0x0200) {
        return OMFByteOrder::big;
    }
    std::array<char, 8> digits{};
    static_cast<void>(std::snprintf(digits.data(), digits.size(), "%X",
                                    static_cast<unsigned>(littleEndianMarker)));
    throw OMFIOError::malformed(std::string("invalid Bento major marker 0x") + digits.data());
}

BentoFooter decodeStandard(ByteView bytes) {
    if (!startsWith(bytes, standardMagic)) {
        throw OMFIOError::malformed("Bento footer signature not found");
    }
    const std::byte* at = bytes.data();
    BentoFooter footer;
    footer.byteOrder =
        byteOrderOfMarker(loadUnsigned<std::uint16_t>(at + 12, OMFByteOrder::little));
    footer.majorVersion = loadUnsigned<std::uint16_t>(at + 12, footer.byteOrder);
    footer.minorVersion = loadUnsigned<std::uint16_t>(at + 14, footer.byteOrder);
    const auto blockWord = loadUnsigned<std::uint16_t>(at + 10, footer.byteOrder);
    if (footer.majorVersion == 2) {
        footer.blockSize = (blockWord == 0 ? 1U : blockWord) * 1024U;
    }
    footer.tocOffset = loadUnsigned<std::uint32_t>(at + 16, footer.byteOrder);
    footer.tocSize = loadUnsigned<std::uint32_t>(at + 20, footer.byteOrder);
    return footer;
}

/// Takes the table's place from the 24 bytes of an extended footer, if that is what they are.
void applyExtended(ByteView bytes, BentoFooter& footer) {
    if (startsWith(bytes, extendedMagic)) {
        footer.tocOffset = loadUnsigned<std::uint64_t>(bytes.data() + 8, footer.byteOrder);
        footer.tocSize = loadUnsigned<std::uint64_t>(bytes.data() + 16, footer.byteOrder);
        footer.hasExtendedFooter = true;
    }
}

void checkTocPlace(const BentoFooter& footer, std::uint64_t limit) {
    if (footer.tocSize == 0) {
        throw OMFIOError::malformed("zero-length Bento TOC");
    }
    if (footer.tocOffset >= limit || footer.tocSize > limit - footer.tocOffset) {
        throw OMFIOError::malformed("Bento TOC overlaps footer or is out of bounds");
    }
    if (footer.tocSize > bentoTocLimit) {
        throw OMFIOError::unsupported("TOC larger than 512 MiB");
    }
}

}  // namespace

BentoFooter decodeBentoFooter(ByteView tail, std::uint64_t fileSize) {
    if (tail.size() < bentoFooterSize) {
        throw OMFIOError::malformed("file too small for Bento footer");
    }
    BentoFooter footer = decodeStandard(tail.last(bentoFooterSize));
    std::uint64_t limit = fileSize - bentoFooterSize;
    if (footer.tocSize == 0 && footer.minorVersion == 1 && tail.size() >= bentoTailSize) {
        applyExtended(tail.last(bentoTailSize), footer);
        limit = fileSize - bentoTailSize;
    }
    checkTocPlace(footer, limit);
    return footer;
}

}  // namespace trellant
