// SPDX-License-Identifier: Apache-2.0
// What kind of media a component carries. Each kind is read once, however many slots refer to it.
#pragma once

#include "bounded_reads.h"

#include <trellant/base/keyed_hash.h>
#include <trellant/omf/document.h>

#include <optional>
#include <string>

namespace trellant {

class DataKinds {
  public:
    /// `reads` must outlive this.
    explicit DataKinds(BoundedReads& reads) : reads_(reads) {}

    /// Whether a composition's segment is sound. One without a kind that can be read counts as
    /// sound: writers leave it out of sound-only compositions, and too much is better than too
    /// little.
    [[nodiscard]] bool mayBeAudio(OMFObject segment);

    /// Whether a source's segment says that it is sound.
    [[nodiscard]] bool isSound(OMFObject segment);

  private:
    /// Lower-cased; absent when it cannot be read.
    [[nodiscard]] const std::optional<std::string>& kindOf(OMFObject segment);

    BoundedReads& reads_;
    const std::optional<std::string> unreadable_;
    KeyedMap<OMFObject, std::optional<std::string>> kinds_;
};

}  // namespace trellant
