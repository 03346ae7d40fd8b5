// SPDX-License-Identifier: Apache-2.0
// A page, little endian:
//
//   offset  size  meaning
//        0     4  "OggS"
//        4    10  version, flags, position in the sound
//       14     4  number of the stream
//       18     4  number of the page
//       22     4  checksum of the page, worked out with zeros here
//       26     1  segments, n
//       27     n  bytes of each segment, which follow
//
// The checksum is a CRC of 32 bits with the polynomial 0x04C11DB7, highest bit first, from 0 on and
// not inverted.
#include "ogg_stream_number.h"

#include "conversion_error.h"

#include <trellant/base/bytes.h>
#include <trellant/base/write_all.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <numeric>
#include <span>
#include <string>
#include <sys/types.h>
#include <system_error>
#include <unistd.h>

namespace trellant::wav {

namespace {

constexpr std::size_t headBytes = 27;
constexpr std::size_t streamNumberAt = 14;
constexpr std::size_t checksumAt = 22;
constexpr std::size_t segmentsAt = 26;

constexpr std::array<std::uint32_t, 256> checksumTable() {
    std::array<std::uint32_t, 256> table{};
    for (std::uint32_t i = 0; i < table.size(); ++i) {
        std::uint32_t value = i << 24U;
        for (int bit = 0; bit < 8; ++bit) {
            value = (value << 1U) ^ ((value >> 31U) != 0 ? 0x04C1'1DB7U : 0U);
        }
        table[i] = value;
    }
    return table;
}

std::uint32_t checksum(ByteView bytes) noexcept {
    static constexpr auto table = checksumTable();
    return std::accumulate(
        bytes.begin(), bytes.end(), std::uint32_t{0}, [](std::uint32_t sum, std::byte byte) {
            return (sum << 8U) ^ table[(sum >> 24U) ^ std::to_integer<std::uint32_t>(byte)];
        });
}

[[noreturn]] void fail(const std::string& detail) {
    throw because("the preview could not be finished", detail);
}

/// Reads on from where the file is; true when all bytes are there, false at its end.
bool readAll(int descriptor, std::span<std::byte> into) {
    std::size_t got = 0;
    while (got < into.size()) {
        const ssize_t count = ::read(descriptor, into.data() + got, into.size() - got);
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count < 0) {
            fail(std::generic_category().message(errno));
        }
        if (count == 0) {
            break;
        }
        got += static_cast<std::size_t>(count);
    }
    if (got != 0 && got != into.size()) {
        fail("a page ends early");
    }
    return got == into.size();
}

void setNumber(Bytes& page, std::size_t at, std::uint32_t value) {
    for (std::size_t i = 0; i < sizeof value; ++i) {
        page[at + i] = static_cast<std::byte>((value >> (8 * i)) & 0xFFU);
    }
}

/// What is left of a page whose head has been read.
void readRest(int descriptor, Bytes& page) {
    const auto segments = std::to_integer<std::size_t>(page[segmentsAt]);
    page.resize(headBytes + segments);
    if (segments != 0 && !readAll(descriptor, std::span(page).subspan(headBytes))) {
        fail("a page ends early");
    }
    const std::size_t body = std::accumulate(page.begin() + headBytes, page.end(), std::size_t{0},
                                             [](std::size_t sum, std::byte segment) {
                                                 return sum + std::to_integer<std::size_t>(segment);
                                             });
    page.resize(headBytes + segments + body);
    if (body != 0 && !readAll(descriptor, std::span(page).last(body))) {
        fail("a page ends early");
    }
}

void seekTo(int descriptor, off_t offset) {
    if (::lseek(descriptor, offset, SEEK_SET) != offset) {
        fail(std::generic_category().message(errno));
    }
}

}  // namespace

void setStreamNumber(int descriptor, std::uint32_t number) {
    constexpr std::array<std::byte, 4> mark{std::byte{'O'}, std::byte{'g'}, std::byte{'g'},
                                            std::byte{'S'}};
    off_t offset = 0;
    seekTo(descriptor, offset);
    Bytes page(headBytes);
    while (readAll(descriptor, page)) {
        if (!std::equal(mark.begin(), mark.end(), page.begin())) {
            fail("a page does not begin as one");
        }
        readRest(descriptor, page);
        setNumber(page, streamNumberAt, number);
        setNumber(page, checksumAt, 0);
        setNumber(page, checksumAt, checksum(page));
        seekTo(descriptor, offset);
        if (const int reason = writeAll(descriptor, page); reason != 0) {
            fail(std::generic_category().message(reason));
        }
        offset += static_cast<off_t>(page.size());
        page.resize(headBytes);
    }
}

}  // namespace trellant::wav
