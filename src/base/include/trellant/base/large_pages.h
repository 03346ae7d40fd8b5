// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <span>

namespace [[gnu::visibility("default")]] trellant {

/// Asks the system to back `memory` with large pages where that is worth it: filling many
/// megabytes otherwise faults in thousands of pages one by one. A wish, without effect on contents.
void preferLargePages(std::span<std::byte> memory) noexcept;

}  // namespace trellant
