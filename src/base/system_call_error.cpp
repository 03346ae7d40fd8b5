// SPDX-License-Identifier: Apache-2.0
#include <trellant/base/system_call_error.h>
#include <trellant/base/system_error_text.h>

namespace trellant {

SystemCallError::SystemCallError(const std::string& action, int errorNumber)
    : errorNumber_(errorNumber),
      description_("cannot " + action + ": " + systemErrorText(errorNumber)) {}

}  // namespace trellant
