// SPDX-License-Identifier: Apache-2.0
// Compressed form: tokens of one code byte and a payload; one that would cross a block boundary
// begins the next block.
//
//   code  payload                          meaning
//      1  object 4, property 4, type 4     new object
//      2  property 4, type 4               new property
//      5  offset 4, length 4               value in the file; 6 when continued
//      7  offset 8, length 4               the same far into the file; 8 when continued
//   9-13  bytes 4 (none for 9)             value of 0 to 4 bytes
//     15  list 4                           reference list
//     24  to the end of the block          end of block
//     25  offset 8, length 8               long value; 26 when continued
#include "toc_writer.h"

#include <limits>
#include <stdexcept>
#include <string_view>

namespace trellant::bench {

namespace {

constexpr std::uint64_t blockSize = 1024;
constexpr std::uint64_t word = std::numeric_limits<std::uint32_t>::max();
constexpr std::string_view signature("\xA4\x43\x4D\xA5\x48\x64\x72\xD7");
constexpr std::string_view extendedSignature("\xA5\x43\x4D\xA5\x48\x64\x72\xD7");

std::string_view textOf(const BentoImmediate& value) {
    // Bytes are what characters alias.
    return {reinterpret_cast<const char*>(value.bytes.data()), value.bytes.size()};
}

}  // namespace

void TocWriter::item(const BentoTOCItem& item) {
    form_ == TableForm::compressed ? compressedItem(item) : v1Item(item);
}

void TocWriter::compressedItem(const BentoTOCItem& item) {
    if (isFirst_ || item.object != previous_.object) {
        token(1, number(item.object, 4) + number(item.property, 4) + number(item.type, 4));
    } else if (item.property != previous_.property || item.type != previous_.type) {
        token(2, number(item.property, 4) + number(item.type, 4));
    }
    isFirst_ = false;
    previous_ = item;
    if (const auto* value = std::get_if<BentoImmediate>(&item.segment.storage)) {
        token(static_cast<std::uint8_t>(9 + value->count),
              value->count == 0 ? std::string() : std::string(textOf(*value)));
    } else if (const auto* list = std::get_if<BentoReferenceList>(&item.segment.storage)) {
        token(15, number(list->id, 4));
    } else {
        const auto& range = std::get<BentoRange>(item.segment.storage);
        const auto more = static_cast<std::uint8_t>(item.segment.continued ? 1 : 0);
        if (range.length > word) {
            token(25 + more, number(range.offset, 8) + number(range.length, 8));
        } else if (range.offset > word) {
            token(7 + more, number(range.offset, 8) + number(range.length, 4));
        } else {
            token(5 + more, number(range.offset, 4) + number(range.length, 4));
        }
    }
}

void TocWriter::token(std::uint8_t code, const std::string& payload) {
    const std::uint64_t room = blockSize - (file_.position() - start_) % blockSize;
    if (room < 1 + payload.size()) {
        std::string rest(static_cast<std::size_t>(room), '\0');
        rest.front() = 24;
        file_.append(rest);
    }
    file_.append(std::string(1, static_cast<char>(code)) + payload);
}

void TocWriter::v1Item(const BentoTOCItem& item) {
    if (std::holds_alternative<BentoReferenceList>(item.segment.storage)) {
        return;
    }
    std::string entry = number(item.object, 4) + number(item.property, 4) + number(item.type, 4);
    const std::uint64_t continued = item.segment.continued ? 2 : 0;
    if (const auto* value = std::get_if<BentoImmediate>(&item.segment.storage)) {
        entry += std::string(textOf(*value)) + number(value->count, 4);
        entry += number(0, 2) + number(continued | 1U, 2);
    } else {
        const auto& range = std::get<BentoRange>(item.segment.storage);
        if (range.offset > word || range.length > word) {
            throw std::length_error("the 1.0d4 table reaches no further than 4 GiB");
        }
        entry += number(range.offset, 4) + number(range.length, 4);
        entry += number(0, 2) + number(continued, 2);
    }
    file_.append(entry);
}

void TocWriter::footer() {
    const std::uint64_t size = file_.position() - start_;
    const bool isFar = start_ > word;
    if (isFar) {
        file_.append(std::string(extendedSignature) + number(start_, 8) + number(size, 8));
    }
    file_.append(std::string(signature) + number(0, 2) + number(blockSize / 1024, 2) +
                 number(form_ == TableForm::compressed ? 2 : 1, 2) + number(isFar ? 1 : 0, 2) +
                 number(isFar ? 0 : start_, 4) + number(isFar ? 0 : size, 4));
}

}  // namespace trellant::bench
