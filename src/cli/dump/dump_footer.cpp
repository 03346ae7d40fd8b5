// SPDX-License-Identifier: Apache-2.0
// What is wrong is told in full here: a reader needs only the first of it.
#include "dump_footer.h"

#include <trellant/io/bento_footer.h>

#include <algorithm>
#include <span>

namespace trellant::cli {

namespace {

/// A footer is searched for in so many bytes at the end.
constexpr std::uint64_t searchedBytes = 1'048'576;

struct FaultText {
    std::string operator()(BentoFooterFault::TooShort /*fault*/) const {
        return "shorter than the 24 bytes that end a container";
    }
    std::string operator()(BentoFooterFault::NoSignature /*fault*/) const {
        return "no container footer at the end";
    }
    std::string operator()(BentoFooterFault::UnknownVersion /*fault*/) const {
        return "the footer's major version is neither 1 nor 2 in any byte order";
    }
    std::string operator()(BentoFooterFault::NoExtendedFooter /*fault*/) const {
        return "the extended footer before the footer is missing";
    }
    std::string operator()(BentoFooterFault::NoTable /*fault*/) const {
        return "the footer names no table of contents";
    }
    std::string operator()(BentoFooterFault::TableBeginsLate fault) const {
        return "the table of contents would begin at byte " + std::to_string(fault.offset) +
               ", not before the footer";
    }
    std::string operator()(BentoFooterFault::TableEndsLate fault) const {
        return "the table of contents would end " + std::to_string(fault.byteCount) +
               " bytes behind the footer's begin";
    }
};

/// The bytes before byte `end`, at most `most` of them.
Bytes bytesBefore(const RandomAccessFile& file, std::uint64_t end, std::uint64_t most) {
    const std::uint64_t count = std::min(end, most);
    Bytes bytes(static_cast<std::size_t>(count));
    static_cast<void>(file.readAvailable(end - count, bytes));
    return bytes;
}

BentoFooterReading readFooter(const RandomAccessFile& file, std::uint64_t end) {
    return readBentoFooter(bytesBefore(file, end, bentoTailSize), end);
}

bool lacksFooter(const BentoFooterReading& reading) {
    return !reading.faults.empty() &&
           std::holds_alternative<BentoFooterFault::NoSignature>(reading.faults.front());
}

/// Looks before the file's end for a footer that something was appended to.
std::optional<std::uint64_t> searchFooter(const RandomAccessFile& file) {
    const Bytes tail = bytesBefore(file, file.size(), searchedBytes);
    const auto place = lastBentoFooter(tail);
    return place ? std::optional(file.size() - tail.size() + *place) : std::nullopt;
}

}  // namespace

FooterLook lookAtFooter(const RandomAccessFile& file) {
    FooterLook look;
    std::uint64_t end = file.size();
    BentoFooterReading reading = readFooter(file, end);
    if (const auto place = lacksFooter(reading) ? searchFooter(file) : std::nullopt) {
        end = *place + bentoFooterSize;
        look.faults.push_back("the footer does not stand at the end: " +
                              std::to_string(file.size() - end) + " bytes were appended to it");
        reading = readFooter(file, end);
    }
    for (const BentoFooterFault::Kind& fault : reading.faults) {
        look.faults.push_back(std::visit(FaultText{}, fault));
    }
    if (end >= bentoFooterSize && !lacksFooter(reading)) {
        look.offset = end - bentoFooterSize;
    }
    look.footer = reading.footer;
    return look;
}

}  // namespace trellant::cli
