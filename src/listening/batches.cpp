// SPDX-License-Identifier: Apache-2.0
#include "batches.h"

#include <limits>

namespace trellant::listening {

namespace {

/// What is read in about the time that starting the converter takes.
constexpr std::uint64_t mostBytes = 4'194'304;
/// Reasons of so many fit in what is kept of a process's errors.
constexpr std::size_t mostFiles = 32;

constexpr std::uint64_t sumOf(std::uint64_t left, std::uint64_t right) noexcept {
    constexpr auto most = std::numeric_limits<std::uint64_t>::max();
    return left > most - right ? most : left + right;
}

}  // namespace

std::vector<Batch> batchesOf(std::span<const std::uint64_t> sizes) {
    std::vector<Batch> batches;
    std::uint64_t bytes = 0;
    for (std::size_t i = 0; i < sizes.size(); ++i) {
        bytes = sumOf(bytes, sizes[i]);
        if (batches.empty() || batches.back().count == mostFiles || bytes > mostBytes) {
            batches.push_back({.first = i});
            bytes = sizes[i];
        }
        ++batches.back().count;
    }
    return batches;
}

std::uint64_t bytesOf(const Batch& batch, std::span<const std::uint64_t> sizes) {
    std::uint64_t bytes = 0;
    for (const std::uint64_t size : sizes.subspan(batch.first, batch.count)) {
        bytes = sumOf(bytes, size);
    }
    return bytes;
}

}  // namespace trellant::listening
