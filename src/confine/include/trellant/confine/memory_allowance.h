// SPDX-License-Identifier: Apache-2.0
// A process that takes more memory than there is gets ended by the system, without a word. One that
// asks for more than it may have is told so, and can say it.
#pragma once

#include <cstdint>

namespace trellant {

/// Lowers the process's limit of data to what the machine and its control groups have left; never
/// raises it. What cannot be found out limits nothing. The limit is inherited, so only an
/// executable's main calls this, or a child that starts no other program.
void keepWithinMemory();

/// Lowers the process's limit of data to so many bytes, or to what a process needs to say that they
/// are too few; never raises it. Whether that is the limit now.
bool limitMemory(std::uint64_t bytes);

}  // namespace trellant
