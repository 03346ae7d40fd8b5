// SPDX-License-Identifier: Apache-2.0
// What a person and a program are told of a written session.
#pragma once

#include "export.h"

#include <trellant/exporter/exporter.h>

#include <string>
#include <vector>

namespace trellant::cli {

/// A few lines. `file` and `directory` as the person named them.
[[nodiscard]] std::string exportScreen(const std::string& file, const std::string& directory,
                                       exchange::ExportFormat format, const ExportReport& report);

/// One JSON object on a line.
[[nodiscard]] std::string exportLine(const std::string& file, const std::string& directory,
                                     exchange::ExportFormat format, const ExportReport& report);

/// Why audio is offline and what to do, a line for each reason; none when all of it is there.
[[nodiscard]] std::vector<std::string> offlineRemarks(const ExportReport& report);

}  // namespace trellant::cli
