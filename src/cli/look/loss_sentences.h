// What each kind of loss means for the mix, in one sentence for an editor.
#pragma once

#include <trellant/mapper/loss_places.h>

#include <string_view>

namespace trellant::cli {

/// A whole sentence without names: those stand in other columns.
[[nodiscard]] std::string_view plainSentence(LossKind kind) noexcept;

}  // namespace trellant::cli
