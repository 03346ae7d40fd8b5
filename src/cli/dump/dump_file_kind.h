// SPDX-License-Identifier: Apache-2.0
// What a file is that is no container.
#pragma once

#include <trellant/io/random_access_file.h>

#include <optional>
#include <string>

namespace trellant::cli {

/// "a WAVE file", with advice where there is some; absent when it looks like nothing known.
[[nodiscard]] std::optional<std::string> fileKind(const RandomAccessFile& file);

}  // namespace trellant::cli
