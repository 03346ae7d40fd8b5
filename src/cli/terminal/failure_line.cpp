// SPDX-License-Identifier: Apache-2.0
#include "failure_line.h"

#include "json_line.h"

#include <trellant/base/printable_text.h>

namespace trellant::cli {

std::string fileForPrograms(const std::string& file) {
    return textOfBytes(file);
}

std::string failureLine(const std::string& file, const std::string& failure) {
    return jsonLine(
        [&](JsonLine& line) { line.text("file", fileForPrograms(file)).text("error", failure); });
}

}  // namespace trellant::cli
