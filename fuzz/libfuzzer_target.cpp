// SPDX-License-Identifier: Apache-2.0
// What libFuzzer calls. The target is chosen when this is compiled.
#include "targets.h"

#include <cstdint>
#include <span>

// NOLINTBEGIN(readability-identifier-naming)
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const auto& target = trellant::fuzzing::targetNamed(TRELLANT_FUZZ_TARGET);
    target.run(std::as_bytes(std::span(data, size)));
    return 0;
}
// NOLINTEND(readability-identifier-naming)
