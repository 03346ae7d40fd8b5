// SPDX-License-Identifier: Apache-2.0
// A locale that writes 2,75 where others write 2.75.
#pragma once

#include <string>

namespace trellant::testing {

/// The process counts with a decimal comma while one lives: in German where the system has it, else
/// in a locale that is made for the purpose. Throws std::runtime_error when there is no way to one.
class CommaLocale {
  public:
    CommaLocale();
    ~CommaLocale();
    CommaLocale(const CommaLocale&) = delete;
    CommaLocale& operator=(const CommaLocale&) = delete;
    CommaLocale(CommaLocale&&) = delete;
    CommaLocale& operator=(CommaLocale&&) = delete;

  private:
    std::string before_;
};

}  // namespace trellant::testing
