// SPDX-License-Identifier: Apache-2.0
// What a browser lets the document do: run its own script, show its own style, nothing else.
#pragma once

#include <string>
#include <string_view>

namespace trellant::page {

/// The SHA-256 of `text` as a content security policy names it: "sha256-" and base64.
[[nodiscard]] std::string policyHash(std::string_view text);

/// The policy of a document with that script and that style; without a script, none runs.
[[nodiscard]] std::string contentPolicy(std::string_view script, std::string_view style);

}  // namespace trellant::page
