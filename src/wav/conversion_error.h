// SPDX-License-Identifier: Apache-2.0
// Why something could not be made of an audio file.
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

namespace trellant::wav {

/// what() completes "cannot convert PATH: ".
class ConversionError final : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/// In words, and behind them the text of whoever refused, which is not always for people.
[[nodiscard]] ConversionError because(std::string_view words, std::string detail);

}  // namespace trellant::wav
