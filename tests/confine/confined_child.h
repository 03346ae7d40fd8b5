// SPDX-License-Identifier: Apache-2.0
// Attempts made by a child process that has given up something, since there is no way back.
#pragma once

#include <functional>
#include <string>

namespace trellant::testing {

/// What `attempt` gives as text in a child that has run `enter` before. `enter` gives 0 or the
/// errno value of a refusal; then, and when the child ends too early, the test fails.
[[nodiscard]] std::string reportFromChild(const std::function<int()>& enter,
                                          const std::function<std::string()>& attempt);

/// The signal that ends the child in `attempt`; 0 when it ends by itself. Without a core dump, or
/// the test fails.
[[nodiscard]] int signalInChild(const std::function<int()>& enter,
                                const std::function<void()>& attempt);

/// Which generation of Landlock the kernel offers; 0: none.
[[nodiscard]] long landlockGeneration();

/// Of a system call that gave `result`: "works", or the name of errno ("EACCES").
[[nodiscard]] std::string outcome(long result);

/// What follows `key` and the blanks after it on its line of `text`, as /proc writes it; empty when
/// there is none.
[[nodiscard]] std::string fieldOf(const std::string& text, const std::string& key);

/// The whole of a small text file, read without anything but system calls; empty on failure.
[[nodiscard]] std::string textOfFile(const std::string& path);

}  // namespace trellant::testing
