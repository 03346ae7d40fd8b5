// SPDX-License-Identifier: Apache-2.0
// How much memory this process had at its peak.
#pragma once

#include <trellant/base/file_descriptor.h>

#include <cstdint>
#include <optional>

namespace trellant {

/// Knows nothing by itself; `ofProcess` looks where the system says it. What the system counts for
/// a process since it was forked (getrusage) holds the memory of whoever started it too.
class MemoryUse {
  public:
    MemoryUse() = default;
    /// Opens the place now, so that `peak` works in a process that may open no files any more.
    [[nodiscard]] static MemoryUse ofProcess();

    /// Bytes; absent where the system does not say.
    [[nodiscard]] std::optional<std::int64_t> peak() const;

  private:
    FileDescriptor status_;
};

}  // namespace trellant
