// SPDX-License-Identifier: Apache-2.0
// The compositions that measurements are made on.
#pragma once

#include "composition_writer.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace trellant::bench {

struct ShapeRequest {
    /// Of what the shape has many: clips, mobs, tracks, pieces, inputs, sources.
    std::uint32_t count = 0;
    /// Mobs between a clip and the file, and levels of scopes.
    std::uint32_t levels = 0;
    /// Of every embedded file.
    MediaSpec media{};
};

struct Shape {
    std::string_view name;
    /// What it has `count` of, for a person.
    std::string_view what;
    FileLayout layout;
    void (*describe)(CompositionWriter&, const ShapeRequest&);
};

[[nodiscard]] std::span<const Shape> allShapes();

/// The name of the audio file of a source in the shape "external".
[[nodiscard]] std::string externalName(std::uint32_t source);

}  // namespace trellant::bench
