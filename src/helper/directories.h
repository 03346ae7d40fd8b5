// SPDX-License-Identifier: Apache-2.0
// The few things the worker asks of the system's folders.
#pragma once

#include <string>

namespace trellant {

/// The current directory, absolute. Throws FileSystemError.
[[nodiscard]] std::string currentDirectory();

/// Creates `path` (absolute) and the folders above it that are missing; one that is there already
/// is no error. Throws FileSystemError.
void createDirectories(const std::string& path);

}  // namespace trellant
