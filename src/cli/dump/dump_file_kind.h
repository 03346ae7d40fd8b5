// SPDX-License-Identifier: Apache-2.0
// What a file is that is no container.
#pragma once

#include <trellant/io/random_access_file.h>

#include <optional>
#include <string>
#include <string_view>

namespace trellant::cli {

/// Part of what fileKind says of a container that lost its end on the way.
inline constexpr std::string_view frontOfFile = "the front of an OMF file whose end is missing";

/// "a WAVE file", with advice where there is some; absent when it looks like nothing known.
[[nodiscard]] std::optional<std::string> fileKind(const RandomAccessFile& file);

}  // namespace trellant::cli
