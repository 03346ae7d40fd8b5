// SPDX-License-Identifier: Apache-2.0
#include <trellant/base/precondition.h>
#include <trellant/check/finding.h>

namespace trellant::check {

std::string_view severityWord(Severity severity) noexcept {
    switch (severity) {
        case Severity::info:
            return "info";
        case Severity::warning:
            return "warning";
        case Severity::error:
            return "error";
    }
    preconditionFailure("enumeration value outside its cases");
}

}  // namespace trellant::check
