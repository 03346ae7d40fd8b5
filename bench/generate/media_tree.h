// SPDX-License-Identifier: Apache-2.0
// A tree of audio files to look for external media in.
#pragma once

#include <cstdint>
#include <string>

namespace trellant::bench {

/// Creates `files` small WAVE files below `folder`, a hundred in each folder; `sources` of them,
/// spread evenly, have the names of the shape "external". Throws std::system_error and
/// std::filesystem::filesystem_error.
void writeMediaTree(const std::string& folder, std::uint32_t files, std::uint32_t sources);

}  // namespace trellant::bench
