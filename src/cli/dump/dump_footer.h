// SPDX-License-Identifier: Apache-2.0
// The end of a container, read as far as it makes sense.
#pragma once

#include <trellant/io/bento_types.h>
#include <trellant/io/random_access_file.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace trellant::cli {

struct FooterLook {
    /// Bytes from the file's first; absent when there is no footer at all.
    std::optional<std::uint64_t> offset;
    /// What it says, unchecked; absent when its numbers cannot be read.
    std::optional<BentoFooter> footer;
    /// Each thing that is wrong, in the order in which a reader meets it. Empty when all is well.
    std::vector<std::string> faults;
};

/// Looks at the very end of the file, and where nothing is there, for a footer that something was
/// appended to.
[[nodiscard]] FooterLook lookAtFooter(const RandomAccessFile& file);

}  // namespace trellant::cli
