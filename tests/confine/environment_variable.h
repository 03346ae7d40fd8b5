// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdlib>
#include <optional>
#include <string>

namespace trellant::testing {

/// A variable of the environment while it lives; children inherit it.
class EnvironmentVariable {
  public:
    /// Unset for a null `value`.
    EnvironmentVariable(const char* name, const char* value) : name_(name) {
        if (const char* const before = std::getenv(name)) {
            before_ = before;
        }
        set(value);
    }
    ~EnvironmentVariable() { set(before_ ? before_->c_str() : nullptr); }
    EnvironmentVariable(const EnvironmentVariable&) = delete;
    EnvironmentVariable& operator=(const EnvironmentVariable&) = delete;
    EnvironmentVariable(EnvironmentVariable&&) = delete;
    EnvironmentVariable& operator=(EnvironmentVariable&&) = delete;

  private:
    void set(const char* value) const {
        if (value == nullptr) {
            ::unsetenv(name_);
        } else {
            ::setenv(name_, value, 1);
        }
    }

    const char* name_;
    std::optional<std::string> before_;
};

}  // namespace trellant::testing
