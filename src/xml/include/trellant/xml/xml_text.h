// SPDX-License-Identifier: Apache-2.0
// Text that came from outside, made fit for XML.
#pragma once

#include <string>
#include <string_view>

namespace [[gnu::visibility("default")]] trellant {
namespace xml {

/// `text` as XML can hold it, in one line: each run of control characters becomes a blank; what is
/// not UTF-8, and the two characters that XML has no form for, become U+FFFD. Markup is left: the
/// document escapes it.
[[nodiscard]] std::string xmlText(std::string_view text);

}  // namespace xml
}  // namespace trellant
