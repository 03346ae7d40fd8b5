// SPDX-License-Identifier: Apache-2.0
// Property values in words: typed where the container, or the property's name, tells the type.
#pragma once

#include "dump_contents.h"

#include <cstdint>
#include <string>
#include <vector>

namespace trellant::cli {

/// How much of a long value is shown.
struct ValueBounds {
    std::size_t bytes = 256;
    std::size_t references = 32;

    [[nodiscard]] static constexpr ValueBounds none() {
        return {.bytes = 16'777'216, .references = 4'194'304};
    }
};

struct ValueText {
    /// One line.
    std::string line;
    /// Rows of a hexadecimal listing below it.
    std::vector<std::string> listing{};
    /// Something was left out for the bounds.
    bool isCut = false;
};

/// The value of a property that the object has.
[[nodiscard]] ValueText valueText(const DumpContents& contents, std::uint32_t object,
                                  std::uint32_t property, const ValueBounds& bounds);

/// The objects that a value refers to, in order and without references to none; empty for a
/// property that is no reference.
[[nodiscard]] std::vector<std::uint32_t> referencesOf(const DumpContents& contents,
                                                      std::uint32_t object, std::uint32_t property);

}  // namespace trellant::cli
