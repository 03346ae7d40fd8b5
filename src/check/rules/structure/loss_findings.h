// SPDX-License-Identifier: Apache-2.0
// Losses of reading as findings.
#pragma once

#include "finding_list.h"

#include <string_view>

namespace trellant::check {

/// Reports each loss of that severity that is none of an effect, with `advice` behind its sentence.
void reportLosses(const CheckedHandOff& checked, AAFUnsupportedFeature::Severity severity,
                  std::string_view advice, FindingList& findings);

}  // namespace trellant::check
