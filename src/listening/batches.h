// SPDX-License-Identifier: Apache-2.0
// Files that one process of the converter is given: many small ones, or a large one alone.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace trellant::listening {

/// `count` files from `first` on.
struct Batch {
    std::size_t first = 0;
    std::size_t count = 0;
};

/// All files of these sizes in bytes, in their order.
[[nodiscard]] std::vector<Batch> batchesOf(std::span<const std::uint64_t> sizes);

/// The bytes of the files of a batch.
[[nodiscard]] std::uint64_t bytesOf(const Batch& batch, std::span<const std::uint64_t> sizes);

}  // namespace trellant::listening
