// SPDX-License-Identifier: Apache-2.0
// A process that takes more memory than there is gets ended by the system, without a word. One that
// asks for more than it may have is told so, and can say it.
#pragma once

namespace trellant {

/// Lowers the process's limit of data to what the machine and its control groups have left; never
/// raises it. What cannot be found out limits nothing. The limit is inherited, so only an
/// executable's main calls this, or a child that starts no other program.
void keepWithinMemory();

}  // namespace trellant
