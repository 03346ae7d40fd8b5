// SPDX-License-Identifier: Apache-2.0
// How long a call may still take.
#pragma once

#include <algorithm>
#include <chrono>
#include <optional>

namespace trellant {

class TimeLimit {
  public:
    /// Counts from now on; absent: without end.
    explicit TimeLimit(std::optional<std::chrono::milliseconds> limit) : limit_(limit) {
        // What is left is a difference, which must not overflow.
        if (limit_) {
            limit_ = std::max(*limit_, std::chrono::milliseconds{0});
        }
    }

    [[nodiscard]] bool isOver() const { return limit_ && elapsed() >= *limit_; }
    /// For poll: milliseconds until it is over, at most `longest`, which is negative for a wait
    /// without end.
    [[nodiscard]] int wait(int longest) const {
        constexpr std::chrono::milliseconds aDay{86'400'000};
        if (!limit_) {
            return longest;
        }
        // One more, lest the last millisecond is spent in looking again and again.
        const auto left = std::clamp(*limit_ - elapsed(), std::chrono::milliseconds{0}, aDay);
        const int rest = static_cast<int>(left.count()) + 1;
        return longest < 0 ? rest : std::min(rest, longest);
    }

  private:
    using Clock = std::chrono::steady_clock;

    [[nodiscard]] std::chrono::milliseconds elapsed() const {
        return std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start_);
    }

    std::optional<std::chrono::milliseconds> limit_;
    Clock::time_point start_ = Clock::now();
};

}  // namespace trellant
