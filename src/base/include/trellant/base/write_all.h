// SPDX-License-Identifier: Apache-2.0
// Writing to a descriptor until all is out.
#pragma once

#include <trellant/base/bytes.h>

#include <span>
#include <string_view>

namespace [[gnu::visibility("default")]] trellant {

/// What to do where a descriptor that returns at once (O_NONBLOCK) has no room.
enum class WhenFull { fail, wait };

/// Writes all of `bytes`, going on after signals. 0, or the errno value of the write that failed;
/// what went out before it is out. Allocates nothing; safe from several threads and in a signal
/// handler.
[[nodiscard]] int writeAll(int descriptor, ByteView bytes,
                           WhenFull whenFull = WhenFull::fail) noexcept;

[[nodiscard]] inline int writeAll(int descriptor, std::string_view text,
                                  WhenFull whenFull = WhenFull::fail) noexcept {
    return writeAll(descriptor, std::as_bytes(std::span(text)), whenFull);
}

}  // namespace trellant
