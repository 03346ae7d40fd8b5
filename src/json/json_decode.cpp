#include "decoding_ways.h"

#include <utility>

namespace trellant {

JsonDecodingError::JsonDecodingError(std::string keyPath, std::string reason)
    : keyPath_(std::move(keyPath)),
      reason_(std::move(reason)),
      description_(keyPath_.empty() ? reason_ : keyPath_ + ": " + reason_) {}

namespace jsonDecoding {

void decodeInto(std::string_view text, ValueSlot root, RecordChecks checks,
                const std::stop_token& stop) {
    parseInto(text, root, checks, stop);
}

}  // namespace jsonDecoding

}  // namespace trellant
