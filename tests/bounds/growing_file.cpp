// SPDX-License-Identifier: Apache-2.0
#include "growing_file.h"

#include <algorithm>
#include <array>
#include <stdexcept>
#include <trellant_testing/byte_writer.h>

namespace trellant::testing {

namespace {

constexpr std::size_t pieceSize = 1'048'576;

}  // namespace

GrowingFile::GrowingFile(const std::string& path)
    : GrowingFile(path, ContainerImage::ofForm(TocForm::compressed, OMFByteOrder::little)) {}

GrowingFile::GrowingFile(const std::string& path, const ContainerImage& beginning)
    : file_(path, std::ios::binary), tableBeginning_(textOf(beginning.toc)) {
    file_.exceptions(std::ios::failbit | std::ios::badbit);
    pending_.reserve(pieceSize);
    put(textOf(beginning.data));
}

void GrowingFile::put(std::string_view bytes) {
    if (pending_.size() + bytes.size() > pieceSize) {
        flush();
    }
    pending_.append(bytes);
    position_ += bytes.size();
}

void GrowingFile::putNumber(std::uint32_t value) {
    const std::array<char, 4> bytes{
        static_cast<char>(value & 0xFFU), static_cast<char>(value >> 8U & 0xFFU),
        static_cast<char>(value >> 16U & 0xFFU), static_cast<char>(value >> 24U)};
    put({bytes.data(), bytes.size()});
}

void GrowingFile::flush() {
    file_.write(pending_.data(), static_cast<std::streamsize>(pending_.size()));
    pending_.clear();
}

std::uint64_t GrowingFile::value(std::string_view bytes) {
    const auto offset = position_;
    put(bytes);
    return offset;
}

std::uint64_t GrowingFile::zeros(std::uint64_t count) {
    const auto offset = position_;
    flush();
    file_.seekp(static_cast<std::streamoff>(count), std::ios::cur);
    position_ += count;
    return offset;
}

void GrowingFile::beginTable() {
    if (!inTable_) {
        inTable_ = true;
        tableStart_ = position_;
        put(tableBeginning_);
    }
}

void GrowingFile::object(std::uint32_t object, std::uint32_t property) {
    beginTable();
    put("\x01");
    putNumber(object);
    putNumber(property);
    putNumber(0);
}

void GrowingFile::property(std::uint32_t property) {
    beginTable();
    put("\x02");
    putNumber(property);
    putNumber(0);
}

void GrowingFile::immediate(std::string_view fourBytes) {
    put("\x0D");
    put(fourBytes.substr(0, 4));
}

void GrowingFile::byte(char value) {
    const std::array<char, 5> token{'\x0A', value};
    put({token.data(), token.size()});
}

void GrowingFile::range(std::uint64_t offset, std::uint64_t length) {
    put("\x05");
    putNumber(static_cast<std::uint32_t>(offset));
    putNumber(static_cast<std::uint32_t>(length));
}

void GrowingFile::fill(unsigned char token, std::uint64_t count) {
    beginTable();
    const std::string piece(std::min<std::uint64_t>(count, pieceSize), static_cast<char>(token));
    while (count > 0) {
        const auto next = std::min<std::uint64_t>(count, piece.size());
        put(std::string_view(piece).substr(0, next));
        count -= next;
    }
}

void GrowingFile::finish() {
    beginTable();
    const auto tableSize = tableBytes();
    if (position_ > 0xFFFF'FFFFU) {
        throw std::length_error("beyond a footer of 32 bits");
    }
    ByteWriter footer(OMFByteOrder::little);
    footer.bytes(hex("A4 43 4D A5 48 64 72 D7")).u16(0).u16(1).u16(2).u16(0);
    footer.u32(static_cast<std::uint32_t>(tableStart_)).u32(static_cast<std::uint32_t>(tableSize));
    put(textOf(footer.written()));
    flush();
    file_.close();
}

}  // namespace trellant::testing
