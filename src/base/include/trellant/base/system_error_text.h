// SPDX-License-Identifier: Apache-2.0
// The operating system's errors in words.
#pragma once

#include <string>

namespace [[gnu::visibility("default")]] trellant {

/// "No such file or directory" for ENOENT: always English, whatever the host's locale, because it
/// goes into logs. Safe from several threads.
[[nodiscard]] std::string systemErrorText(int errorNumber);

}  // namespace trellant
