// SPDX-License-Identifier: Apache-2.0
#include "examples.h"

namespace trellant::examples {

std::vector<Example> allExamples() {
    std::vector<Example> examples;
    examples.push_back(session());
    examples.push_back(external());
    examples.push_back(archive());
    return examples;
}

}  // namespace trellant::examples
