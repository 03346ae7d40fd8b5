// SPDX-License-Identifier: Apache-2.0
// From the drafts of a slot to a track of the timeline with its events.
#pragma once

#include "bounded_reads.h"
#include "clip_names.h"
#include "data_kinds.h"
#include "essences.h"
#include "event_draft.h"
#include "mapping_notes.h"
#include "source_resolution.h"

#include <trellant/base/keyed_hash.h>
#include <trellant/mapper/mapper.h>
#include <trellant/model/timeline.h>

#include <cstddef>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace trellant {

/// A slot of the composition on its way to a track.
struct TrackSlot {
    std::size_t index = 0;
    /// "omf-track-12".
    std::string trackID{};
    const ObjectPath& path;
    /// Edit units per second, greater than zero.
    AAFRational editRate{};
    std::optional<std::string> name{};
    /// The name in quotes, or the slot's number counted from 1.
    std::string label{};
};

class TrackBuilder {
  public:
    /// The document's mobs and media by identifier.
    struct Mobs {
        OMFDocument::MobMap mobs;
        OMFDocument::MobMap media;
    };

    /// Tracks and events are appended to `timeline`. All must outlive this.
    TrackBuilder(BoundedReads& reads, const Mobs& mobs, const MappingPlaces& places,
                 MediaSearch& search, DataKinds& dataKinds, MappingNotes& notes,
                 AAFTimeline& timeline)
        : reads_(reads),
          notes_(notes),
          timeline_(timeline),
          sources_(reads, mobs.mobs, dataKinds),
          essences_(reads, mobs.media, places, search, notes),
          clipNames_(reads) {}

    /// The track of a slot that lasts `duration`, unless none of its clips leads to audio. Throws
    /// what extraction throws.
    void build(const TrackSlot& slot, EventDrafts& drafts, const AAFRational& duration);

    /// All essences that events play, by ascending id.
    [[nodiscard]] std::vector<AAFSourceEssence> takeEssences() { return essences_.takeSorted(); }
    /// Gives the losses of clips the clips' names.
    void nameClips(std::vector<LossPlace>& places);

  private:
    struct Audio {
        ResolvedSource source;
        const AAFSourceEssence& essence;
    };

    /// How many events came of the drafts.
    std::size_t buildEvents(const TrackSlot& slot, AAFChannelRole role, EventDrafts& drafts);
    /// False, with a loss recorded, when the draft's audio cannot be resolved.
    bool buildEvent(const TrackSlot& slot, AAFChannelRole role, EventDraft& draft);
    [[nodiscard]] std::variant<Audio, ClipLoss> audioOf(const TrackSlot& slot,
                                                        const EventDraft& draft);

    /// Records what an older model could not tell of a source, once for all of its clips.
    void reportRemarks(OMFObject object);

    BoundedReads& reads_;
    MappingNotes& notes_;
    AAFTimeline& timeline_;
    KeyedSet<OMFObject> remarked_;
    SourceResolution sources_;
    Essences essences_;
    ClipNames clipNames_;
};

}  // namespace trellant
