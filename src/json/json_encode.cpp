// SPDX-License-Identifier: Apache-2.0
#include <trellant/json/json_encode.h>

namespace trellant {

JsonEncodingError::JsonEncodingError(std::string keyPath)
    : keyPath_(std::move(keyPath)),
      description_("cannot encode " + keyPath_ + ": the number is not finite") {}

}  // namespace trellant
