// SPDX-License-Identifier: Apache-2.0
// A document's frame with its slots filled.
#pragma once

#include "markup.h"

#include <functional>
#include <string_view>

namespace trellant::page {

/// Writes `frame` with each `{{name}}` replaced by what `fill(name)` writes, and each `{{say
/// name}}` by the text of that name.
void writeFrame(Markup& markup, std::string_view frame,
                const std::function<void(std::string_view)>& fill);

}  // namespace trellant::page
