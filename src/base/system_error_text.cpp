// SPDX-License-Identifier: Apache-2.0
#include <trellant/base/system_error_text.h>

#include <cstring>

#ifndef __GLIBC__
#include <system_error>
#endif

namespace trellant {

std::string systemErrorText(int errorNumber) {
#ifdef __GLIBC__
    // What strerror gives follows the locale of the host.
    if (const char* const text = ::strerrordesc_np(errorNumber)) {
        return text;
    }
    return "Unknown error " + std::to_string(errorNumber);
#else
    return std::generic_category().message(errorNumber);
#endif
}

}  // namespace trellant
