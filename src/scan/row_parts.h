// SPDX-License-Identifier: Apache-2.0
// What a hand-off is in a row.
#pragma once

#include <trellant/check/verdict.h>
#include <trellant/handoff/hand_off.h>
#include <trellant/protocol/extensions.h>
#include <trellant/scan/row.h>

namespace trellant::scan {

/// Fills in all that `handOff`, which is usable, says; its sources without digests.
void tellHandOff(const HandOff& handOff, ScanRow& row);

/// Versions, byte order, programs and memory.
void tellProvenance(const AAFWorkerExtensions::Provenance& provenance, ScanRow& row);

[[nodiscard]] ScanRow::Verdict toldVerdict(const check::Verdict& verdict);

}  // namespace trellant::scan
