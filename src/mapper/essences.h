// SPDX-License-Identifier: Apache-2.0
// The audio behind a resolved clip: embedded media taken out of the file, or external media found
// on disk, as one essence per Source Mob.
#pragma once

#include "bounded_reads.h"
#include "external_media.h"
#include "file_names.h"
#include "mapping_notes.h"
#include "media_search.h"
#include "source_resolution.h"

#include <trellant/base/keyed_hash.h>
#include <trellant/mapper/mapper.h>
#include <trellant/omf/audio_probe.h>
#include <trellant/omf/document.h>

#include <optional>
#include <string>
#include <vector>

namespace trellant {

class Essences {
  public:
    /// All references must outlive this.
    Essences(BoundedReads& reads, const OMFDocument::MobMap& mediaMap, const MappingPlaces& places,
             MediaSearch& search, MappingNotes& notes);

    /// The essence of a source, made at the first call for its mob; null when the mob describes no
    /// media. An essence whose media cannot be found is returned without a file. Throws what the
    /// copy out of the container throws, and unsupported for a file whose embedded audio, lying
    /// over itself, would fill a disk.
    [[nodiscard]] const AAFSourceEssence* makeEssence(const ResolvedSource& source);

    /// All essences made, by ascending id.
    [[nodiscard]] std::vector<AAFSourceEssence> takeSorted();

  private:
    /// Audio as it was found: at a path, with what its header says, under the name it was
    /// recorded by.
    struct FoundMedia {
        std::optional<std::string> path{};
        std::optional<AudioFormatInfo> format{};
        std::optional<std::string> originalPath{};
    };
    struct EmbeddedMedia;

    [[nodiscard]] std::optional<EmbeddedMedia> embeddedMedia(const OMFUID& mobID) const;
    [[nodiscard]] FoundMedia takeEmbedded(const EmbeddedMedia& media, const OMFUID& mobID,
                                          const std::optional<std::string>& name);
    [[nodiscard]] FoundMedia extract(const EmbeddedMedia& media, std::string_view name);
    [[nodiscard]] FoundMedia findExternal(OMFObject descriptor,
                                          const std::optional<std::string>& name);
    void reportMissing(OMFObject mob, const AAFSourceEssence& essence);

    BoundedReads& reads_;
    const OMFDocument::MobMap& mediaMap_;
    MappingNotes& notes_;
    bool extract_;
    UniqueNames names_;
    MediaSearch& search_;
    ExternalMedia external_;
    KeyedMap<OMFObject, AAFSourceEssence> essenceCache_;
    /// By path: many sources may name one file.
    KeyedMap<std::string, std::optional<AudioFormatInfo>> externalFormats_;
};

}  // namespace trellant
