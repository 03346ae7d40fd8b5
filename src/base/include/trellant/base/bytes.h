// SPDX-License-Identifier: Apache-2.0
// Bytes with their owner, and bytes of somebody else's.
#pragma once

#include <trellant/base/byte_order.h>

#include <cstddef>
#include <span>
#include <vector>

namespace [[gnu::visibility("default")]] trellant {

using Bytes = std::vector<std::byte>;
/// To be used before the owner changes.
using ByteView = std::span<const std::byte>;

}  // namespace trellant
