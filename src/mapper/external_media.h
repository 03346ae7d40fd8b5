// SPDX-License-Identifier: Apache-2.0
// External media: the file on disk that a source's descriptor names, by the path of a locator or by
// its name within the search directory.
#pragma once

#include "bounded_reads.h"
#include "media_search.h"

#include <trellant/base/keyed_hash.h>
#include <trellant/omf/document.h>

#include <optional>
#include <string>
#include <vector>

namespace trellant {

class ExternalMedia {
  public:
    struct Found {
        /// Of a file that is there.
        std::optional<std::string> path{};
        /// The name that it was recorded by.
        std::optional<std::string> originalPath{};
    };

    /// Both must outlive this.
    ExternalMedia(BoundedReads& reads, MediaSearch& search) : reads_(reads), search_(search) {}

    /// `sourceName`: what to look for when no locator says.
    [[nodiscard]] Found resolve(OMFObject descriptor, const std::optional<std::string>& sourceName);

  private:
    /// The first locator's file that exists, and the first path recorded.
    [[nodiscard]] Found followLocators(OMFObject descriptor);

    BoundedReads& reads_;
    MediaSearch& search_;
    KeyedMap<OMFObject, Found> manyLocators_;
};

/// The files beside the document that a mapping of it may read: those of all its sources, used or
/// not. `mobs` and `media`: its maps. Looks into the search directory when a source needs it. A
/// document beyond the bounds of reads names only what was found before that.
[[nodiscard]] std::vector<std::string> externalFiles(const OMFDocument& document,
                                                     const OMFDocument::MobMap& mobs,
                                                     const OMFDocument::MobMap& media,
                                                     MediaSearch& search);

}  // namespace trellant
