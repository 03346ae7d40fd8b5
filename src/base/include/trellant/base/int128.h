// SPDX-License-Identifier: Apache-2.0
// 128-bit integers, where products of 64-bit numbers must be exact.
#pragma once

namespace trellant {

__extension__ using Int128 = __int128;

}  // namespace trellant
