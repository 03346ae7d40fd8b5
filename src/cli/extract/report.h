// SPDX-License-Identifier: Apache-2.0
// What an extraction has come to, for people and for machines.
#pragma once

#include <trellant/extraction/extraction_report.h>

#include <cstddef>
#include <string>
#include <string_view>

namespace trellant::cli {

/// "taken out", "taken out as WAVE", "found", "missing", "missing, files of its name do not
/// decide", "could not be taken out".
[[nodiscard]] std::string_view stateText(AudioState state) noexcept;

/// For a person. `columns` as for aligned().
[[nodiscard]] std::string summaryScreen(const ExtractionReport& report, std::size_t columns,
                                        bool colour);
/// The same facts as one JSON object and a line feed.
[[nodiscard]] std::string summaryLine(const ExtractionReport& report);

}  // namespace trellant::cli
