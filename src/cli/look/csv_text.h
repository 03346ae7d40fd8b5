// SPDX-License-Identifier: Apache-2.0
// Texts from strangers in the cells of a sheet.
#pragma once

#include <string>
#include <string_view>

namespace trellant::cli {

/// Adds `cell` to a record of comma-separated values: quoted where it must be, made valid, without
/// what no cell can hold, and with an apostrophe before what a sheet would take for a formula.
void appendCsvText(std::string& record, std::string_view cell);

}  // namespace trellant::cli
