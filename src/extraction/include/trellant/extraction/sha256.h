// SPDX-License-Identifier: Apache-2.0
// Digests, as sha256sum prints them.
#pragma once

#include <trellant/base/bytes.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace [[gnu::visibility("default")]] trellant {

/// Of bytes that come piece by piece.
class Sha256 {
  public:
    Sha256();
    ~Sha256();
    Sha256(const Sha256&) = delete;
    Sha256& operator=(const Sha256&) = delete;
    Sha256(Sha256&&) = delete;
    Sha256& operator=(Sha256&&) = delete;

    void add(ByteView bytes) noexcept;
    /// In lower-case hexadecimal, of what was added; it begins anew then.
    [[nodiscard]] std::string hexadecimal();

  private:
    struct State;
    std::unique_ptr<State> state_;
};

/// Of a regular file, in lower-case hexadecimal; no link is followed. `advanced` takes the number
/// of each further piece of bytes and may throw to end the reading. Throws FileSystemError.
[[nodiscard]] std::string fileDigest(const std::string& path,
                                     const std::function<void(std::uint64_t)>& advanced);

}  // namespace trellant
