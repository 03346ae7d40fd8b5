// SPDX-License-Identifier: Apache-2.0
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
#include <trellant/base/byte_load.h>
#include <trellant/io/bento_footer.h>
#include <trellant/io/errors.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <span>
#include <string>

namespace trellant {

namespace {

using Signature = std::array<std::uint8_t, 8>;
constexpr Signature standardMagic{0xA4, 0x43, 0x4D, 0xA5, 0x48, 0x64, 0x72, 0xD7};
constexpr Signature extendedMagic{0xA5, 0x43, 0x4D, 0xA5, 0x48, 0x64, 0x72, 0xD7};

bool startsWith(ByteView bytes, const Signature& signature) {
    const ByteView expected = std::as_bytes(std::span(signature));
    return std::equal(expected.begin(), expected.end(), bytes.begin());
}

std::optional<OMFByteOrder> byteOrderOfMarker(std::uint16_t littleEndianMarker) {
    if (littleEndianMarker == 0x0001 || littleEndianMarker == 0x0002) {
        return OMFByteOrder::little;
    }
    if (littleEndianMarker == 0x0100 || littleEndianMarker == 0x0200) {
        return OMFByteOrder::big;
    }
    return std::nullopt;
}

BentoFooter standardFooter(const std::byte* at, OMFByteOrder order) {
    BentoFooter footer;
    footer.byteOrder = order;
    footer.majorVersion = loadUnsigned<std::uint16_t>(at + 12, order);
    footer.minorVersion = loadUnsigned<std::uint16_t>(at + 14, order);
    const auto blockWord = loadUnsigned<std::uint16_t>(at + 10, order);
    if (footer.majorVersion == 2) {
        footer.blockSize = (blockWord == 0 ? 1U : blockWord) * 1024U;
    }
    footer.tocOffset = loadUnsigned<std::uint32_t>(at + 16, order);
    footer.tocSize = loadUnsigned<std::uint32_t>(at + 20, order);
    return footer;
}

/// Takes the table's place from the 24 bytes of an extended footer; false when they are none.
bool applyExtended(ByteView bytes, BentoFooter& footer) {
    if (!startsWith(bytes, extendedMagic)) {
        return false;
    }
    footer.tocOffset = loadUnsigned<std::uint64_t>(bytes.data() + 8, footer.byteOrder);
    footer.tocSize = loadUnsigned<std::uint64_t>(bytes.data() + 16, footer.byteOrder);
    footer.hasExtendedFooter = true;
    return true;
}

/// What is wrong with the table's place when it must end at byte `limit`.
std::optional<BentoFooterFault::Kind> faultOfPlace(const BentoFooter& footer, std::uint64_t limit) {
    if (footer.tocSize == 0) {
        return BentoFooterFault::NoTable{};
    }
    if (footer.tocOffset >= limit) {
        return BentoFooterFault::TableBeginsLate{footer.tocOffset};
    }
    if (footer.tocSize > limit - footer.tocOffset) {
        return BentoFooterFault::TableEndsLate{footer.tocSize - (limit - footer.tocOffset)};
    }
    return std::nullopt;
}

/// In the words of the one who refuses the file.
struct Refusal {
    std::string operator()(BentoFooterFault::TooShort /*fault*/) const {
        return "file too small for Bento footer";
    }
    std::string operator()(BentoFooterFault::NoSignature /*fault*/) const {
        return "Bento footer signature not found";
    }
    std::string operator()(BentoFooterFault::UnknownVersion fault) const {
        std::array<char, 8> digits{};
        static_cast<void>(
            std::snprintf(digits.data(), digits.size(), "%X", static_cast<unsigned>(fault.marker)));
        return std::string("invalid Bento major marker 0x") + digits.data();
    }
    // The footer asks for an extended one by naming no table itself.
    std::string operator()(BentoFooterFault::NoExtendedFooter /*fault*/) const {
        return (*this)(BentoFooterFault::NoTable{});
    }
    std::string operator()(BentoFooterFault::NoTable /*fault*/) const {
        return "zero-length Bento TOC";
    }
    std::string operator()(BentoFooterFault::TableBeginsLate /*fault*/) const {
        return "Bento TOC overlaps footer or is out of bounds";
    }
    std::string operator()(BentoFooterFault::TableEndsLate /*fault*/) const {
        return "Bento TOC overlaps footer or is out of bounds";
    }
};

}  // namespace

BentoFooterReading readBentoFooter(ByteView tail, std::uint64_t end) {
    if (tail.size() < bentoFooterSize) {
        return {.footer = {}, .faults = {BentoFooterFault::TooShort{}}};
    }
    const ByteView standard = tail.last(bentoFooterSize);
    if (!startsWith(standard, standardMagic)) {
        return {.footer = {}, .faults = {BentoFooterFault::NoSignature{}}};
    }
    const auto marker = loadUnsigned<std::uint16_t>(standard.data() + 12, OMFByteOrder::little);
    const auto order = byteOrderOfMarker(marker);
    if (!order) {
        return {.footer = {}, .faults = {BentoFooterFault::UnknownVersion{marker}}};
    }
    BentoFooterReading reading;
    BentoFooter& footer = reading.footer.emplace(standardFooter(standard.data(), *order));
    std::uint64_t limit = end - bentoFooterSize;
    if (footer.tocSize == 0 && footer.minorVersion == 1 && tail.size() >= bentoTailSize) {
        if (applyExtended(tail.last(bentoTailSize), footer)) {
            limit = end - bentoTailSize;
        } else {
            reading.faults.emplace_back(BentoFooterFault::NoExtendedFooter{});
        }
    }
    if (const auto fault = faultOfPlace(footer, limit)) {
        reading.faults.push_back(*fault);
    }
    return reading;
}

std::optional<std::size_t> lastBentoFooter(ByteView bytes) {
    const ByteView signature = std::as_bytes(std::span(standardMagic));
    const auto found =
        std::find_end(bytes.begin(), bytes.end(), signature.begin(), signature.end());
    const auto place = static_cast<std::size_t>(found - bytes.begin());
    return bytes.size() - place < bentoFooterSize ? std::nullopt : std::optional(place);
}

BentoFooter decodeBentoFooter(ByteView tail, std::uint64_t fileSize) {
    const BentoFooterReading reading = readBentoFooter(tail, fileSize);
    if (!reading.faults.empty()) {
        throw OMFIOError::malformed(std::visit(Refusal{}, reading.faults.front()));
    }
    const BentoFooter& footer = reading.footer.value();
    if (footer.tocSize > bentoTocLimit) {
        throw OMFIOError::unsupported("TOC larger than 512 MiB");
    }
    return footer;
}

}  // namespace trellant
