// SPDX-License-Identifier: Apache-2.0
// Bytes on their way into a file: who takes them, and who gives them when they are asked for.
#pragma once

#include <trellant/base/bytes.h>

#include <cstdint>
#include <functional>

namespace [[gnu::visibility("default")]] trellant {
namespace compound {

/// Takes the next bytes of a file, in file order. What it throws ends the writing.
using ByteSink = std::function<void(ByteView)>;

/// Gives all bytes of one stream, in order and in pieces of any size, each to the sink that it is
/// called with. It is called once for each writing of the file, when the stream's turn comes, so it
/// may open, read and close what the bytes come from. What it throws ends the writing.
using ByteSource = std::function<void(const ByteSink&)>;

/// A sink that writes to an open descriptor, which has to stay open while the sink is used. It
/// throws SystemCallError.
[[nodiscard]] ByteSink descriptorSink(int descriptor);

}  // namespace compound
}  // namespace trellant
