// SPDX-License-Identifier: Apache-2.0
// The parts of a file that belong to a sound already.
#pragma once

#include <trellant/io/bento_types.h>

#include <cstdint>
#include <map>
#include <optional>
#include <span>

namespace trellant::salvage {

class TakenRanges {
  public:
    /// Takes all of them, none being empty, if they lie over nothing that is taken nor over one
    /// another; else takes nothing and gives false.
    [[nodiscard]] bool take(std::span<const BentoRange> ranges);
    /// The end of the taken range that holds byte `position`.
    [[nodiscard]] std::optional<std::uint64_t> endAt(std::uint64_t position) const;
    /// Where the next taken range behind `position` begins, or `limit` where that comes first.
    [[nodiscard]] std::uint64_t nextFrom(std::uint64_t position, std::uint64_t limit) const;

  private:
    [[nodiscard]] bool isFree(const BentoRange& range) const;

    /// From begin to end.
    std::map<std::uint64_t, std::uint64_t> ends_;
};

}  // namespace trellant::salvage
