// SPDX-License-Identifier: Apache-2.0
// Where the data of a command goes.
#pragma once

#include <string>

namespace trellant::cli {

struct Destination {
    /// A file, or "-" for standard output.
    std::string path = "-";
    /// An existing file may be replaced.
    bool force = false;
};

}  // namespace trellant::cli
