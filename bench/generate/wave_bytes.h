// SPDX-License-Identifier: Apache-2.0
// The bytes of a WAVE file of any length, made where they are asked for.
#pragma once

#include <cstdint>
#include <string>

namespace trellant::bench {

class WaveBytes {
  public:
    /// `seed` makes files differ. `pieceSize`: bytes in each piece, 0 for what is handy.
    WaveBytes(std::uint64_t byteCount, std::uint32_t seed, std::uint64_t pieceSize);

    /// Bytes from `offset` on, which is 0 or where a piece ended; at least one, maybe more than the
    /// file has left.
    [[nodiscard]] std::string piece(std::uint64_t offset) const;

  private:
    std::string header_;
    std::string samples_;
    std::uint64_t pieceSize_;
};

}  // namespace trellant::bench
