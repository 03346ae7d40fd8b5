// SPDX-License-Identifier: Apache-2.0
// The example compositions, made from nothing, always the same bytes.
#pragma once

#include <trellant/io/byte_readers.h>

#include <string>
#include <vector>

namespace trellant::examples {

struct NamedFile {
    /// Relative to the folder it belongs in.
    std::string name{};
    Bytes bytes{};
};

struct Example {
    /// Of the composition's file, without ".omf".
    std::string name{};
    Bytes composition{};
    /// Media that lie beside the composition.
    std::vector<NamedFile> beside{};
    /// What an extraction leaves in the work directory.
    std::vector<NamedFile> extracted{};
};

/// A small drama scene: every construct that a workstation writes, and some that get lost.
[[nodiscard]] Example session();
/// Media outside of the composition: one file is found by its name, one is missing.
[[nodiscard]] Example external();
/// Big-endian, with the older form of the table of contents.
[[nodiscard]] Example archive();

[[nodiscard]] std::vector<Example> allExamples();

}  // namespace trellant::examples
