// SPDX-License-Identifier: Apache-2.0
// The text of a decoding that must fail.
#pragma once

#include <trellant/model/timeline_json.h>

#include <string>
#include <string_view>

namespace trellant::test {

/// what() of the JsonDecodingError that `text` gives, or "decoded" when it gives none.
template <class T>
[[nodiscard]] std::string decodingError(std::string_view text) {
    try {
        (void)decodeJson<T>(text);
    } catch (const JsonDecodingError& error) {
        return error.what();
    }
    return "decoded";
}

}  // namespace trellant::test
