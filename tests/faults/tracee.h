// SPDX-License-Identifier: Apache-2.0
// A process that is traced: its system calls seen, skipped and changed from outside. What a
// register is called is known here alone.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <sys/types.h>

namespace trellant::testing {

struct SystemCall {
    std::uint64_t number = 0;
    std::array<std::uint64_t, 6> arguments{};
};

class Tracee {
  public:
    explicit Tracee(pid_t process) : process_(process) {}

    [[nodiscard]] pid_t process() const noexcept { return process_; }

    /// The call about to be made; absent at a stop of another kind.
    [[nodiscard]] std::optional<SystemCall> callAtEntry() const;
    /// What the call gave; absent at a stop of another kind.
    [[nodiscard]] std::optional<std::int64_t> resultAtExit() const;

    /// At the entry: a call without effect is made in place of this one.
    void skipCall() const;
    void setArgument(std::size_t index, std::uint64_t value) const;
    /// At the exit: programs count on finding their arguments where they put them.
    void restoreArgument(std::size_t index, std::uint64_t value) const;
    /// At the exit.
    void setResult(std::int64_t result) const;

    /// The text up to its zero byte at an address of the process; absent where it cannot be read.
    [[nodiscard]] std::optional<std::string> textAt(std::uint64_t address) const;

  private:
    pid_t process_;
};

}  // namespace trellant::testing
