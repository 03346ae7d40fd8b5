// SPDX-License-Identifier: Apache-2.0
// Digests, as sha256sum prints them.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

namespace [[gnu::visibility("default")]] trellant {

/// Of a regular file, in lower-case hexadecimal; no link is followed. `advanced` takes the number
/// of each further piece of bytes and may throw to end the reading. Throws FileSystemError.
[[nodiscard]] std::string fileDigest(const std::string& path,
                                     const std::function<void(std::uint64_t)>& advanced);

}  // namespace trellant
