// SPDX-License-Identifier: Apache-2.0
// The language that the page speaks.
#pragma once

#include "page.h"

namespace trellant::cli {

/// From then on texts out of the catalogues are in that language; English where the system has no
/// locale for it. Messages of the command stay as they are, numbers and lists keep their form.
void speak(PageLanguage language);

}  // namespace trellant::cli
