// SPDX-License-Identifier: Apache-2.0
// Where the running program lies: what is installed beside it is found from there.
#pragma once

#include <optional>
#include <string>

namespace [[gnu::visibility("default")]] trellant {

/// The folder of the host's executable, absolute, links resolved, bytes as the system knows them;
/// absent when the system does not tell. Safe from several threads.
[[nodiscard]] std::optional<std::string> executableDirectory();

}  // namespace trellant
