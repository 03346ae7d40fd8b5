// SPDX-License-Identifier: Apache-2.0
// What the bytes of a property mean.
#pragma once

#include <string_view>

namespace trellant::cli {

enum class ValueKind {
    bytes,
    /// As long as the value is.
    signedNumber,
    unsignedNumber,
    boolean,
    text,
    classID,
    byteOrder,
    rational,
    /// A rational where the value is as long as one, else bytes.
    perhapsRational,
    uid,
    /// Seconds and a mark for world time.
    timestamp,
    /// Major and minor, one byte each.
    version,
    reference,
    references,
    /// Signed numbers of 4 bytes.
    numbers,
    /// Of OMF 1.x: identifiers with references.
    mobIndex,
    /// Of OMF 1.x: what a track or component holds.
    trackKind
};

/// `type` and `property` by name, empty where the container gives none. What a property is called
/// weighs more where types are known to mislead, else less.
[[nodiscard]] ValueKind valueKind(std::string_view type, std::string_view property);

}  // namespace trellant::cli
