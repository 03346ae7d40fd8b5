// SPDX-License-Identifier: Apache-2.0
// `trellant info`: one screen about a file.
#pragma once

#include <trellant/handoff/hand_off.h>

#include <string>

namespace trellant::cli {

/// For a person: the file's name, then a labelled line for each fact, then what to do next.
[[nodiscard]] std::string infoScreen(const std::string& file, const HandOff& handOff, bool colour);
/// The same facts as one JSON object and a line feed.
[[nodiscard]] std::string infoLine(const std::string& file, const HandOff& handOff);

}  // namespace trellant::cli
