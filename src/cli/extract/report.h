// SPDX-License-Identifier: Apache-2.0
// What an extraction has come to, for people and for machines.
#pragma once

#include <trellant/extraction/extraction_report.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace trellant::cli {

/// Of a report whose folder is a bag.
struct BagFacts {
    std::uint64_t payloadFiles = 0;
    std::uint64_t payloadBytes = 0;
    /// It was there, with the same files.
    bool wasThere = false;
};

/// "taken out", "taken out as WAVE", "found", "missing", "missing, files of its name do not
/// decide", "could not be taken out".
[[nodiscard]] std::string_view stateText(AudioState state) noexcept;

/// For a person. `columns` as for aligned().
[[nodiscard]] std::string summaryScreen(const ExtractionReport& report, std::size_t columns,
                                        bool colour,
                                        const std::optional<BagFacts>& bag = std::nullopt);
/// The same facts as one JSON object and a line feed. `store`: the folder that keeps audio by
/// content, as a person names it; empty: there is none.
[[nodiscard]] std::string summaryLine(const ExtractionReport& report,
                                      const std::optional<BagFacts>& bag = std::nullopt,
                                      const std::string& store = {});

}  // namespace trellant::cli
