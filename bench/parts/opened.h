// SPDX-License-Identifier: Apache-2.0
// What the measurements of parts work on: the files named on the command line.
#pragma once

#include <trellant/mapper/mapper.h>
#include <trellant/omf/document.h>
#include <trellant/protocol/messages.h>

#include <string>
#include <vector>

namespace trellant::bench {

struct PartsFiles {
    /// A composition.
    std::string omf;
    /// A folder with media files; empty: the search is not measured.
    std::string tree;
};

/// The composition, mapped without writing anything.
[[nodiscard]] AAFWorkerProtocol::Result mapped(const OMFDocument& document,
                                               const std::string& path);

/// Each registers measurements over `files`, which outlive them.
void registerContainerParts(const PartsFiles& files);
void registerMappingParts(const PartsFiles& files);
void registerJsonParts(const PartsFiles& files);
void registerSearchParts(const PartsFiles& files);

}  // namespace trellant::bench
