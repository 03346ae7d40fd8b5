// SPDX-License-Identifier: Apache-2.0
// A file that an extraction has put into the wanted folder.
#pragma once

#include <string>

namespace [[gnu::visibility("default")]] trellant {

/// A file under its final name.
struct PlacedFile {
    std::string path{};
    std::string name{};
    std::string sha256{};
    /// It was there before, with the same bytes.
    bool wasThere = false;
    /// Another file had the name that was wanted.
    bool renumbered = false;
};

}  // namespace trellant
