// SPDX-License-Identifier: Apache-2.0
// Large compositions of a known shape, written by the generator of the benchmarks.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace trellant::testing {

/// `count` of what `shape` has many of; a tenth of that where sanitizers slow everything down.
/// Gives the number.
std::uint32_t generateFile(const std::string& path, const std::string& shape, std::uint32_t count,
                           const std::vector<std::string>& options = {});

}  // namespace trellant::testing
