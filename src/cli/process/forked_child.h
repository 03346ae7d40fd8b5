// SPDX-License-Identifier: Apache-2.0
// Work on a stranger's file in a process of its own, so that whatever the file does to it, the
// command goes on and can say so.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace trellant::cli {

/// Why there is no answer. `reason` is for people and completes a sentence by itself.
struct ForkedFailure {
    enum class Kind {
        /// The work threw; `reason` is what the exception says.
        exception,
        /// The process ended before it had answered.
        crashed,
        /// The answer is longer than allowed.
        tooLong,
        /// The system gives no process, or no pipe to it.
        system
    };
    Kind kind;
    std::string reason;
    bool operator==(const ForkedFailure&) const = default;
};

/// The text that the work gave, or why there is none.
using ForkedAnswer = std::variant<std::string, ForkedFailure>;

/// Bytes of an answer when the caller names no other bound.
inline constexpr std::size_t forkedAnswerLimit = 268'435'456;

/// Runs `work` in a child of this process and gives its text. The child shares the open files, so
/// it may also write to standard output itself; what it changes in memory is lost. It ends with
/// this process, and is ended when its answer passes `maxBytes`. Signals that ask to end it do so,
/// whatever this process made of them. To be called while no other thread of this process is at
/// work: the child has none of them, and would wait for what they hold. Throws nothing of the work.
[[nodiscard]] ForkedAnswer inForkedChild(const std::function<std::string()>& work,
                                         std::size_t maxBytes = forkedAnswerLimit);

/// The same for work that reads files, and creates some in `writableDirectory` (absolute, there
/// already) if that is given: the child gives up all else first, as TRELLANT_SANDBOX says, and
/// keeps within the memory there is. Of files it reads those at or below `readablePaths`, any when
/// absent. Standard output and error stay open to it. A layer that is
/// required and missing is a failure of kind `exception`. The answer has at most `maxBytes`.
[[nodiscard]] ForkedAnswer inConfinedChild(
    const std::function<std::string()>& work,
    const std::optional<std::string>& writableDirectory = std::nullopt,
    const std::optional<std::vector<std::string>>& readablePaths = std::nullopt,
    std::size_t maxBytes = forkedAnswerLimit);

/// A sentence for people on why nothing is known of `file`, as the command was given it.
[[nodiscard]] std::string whyNoAnswer(const std::string& file, const ForkedFailure& failure);

}  // namespace trellant::cli
