// SPDX-License-Identifier: Apache-2.0
#include "file_facts.h"

#include <cstdint>
#include <filesystem>
#include <system_error>

namespace trellant::cli {

check::FileFacts factsOf(const std::string& file) {
    std::error_code failure;
    const std::uintmax_t bytes = std::filesystem::file_size(file, failure);
    return {.name = std::filesystem::path(file).filename().native(), .bytes = failure ? 0 : bytes};
}

}  // namespace trellant::cli
