// SPDX-License-Identifier: Apache-2.0
// The sounds of a damaged interchange file, each in a file of its own, whatever became of its table
// of contents and its object model.
#pragma once

#include <trellant/salvage/salvage_report.h>
#include <trellant/salvage/sound_search.h>

#include <cstdint>
#include <string>

namespace [[gnu::visibility("default")]] trellant {
namespace salvage {

/// The name of the record beside the sounds.
inline constexpr std::string_view reportName = "salvage.json";

/// Copies every sound inside the file at `path` into the folder `directory`, which exists, is
/// absolute and holds no file of such a name: "Sound 001.aifc", "Sound 002 incomplete.wav". The
/// file is read once from front to back, and what belongs to a sound once more for the copy; each
/// of its bytes goes into one copy at most. The search ends after ten thousand sounds and one more
/// for each 64 KiB of the file. `report.file` stays empty. Throws FileSystemError and OMFIOError
/// (the file shrank meanwhile), and what `progress` throws.
[[nodiscard]] SalvageReport salvageSounds(const std::string& path, const std::string& directory,
                                          const SoundSearch::Progress& progress = {});

}  // namespace salvage
}  // namespace trellant
