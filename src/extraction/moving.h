// SPDX-License-Identifier: Apache-2.0
// Files moved to names that nothing may bear yet.
#pragma once

#include <string>

namespace trellant {

/// Gives the file at `from` the name `to` on the same file system. False when something stands
/// there; it stays, and so does the file. Throws FileSystemError.
[[nodiscard]] bool moveWithoutReplacing(const std::string& from, const std::string& to);

/// The file at `from` takes the place of what is at `to`. Throws FileSystemError.
void moveReplacing(const std::string& from, const std::string& to);

/// Something stands at `path`, a link that leads nowhere too.
[[nodiscard]] bool existsInAnyForm(const std::string& path);

}  // namespace trellant
