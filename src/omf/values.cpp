// SPDX-License-Identifier: Apache-2.0
#include <trellant/omf/values.h>

#include <array>
#include <cstdio>

namespace trellant {

std::string OMFUID::description() const {
    std::array<char, 3 * 8 + 2 + 1> text{};
    static_cast<void>(std::snprintf(text.data(), text.size(), "%08X-%08X-%08X", a, b, c));
    return text.data();
}

}  // namespace trellant
