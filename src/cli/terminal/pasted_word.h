// SPDX-License-Identifier: Apache-2.0
// Names in advice that people paste into a shell.
#pragma once

#include <string>
#include <string_view>

namespace trellant::cli {

/// `name` as a shell takes it for one argument that names a file: quoted where that is needed, and
/// never an option.
[[nodiscard]] std::string pastedFileName(std::string_view name);

}  // namespace trellant::cli
