// SPDX-License-Identifier: Apache-2.0
// The table of the audio files that are there, a row each; those that are missing stand in a list
// of their own.
#pragma once

#include "report.h"

namespace trellant::cli {

/// `part` behind `text`, with a comma between them.
void appendPart(std::string& text, const std::string& part);

/// The names of the sources that an audio file is of.
[[nodiscard]] std::string sourceNames(const AAFTimeline& timeline, const AudioEntry& entry);

/// By the timeline's clock; empty when not known.
[[nodiscard]] std::string lengthOf(const AAFTimeline& timeline,
                                   const std::optional<AudioFacts>& facts);

/// As wide as `columns` allows (see aligned()). On narrow terminals everything else gives way
/// before the names of the files: first the sources are cut, then columns are left out.
[[nodiscard]] std::string fittingTable(const ExtractionReport& report, std::size_t columns,
                                       bool colour);

}  // namespace trellant::cli
