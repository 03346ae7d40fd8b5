// SPDX-License-Identifier: Apache-2.0
#include "exit_status.h"

#include <algorithm>

namespace trellant::cli {

ExitStatus worse(ExitStatus left, ExitStatus right) noexcept {
    if (left == ExitStatus::fileFailed || right == ExitStatus::fileFailed) {
        return ExitStatus::fileFailed;
    }
    return std::max(left, right);
}

}  // namespace trellant::cli
