// SPDX-License-Identifier: Apache-2.0
#include <trellant/base/printable_path.h>
#include <trellant/base/printable_text.h>

namespace trellant {

std::string printablePath(std::string_view path) {
    constexpr std::size_t longestPath = 4'096;
    return printableText(path, longestPath);
}

}  // namespace trellant
