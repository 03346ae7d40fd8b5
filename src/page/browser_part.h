// SPDX-License-Identifier: Apache-2.0
// The hand-written files of browser/, joined at build time.
#pragma once

#include <span>
#include <string>
#include <string_view>

namespace trellant::page {

/// The frames of the documents: markup with slots, `{{name}}` for a part and `{{say name}}` for a
/// text.
[[nodiscard]] std::string_view pageFrame() noexcept;
[[nodiscard]] std::string_view indexFrame() noexcept;

/// The style of both.
[[nodiscard]] std::string pageStyle();
/// The script of a page.
[[nodiscard]] std::string pageScript();

}  // namespace trellant::page
