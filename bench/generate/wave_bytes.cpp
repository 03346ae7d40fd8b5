// SPDX-License-Identifier: Apache-2.0
#include "wave_bytes.h"

#include "output_file.h"

#include <algorithm>
#include <cstddef>

namespace trellant::bench {

namespace {

constexpr std::size_t headerSize = 44;
constexpr std::size_t handyPiece = 65'536;

std::string number(std::uint64_t value, std::size_t width) {
    return numberBytes(value, width, OMFByteOrder::little);
}

/// One channel of 16 bits at 48 kHz. Sizes beyond the field are cut: readers take the format only.
std::string header(std::uint64_t byteCount) {
    return "RIFF" + number(byteCount - 8, 4) + "WAVEfmt " + number(16, 4) + number(1, 2) +
           number(1, 2) + number(48'000, 4) + number(96'000, 4) + number(2, 2) + number(16, 2) +
           "data" + number(byteCount - headerSize, 4);
}

}  // namespace

WaveBytes::WaveBytes(std::uint64_t byteCount, std::uint32_t seed, std::uint64_t pieceSize)
    : header_(header(byteCount)), pieceSize_(pieceSize) {
    const std::uint64_t wanted = std::max<std::uint64_t>(pieceSize, 1);
    samples_.resize(static_cast<std::size_t>(
        pieceSize == 0 ? std::min<std::uint64_t>(byteCount, handyPiece) : wanted));
    std::uint32_t state = seed + 1;
    for (char& byte : samples_) {
        state = state * 1'664'525U + 1'013'904'223U;
        byte = static_cast<char>(state >> 24U);
    }
}

std::string WaveBytes::piece(std::uint64_t offset) const {
    if (offset >= headerSize) {
        return samples_;
    }
    std::string bytes = header_.substr(static_cast<std::size_t>(offset));
    bytes.resize(static_cast<std::size_t>(pieceSize_ == 0 ? bytes.size() : pieceSize_));
    return bytes;
}

}  // namespace trellant::bench
