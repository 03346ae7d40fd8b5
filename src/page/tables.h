// SPDX-License-Identifier: Apache-2.0
// The tables behind the timeline, each a section of the document.
#pragma once

#include "markup.h"

#include <trellant/check/verdict.h>
#include <trellant/handoff/hand_off.h>
#include <trellant/handoff/sources.h>

#include <string>
#include <vector>

namespace trellant::page {

void writeTracks(Markup& markup, const HandOff& handOff);
/// The columns that `trellant list clips` has for people. `sources`: those of `handOff`.
void writeClips(Markup& markup, const HandOff& handOff, const Sources& sources);
/// `fullFiles`: as in a PageRequest.
void writeSources(Markup& markup, const Sources& sources,
                  const std::vector<std::string>& fullFiles);
void writeLosses(Markup& markup, const HandOff& handOff);
/// What the rules of delivery found, of each rule the first ones.
void writeFindings(Markup& markup, const HandOff& handOff, const check::Verdict& verdict);
void writeCompositions(Markup& markup, const HandOff& handOff);
void writeChanges(Markup& markup, const HandOff& handOff);

}  // namespace trellant::page
