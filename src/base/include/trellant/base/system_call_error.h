// SPDX-License-Identifier: Apache-2.0
// A refusal of the operating system.
#pragma once

#include <exception>
#include <string>

namespace [[gnu::visibility("default")]] trellant {

/// A call of the system that failed.
class SystemCallError final : public std::exception {
  public:
    /// `action` completes "cannot ...": "make a pipe".
    SystemCallError(const std::string& action, int errorNumber);
    /// As errno has it.
    [[nodiscard]] int errorNumber() const noexcept { return errorNumber_; }
    /// "cannot make a pipe: Too many open files", always in English.
    [[nodiscard]] const char* what() const noexcept override { return description_.c_str(); }

  private:
    int errorNumber_;
    std::string description_;
};

}  // namespace trellant
