// SPDX-License-Identifier: Apache-2.0
// Which numbers of a name are free. A number found taken is not asked for again: thousands of names
// that differ only in what is cut off before their number share all their numbers.
#pragma once

#include <trellant/base/keyed_hash.h>

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>

namespace [[gnu::visibility("default")]] trellant {

class FreeNumbers {
  public:
    /// The name with that number. Names with numbers of as many digits differ in the number alone.
    using Name = std::function<std::string(std::uint64_t number)>;
    using IsTaken = std::function<bool(const std::string& name)>;

    /// What all names have in common that are found taken together: those of `name` with numbers
    /// of as many digits as `number`.
    [[nodiscard]] static std::string series(std::uint64_t number, const Name& name);
    /// The highest number with as many digits. 1 stands apart: it is the name without a number.
    [[nodiscard]] static std::uint64_t lastOfSeries(std::uint64_t number);

    /// The first number from `first` to `last`, at least 1, whose name is not taken; absent when
    /// all are. Names found taken by an earlier call count as taken still. What the functions throw
    /// comes out.
    [[nodiscard]] std::optional<std::uint64_t> find(std::uint64_t first, std::uint64_t last,
                                                    const Name& name, const IsTaken& isTaken);

  private:
    /// Numbers that are known to be taken, in runs: from each key up to before its value. No two
    /// runs touch.
    using Runs = std::map<std::uint64_t, std::uint64_t>;

    /// Lengthens the run at `first`, or begins one, up to a number that is not taken or is past
    /// `end`; that number.
    static std::uint64_t lengthen(Runs& runs, std::uint64_t first, std::uint64_t end,
                                  const Name& name, const IsTaken& isTaken);

    KeyedMap<std::string, Runs> runsBySeries_;
};

}  // namespace trellant
