// SPDX-License-Identifier: Apache-2.0
// Where each of several files goes.
#pragma once

#include <string>
#include <vector>

namespace trellant::cli {

/// The folder for each of `files`: `directory` for the only one; of several a folder in it that
/// bears the file's name, with a number where another bears it too.
[[nodiscard]] std::vector<std::string> foldersFor(const std::vector<std::string>& files,
                                                  const std::string& directory);

}  // namespace trellant::cli
