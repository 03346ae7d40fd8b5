// SPDX-License-Identifier: Apache-2.0
// A profile by its name or its file.
#pragma once

#include <trellant/check/profile.h>

#include <cstddef>
#include <string>

namespace trellant::cli {

/// Bytes of a profile's file at most.
inline constexpr std::size_t largestProfile = 1'048'576;

/// One that comes with the program, else the file of that name; what it extends is looked for in
/// its own folder. Throws check::ProfileError.
[[nodiscard]] check::Profile namedProfile(const std::string& name);

}  // namespace trellant::cli
