// Everything that the odd worker can be, by the name under which it is started.
#pragma once

#include <string_view>

namespace trellant::testing::odd {

/// Acts as `name` says and gives the exit status; some never come back.
[[nodiscard]] int behave(std::string_view name);

/// Writes to both outputs and ends as the request says: `aafPath` holds the pieces for standard
/// error, parted by "|", each written once the one before was taken; `workDirectory` what goes to
/// standard output; `mediaSearchDirectory` the exit status, or "signal" and a number. All of them
/// percent-encoded.
[[nodiscard]] int actAsTold();

/// Answers with what this process got from its host besides the request, one diagnostic each.
[[nodiscard]] int describeItself();

}  // namespace trellant::testing::odd
