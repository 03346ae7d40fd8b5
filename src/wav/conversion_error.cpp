// SPDX-License-Identifier: Apache-2.0
#include "conversion_error.h"

namespace trellant::wav {

ConversionError because(std::string_view words, std::string detail) {
    while (!detail.empty() && (detail.back() == '.' || detail.back() == '\n')) {
        detail.pop_back();
    }
    detail = detail.empty() ? std::string() : " (" + detail + ")";
    const std::string text = std::string(words).append(detail);
    return ConversionError{text};
}

}  // namespace trellant::wav
