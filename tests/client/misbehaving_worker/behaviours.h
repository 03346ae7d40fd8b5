// SPDX-License-Identifier: Apache-2.0
// Everything that the misbehaving worker can be, by the name under which it is started.
#pragma once

#include <optional>
#include <string_view>

namespace trellant::testing::misbehaving {

/// Acts as `name` says and gives the exit status; some never come back.
[[nodiscard]] int behave(std::string_view name);

/// The behaviours of workers that mean harm; absent when `name` is none of them.
[[nodiscard]] std::optional<int> behaveBadly(std::string_view name);

/// Writes to both outputs and ends as the request says: `aafPath` holds the pieces for standard
/// error, parted by "|", each written once the one before was taken; `workDirectory` what goes to
/// standard output; `mediaSearchDirectory` the exit status, or "signal" and a number. All of them
/// percent-encoded.
[[nodiscard]] int actAsTold();

/// Answers with a text of any size that a small request describes: `aafPath` holds the parts
/// before, over and over, and after, parted by "|" and percent-encoded; `mediaSearchDirectory` how
/// often the second comes.
[[nodiscard]] int repeatAsTold();

/// Reports the phase "first", waits for the release, then reports the phases "1", "2" and on,
/// filled with blanks, each once the one before was taken, and answers: `aafPath` holds how many,
/// `workDirectory` the size of each.
[[nodiscard]] int reportAsTold();

/// Answers with what this process got from its host besides the request, one diagnostic each.
[[nodiscard]] int describeItself();

}  // namespace trellant::testing::misbehaving
