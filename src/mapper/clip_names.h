// SPDX-License-Identifier: Apache-2.0
// The name that a person gave a clip.
#pragma once

#include "bounded_reads.h"

#include <trellant/base/keyed_hash.h>
#include <trellant/omf/document.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace trellant {

class ClipNames {
  public:
    /// Levels of attribute lists searched, the outermost included.
    static constexpr int maximumLevels = 4;

    /// `reads` must outlive this.
    explicit ClipNames(BoundedReads& reads) : reads_(reads) {}

    /// The component's own name, else its attribute "Name".
    [[nodiscard]] std::optional<std::string> nameOf(OMFObject clip);

  private:
    /// Searches the attribute list object `unter` depth first, attribute objects within too, for a
    /// string attribute called "Name"; `tiefe` counts the lists above it.
    [[nodiscard]] std::optional<std::string> attributeString(OMFObject unter, int tiefe);
    [[nodiscard]] std::optional<std::string> searchList(OMFObject unter, int tiefe);

    BoundedReads& reads_;
    /// Attributes looked at so far. Lists may share lists: what took long is remembered, by list
    /// and level, so that a clip costs no more than the lists hold.
    std::uint64_t looked_ = 0;
    KeyedMap<std::uint64_t, std::optional<std::string>> remembered_;
};

}  // namespace trellant
