// SPDX-License-Identifier: Apache-2.0
#include "agreed_date.h"

#include <charconv>
#include <cstdlib>
#include <string_view>
#include <system_error>

namespace trellant::cli {

std::optional<std::int64_t> agreedDate() {
    const char* const text = std::getenv("SOURCE_DATE_EPOCH");
    if (text == nullptr) {
        return std::nullopt;
    }
    const std::string_view digits(text);
    std::int64_t seconds = 0;
    const auto end = std::from_chars(digits.data(), digits.data() + digits.size(), seconds);
    const bool isNumber = end.ec == std::errc() && end.ptr == digits.data() + digits.size();
    return isNumber ? std::optional(seconds) : std::nullopt;
}

}  // namespace trellant::cli
