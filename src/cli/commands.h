// SPDX-License-Identifier: Apache-2.0
// The commands, each from its options to its exit status. What a file does wrong is told on the
// console; nothing but OutputClosed is thrown for it.
#pragma once

#include "options/options.h"
#include "terminal/console.h"
#include "terminal/exit_status.h"

#include <trellant/base/cancellation.h>

namespace trellant::cli {

[[nodiscard]] ExitStatus runInfo(const InfoOptions& options, Console& console,
                                 const StopToken& stop);
[[nodiscard]] ExitStatus runList(const ListOptions& options, Console& console,
                                 const StopToken& stop);
[[nodiscard]] ExitStatus runPeaks(const PeaksOptions& options, Console& console,
                                  const StopToken& stop);
[[nodiscard]] ExitStatus runValidate(const ValidateOptions& options, Console& console);

}  // namespace trellant::cli
