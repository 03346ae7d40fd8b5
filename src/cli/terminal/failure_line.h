// SPDX-License-Identifier: Apache-2.0
// What programs are told of a file that could not be read.
#pragma once

#include <string>

namespace trellant::cli {

/// How programs and sheets name a file: as it was given, bytes that are no UTF-8 as "\xNN".
[[nodiscard]] std::string fileForPrograms(const std::string& file);

/// One line of JSON: the file and `error`, the reason.
[[nodiscard]] std::string failureLine(const std::string& file, const std::string& failure);

}  // namespace trellant::cli
