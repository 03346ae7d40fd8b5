// SPDX-License-Identifier: Apache-2.0
// What a salvage has come to, for people.
#pragma once

#include "extractor.h"

#include <trellant/salvage/salvage_report.h>

#include <cstddef>
#include <string>

namespace trellant::cli {

/// `columns` as for aligned().
[[nodiscard]] std::string salvageScreen(const ExtractJob& job, const salvage::SalvageReport& report,
                                        std::size_t columns, bool colour);

}  // namespace trellant::cli
