// SPDX-License-Identifier: Apache-2.0
// Which numbers of a name are free. A number found taken is not asked for again: thousands of names
// that differ only in what is cut off before their number share all their numbers.
#pragma once

#include <trellant/base/keyed_hash.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace [[gnu::visibility("default")]] trellant {

class FreeNumbers {
  public:
    /// The name with that number. Names with numbers of as many digits differ in the number alone.
    using Name = std::function<std::string(std::uint64_t number)>;
    using IsTaken = std::function<bool(const std::string& name)>;

    /// The first number from `first` to `last`, at least 1, whose name is not taken; absent when
    /// all are. Names found taken by an earlier call count as taken still. What the functions throw
    /// comes out.
    [[nodiscard]] std::optional<std::uint64_t> find(std::uint64_t first, std::uint64_t last,
                                                    const Name& name, const IsTaken& isTaken);

  private:
    /// The numbers from `first` on, up to before `next`, are known to be taken.
    struct Run {
        std::uint64_t first = 0;
        std::uint64_t next = 0;
    };
    /// By digits, and by the name with the highest number of so many.
    KeyedMap<std::string, Run> runs_;
};

}  // namespace trellant
