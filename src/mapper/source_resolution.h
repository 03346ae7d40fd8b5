// SPDX-License-Identifier: Apache-2.0
// Where a Source Clip's audio lies: the chain of mobs from the clip to the Source Mob that
// describes a media file, the track of that mob, and the offset into the media.
#pragma once

#include "bounded_reads.h"
#include "clip_loss.h"
#include "data_kinds.h"

#include <trellant/base/keyed_hash.h>
#include <trellant/omf/document.h>

#include <cstdint>
#include <optional>
#include <variant>
#include <vector>

namespace trellant {

struct ResolvedSource {
    /// The Source Mob at which the chain ends.
    OMFObject mob = OMFObject::none;
    OMFUID mobID;
    /// Seconds into that mob's media where the clip's first sample lies.
    AAFRational start{};
    /// Channel of the media, from 0.
    std::int64_t channel = 0;
    /// The track gives no usable physical track number, so `channel` is a default.
    bool channelDefaulted = false;
};

using SourceOrLoss = std::variant<ResolvedSource, ClipLoss>;

class SourceResolution {
  public:
    /// Source Clips followed in one chain.
    static constexpr std::size_t maximumDepth = 32;

    /// All must outlive this. Walks all Source Mobs once.
    SourceResolution(BoundedReads& reads, const OMFDocument::MobMap& mobMap, DataKinds& dataKinds);

    /// `rate`: edit units per second in which the clip's start counts; `initialTrim`: seconds cut
    /// from the head already. The reason when the chain leads to no audio source. Throws only past
    /// the bounds of the reads.
    [[nodiscard]] SourceOrLoss resolveSourceClip(OMFObject clip, AAFRational rate,
                                                 const AAFRational& initialTrim);

    /// Those of the mobs and clips behind the clip that was resolved last of which an older model
    /// could not tell all, as they were passed.
    [[nodiscard]] const std::vector<OMFObject>& passed() const noexcept { return passed_; }

    /// Whether a chain ends at this mob: a Source Mob that describes a file of sound.
    [[nodiscard]] bool isAudioSource(OMFObject mob);

  private:
    /// A mob's track as the walk needs it, read once per (mob, track).
    struct Track {
        /// Absent when the mob has no such track or its slot no usable edit rate.
        std::optional<AAFRational> editRate;
        /// Seconds.
        AAFRational origin;
        bool isAudioSource = false;
        std::int64_t channel = 0;
        bool channelDefaulted = true;
        std::optional<OMFObject> segment;
    };

    /// The track that a clip plays.
    struct Reference {
        OMFObject mob = OMFObject::none;
        OMFUID mobID;
        std::uint32_t trackID = 0;
    };

    /// The reason when the clip names no mob of the file.
    [[nodiscard]] std::variant<Reference, ClipLoss> referenceOf(OMFObject clip) const;
    [[nodiscard]] ClipLoss deadEnd(OMFObject clip, const Reference& reference,
                                   const Track& found) const;

    [[nodiscard]] const Track& track(OMFObject mob, std::uint32_t trackID);
    [[nodiscard]] Track readTrack(OMFObject mob, std::uint32_t trackID);
    [[nodiscard]] std::optional<OMFObject> findSlot(OMFObject mob, std::uint32_t trackID);
    void indexSlots(OMFObject mob);
    /// Whether the Source Mob that owns the descriptor has a sound track.
    [[nodiscard]] bool descriptorHasAudioHint(OMFObject descriptor);
    [[nodiscard]] bool hasSoundSlot(OMFObject mob);

    void pass(OMFObject object);

    BoundedReads& reads_;
    const OMFDocument::MobMap& mobMap_;
    DataKinds& dataKinds_;
    std::vector<OMFObject> passed_;
    /// Keys: mob in the high, track number in the low half.
    KeyedMap<std::uint64_t, Track> tracks_;
    KeyedMap<std::uint64_t, OMFObject> slots_;
    KeyedSet<OMFObject> slotsIndexed_;
    /// From a descriptor to the first Source Mob that has it, and from there to the answer.
    KeyedMap<OMFObject, OMFObject> ownerOfDescriptor_;
    KeyedMap<OMFObject, bool> audioHints_;
};

}  // namespace trellant
