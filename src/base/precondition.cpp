// SPDX-License-Identifier: Apache-2.0
#include <trellant/base/precondition.h>
#include <trellant/base/write_all.h>

#include <cstdlib>
#include <string_view>
#include <unistd.h>

namespace trellant {

void preconditionFailure(const char* message) noexcept {
    // Nothing is allocated: the process may be out of memory or in a damaged state. A write that
    // fails leaves the abort as the only sign.
    for (const std::string_view text : {"precondition failed: ", message, "\n"}) {
        if (writeAll(STDERR_FILENO, text) != 0) {
            break;
        }
    }
    std::abort();
}

}  // namespace trellant
