// SPDX-License-Identifier: Apache-2.0
// WAVE files that any tool reads: whole numbers or floating point, without the extensible header.
#pragma once

#include <trellant/sessions/session.h>

#include <optional>
#include <string>

namespace [[gnu::visibility("default")]] trellant {

/// Where the samples of such a file lie; absent for anything else. Never throws for what a file
/// holds.
[[nodiscard]] std::optional<sessions::WaveFile> plainWave(const std::string& path);

}  // namespace trellant
