// SPDX-License-Identifier: Apache-2.0
// Texts that are right, nearly all, are read the quick way. Whatever it does not take is read again
// from the start the way that explains, so what is refused, and why, is decided in one place.
#include "decoding_ways.h"

#include <trellant/base/cancellation.h>

#include <utility>

namespace trellant {

JsonDecodingError::JsonDecodingError(std::string keyPath, std::string reason, Kind kind)
    : kind_(kind),
      keyPath_(std::move(keyPath)),
      reason_(std::move(reason)),
      description_(keyPath_.empty() ? reason_ : keyPath_ + ": " + reason_) {}

namespace jsonDecoding {

void decodeInto(std::string_view text, RootSlot root, RecordChecks checks, const StopToken& stop) {
    if (!scanInto(text, root.slot, checks, stop)) {
        root.reset(root.slot.target);
        parseInto(text, root.slot, checks, stop);
    }
}

}  // namespace jsonDecoding

}  // namespace trellant
