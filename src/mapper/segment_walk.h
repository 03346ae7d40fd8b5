// SPDX-License-Identifier: Apache-2.0
// The walk over one slot's segment tree, from segments to drafts. What it cannot express is
// recorded and walked past, its length still counted, so that later material keeps its time.
//
// Split by question: segment_walk.cpp tells segments apart and follows scopes, sequence_walk.cpp
// walks a sequence with its transitions, effects.cpp an effect with its inputs.
#pragma once

#include "bounded_reads.h"
#include "dissolves.h"
#include "effect_arguments.h"
#include "effect_fold.h"
#include "event_draft.h"
#include "mapping_notes.h"
#include "object_path.h"

#include <trellant/base/keyed_hash.h>
#include <trellant/omf/document.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace trellant {

/// The circumstances of one step of the walk.
struct WalkPlace {
    /// Edit units per second, greater than zero.
    AAFRational rate;
    /// Seconds from the timeline's zero.
    AAFRational timelineBase;
    const ObjectPath& path;
    const ScopeFrame* scopes;
    int depth;
};

class SegmentWalk {
  public:
    /// Levels walked below a slot; what lies deeper is reported.
    static constexpr int maximumDepth = 47;
    /// Segments visited in one request. Shared subtrees let a small file describe an expansion
    /// without end within the depth limit.
    static constexpr std::uint64_t maximumVisits = 10'000'000;

    /// Visits after which `checkExpansion` is called, once. Few compositions are as large, and a
    /// walk up to here needs little memory.
    static constexpr std::uint64_t visitsBeforeCheck = 262'144;

    /// A walk that makes drafts. `checkExpansion` is to throw when the composition expands beyond
    /// `maximumVisits`, before drafts and records of all that fill the memory. All must outlive
    /// the walk.
    SegmentWalk(BoundedReads& reads, MappingNotes& notes, std::function<void()> checkExpansion)
        : reads_(reads),
          notes_(&notes),
          checkExpansion_(std::move(checkExpansion)),
          fold_(std::in_place, reads, notes) {}

    /// A walk that only counts its visits: no drafts, no records.
    explicit SegmentWalk(BoundedReads& reads) : reads_(reads) {}

    ~SegmentWalk() = default;
    SegmentWalk(const SegmentWalk&) = delete;
    SegmentWalk& operator=(const SegmentWalk&) = delete;
    SegmentWalk(SegmentWalk&&) = delete;
    SegmentWalk& operator=(SegmentWalk&&) = delete;

    /// Appends the drafts of `segment` to `drafts` and returns its duration in seconds. Throws
    /// only OMFIOError unsupported, past `maximumVisits` or the bounds of the reads.
    AAFRational flatten(OMFObject segment, const WalkPlace& place, EventDrafts& drafts);

  private:
    struct Transition;
    struct Component;
    using SharedList = std::shared_ptr<const std::vector<OMFObject>>;

    AAFRational flattenSequence(OMFObject sequence, const WalkPlace& place, EventDrafts& drafts);
    AAFRational flattenSelector(OMFObject selector, const WalkPlace& place, EventDrafts& drafts);
    AAFRational flattenNestedScope(OMFObject scope, const WalkPlace& place, EventDrafts& drafts);
    AAFRational flattenScopeReference(OMFObject reference, const WalkPlace& place,
                                      EventDrafts& drafts);

    /// `place` is that of the effect itself: its path and depth.
    AAFRational flattenEffect(OMFObject effect, const WalkPlace& place, EventDrafts& drafts);
    /// The longest input's duration.
    AAFRational flattenInputs(const std::vector<OMFObject>& inputs, const WalkPlace& place,
                              EventDrafts& drafts);

    Component readComponent(OMFObject component, std::size_t index, const Transition* incoming,
                            const Transition* outgoing, const WalkPlace& place);
    void placeClip(const Component& component, const WalkPlace& place, EventDrafts& drafts);
    AAFRational placeNested(const Component& component, const WalkPlace& place,
                            EventDrafts& drafts);
    [[nodiscard]] Transition readTransition(OMFObject transition, const AAFRational& rate);
    /// Records that the transition is played as a cut, once; the cut is placed later.
    std::optional<MappingNotes::RecordIndex> reportCut(const Transition* transition,
                                                       const WalkPlace& place);
    /// Says of a record of `reportCut` that the cut lies at `position`, seconds.
    void placeCut(std::optional<MappingNotes::RecordIndex> record, const Transition& transition,
                  const AAFRational& position, const AAFRational& rate);

    /// Edit units; missing or negative lengths count as 0.
    [[nodiscard]] std::int64_t lengthEditUnits(OMFObject component) const;
    [[nodiscard]] AAFRational lengthSeconds(OMFObject component, const AAFRational& rate) const;
    [[nodiscard]] std::string_view className(OMFObject object) const;
    /// A scope's slots, which many walks may pass; long lists are read once.
    [[nodiscard]] SharedList scopeSlots(OMFObject scope);
    void countVisit();
    [[nodiscard]] bool onlyCounts() const noexcept { return notes_ == nullptr; }
    /// Records what a document of an older model cannot tell of a segment that begins at `start`,
    /// in seconds.
    void reportRemarks(OMFObject segment, const AAFRational& start, const WalkPlace& place);
    /// Records an unsupported feature.
    void report(const Loss& loss, std::string_view message, const ObjectPath& at);
    /// Records that `segment`, which begins at `place`, is silent. Gives its length in seconds.
    AAFRational silence(LossKind kind, std::string_view message, const ObjectPath& at,
                        OMFObject segment, const WalkPlace& place);

    BoundedReads& reads_;
    MappingNotes* notes_ = nullptr;
    std::function<void()> checkExpansion_;
    std::uint64_t visits_ = 0;
    KeyedMap<OMFObject, SharedList> longLists_;
    EffectKinds effectKinds_{reads_};
    EffectArguments effectArguments_{reads_};
    Dissolves dissolves_{reads_, effectKinds_};
    /// Absent in a walk that only counts.
    std::optional<EffectFold> fold_;
};

}  // namespace trellant
