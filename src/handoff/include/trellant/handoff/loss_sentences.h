// SPDX-License-Identifier: Apache-2.0
// What each kind of loss means for the mix, in one sentence for an editor.
#pragma once

#include <trellant/model/loss_kind.h>

#include <string_view>

namespace [[gnu::visibility("default")]] trellant {

/// A whole sentence without names: those stand in other columns.
[[nodiscard]] std::string_view plainSentence(LossKind kind) noexcept;

}  // namespace trellant
