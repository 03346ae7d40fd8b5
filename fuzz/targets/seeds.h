// SPDX-License-Identifier: Apache-2.0
// Inputs to begin with: small, valid, and together of every kind that a target tells apart.
#pragma once

#include <trellant/io/byte_readers.h>

#include <string>
#include <string_view>
#include <vector>

namespace trellant::fuzzing {

struct Seed {
    std::string name{};
    Bytes bytes{};
};

/// For the target of that name; the same bytes each time.
[[nodiscard]] std::vector<Seed> seedsOf(std::string_view target);

/// Compositions in the forms that a container has.
[[nodiscard]] std::vector<Seed> compositionSeeds();

/// Sessions of OMF 1.x.
[[nodiscard]] std::vector<Seed> olderSeeds();

/// The words that inputs of the target are made of, in the fuzzer's format: one in quotes on each
/// line.
[[nodiscard]] std::string dictionaryOf(std::string_view target);

}  // namespace trellant::fuzzing
