// SPDX-License-Identifier: Apache-2.0
// The head of the document: what `trellant info` says of the file.
#pragma once

#include "markup.h"

#include <trellant/handoff/summary.h>
#include <trellant/page/page.h>

#include <string>

namespace trellant::page {

/// The name of the composition, for a person.
[[nodiscard]] std::string compositionText(const HandOff& handOff);
/// "1 dropped, 2 kept but sounding different, in 3 places".
[[nodiscard]] std::string lossText(const Summary& summary);
/// "4 embedded, 1 missing".
[[nodiscard]] std::string statesText(const Summary& summary);
/// Length of the composition as timecode.
[[nodiscard]] std::string lengthOf(const AAFTimeline& timeline);

void writeFacts(Markup& markup, const PageRequest& request, const Summary& summary);
/// The verdicts, each a mark with a word: never by colour alone.
void writeVerdict(Markup& markup, const PageRequest& request, const Summary& summary);

}  // namespace trellant::page
