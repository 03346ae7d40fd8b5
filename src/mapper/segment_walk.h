// The walk over one slot's segment tree, from segments to drafts. What it cannot express is
// recorded and walked past, its length still counted, so that later material keeps its time.
//
// Split by question: segment_walk.cpp tells segments apart and follows scopes, sequence_walk.cpp
// walks a sequence with its transitions, effects.cpp folds effects into drafts, fades.cpp reads
// fades and dissolves, automation.cpp reads varying values.
#pragma once

#include "bounded_reads.h"
#include "event_draft.h"
#include "mapping_notes.h"
#include "object_path.h"

#include <trellant/omf/document.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

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
        : document_(reads.document()),
          reads_(reads),
          notes_(&notes),
          checkExpansion_(std::move(checkExpansion)) {}

    /// A walk that only counts its visits: no drafts, no records.
    explicit SegmentWalk(BoundedReads& reads) : document_(reads.document()), reads_(reads) {}

    /// Appends the drafts of `segment` to `drafts` and returns its duration in seconds. Throws
    /// only OMFIOError unsupported, past `maximumVisits` or the bounds of the reads.
    AAFRational flatten(OMFObject segment, const WalkPlace& place, EventDrafts& drafts);

  private:
    struct Transition;
    struct Component;
    struct Effect;
    struct EffectArguments {
        /// In slot order.
        std::vector<OMFObject> inputs{};
        std::optional<OMFObject> control{};
        std::optional<OMFObject> gainAutomation{};
    };
    using SharedArguments = std::shared_ptr<const EffectArguments>;
    using SharedList = std::shared_ptr<const std::vector<OMFObject>>;
    using Envelope = Boxed<AAFAutomationEnvelope>;

    AAFRational flattenSequence(OMFObject sequence, const WalkPlace& place, EventDrafts& drafts);
    AAFRational flattenSelector(OMFObject selector, const WalkPlace& place, EventDrafts& drafts);
    AAFRational flattenNestedScope(OMFObject scope, const WalkPlace& place, EventDrafts& drafts);
    AAFRational flattenScopeReference(OMFObject reference, const WalkPlace& place,
                                      EventDrafts& drafts);

    /// `place` is that of the effect itself: its path and depth.
    AAFRational flattenEffect(OMFObject effect, const WalkPlace& place, EventDrafts& drafts);
    /// The folds work on the drafts from `first` on, those of the effect's inputs.
    void foldArguments(const Effect& effect, EventDrafts& drafts, std::size_t first);
    void foldGainAutomation(const Effect& effect, OMFObject varying, EventDrafts& drafts,
                            std::size_t first);
    void foldConstant(const Effect& effect, OMFObject control, EventDrafts& drafts,
                      std::size_t first);
    void foldVarying(const Effect& effect, OMFObject control, EventDrafts& drafts,
                     std::size_t first);
    void giveGainAutomation(const Effect& effect, const Envelope& envelope, EventDrafts& drafts,
                            std::size_t first);
    /// The arguments of gain and pan; those of effects with many slots are read once.
    [[nodiscard]] SharedArguments effectArguments(OMFObject effect);
    [[nodiscard]] EffectArguments readArguments(const std::vector<OMFObject>& slots) const;
    /// The first slot with that argument id whose value is readable.
    [[nodiscard]] std::optional<OMFObject> effectArgument(const std::vector<OMFObject>& slots,
                                                          std::int32_t argID) const;
    /// Empty when it cannot be read.
    [[nodiscard]] std::string effectID(OMFObject effect);

    /// The varying value as an envelope; none when it is no VVAL, has no points or one that cannot
    /// be read. Points keep their stored times, fractions of the owner.
    [[nodiscard]] Envelope automationEnvelope(OMFObject value, const Effect& effect);
    [[nodiscard]] Envelope readEnvelope(OMFObject value, AAFAutomationInterpolation curve);

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

    /// `placed`: where the clip lies on the timeline.
    [[nodiscard]] Boxed<AAFFade> fade(OMFObject clip, AAFFade::Direction direction,
                                      const AAFRational& rate, const LossRange& placed);
    /// Seconds; absent unless the transition is a plain linear audio dissolve.
    [[nodiscard]] std::optional<AAFRational> simpleLinearDissolveDuration(OMFObject transition,
                                                                          const AAFRational& rate);
    [[nodiscard]] bool isSimpleLinearDissolve(OMFObject transition);
    [[nodiscard]] bool hasLinearLevel(OMFObject dissolveEffect);
    [[nodiscard]] bool isLinearLevel(OMFObject level);

    /// Edit units; missing or negative lengths count as 0.
    [[nodiscard]] std::int64_t lengthEditUnits(OMFObject component) const;
    [[nodiscard]] AAFRational lengthSeconds(OMFObject component, const AAFRational& rate) const;
    [[nodiscard]] std::string_view className(OMFObject object) const;
    /// A scope's slots, which many walks may pass; long lists are read once.
    [[nodiscard]] SharedList scopeSlots(OMFObject scope);
    void countVisit();
    [[nodiscard]] bool onlyCounts() const noexcept { return notes_ == nullptr; }
    /// Records an unsupported feature.
    void report(const Loss& loss, std::string_view message, const ObjectPath& at);
    /// Records that `segment`, which begins at `place`, is silent. Gives its length in seconds.
    AAFRational silence(LossKind kind, std::string_view message, const ObjectPath& at,
                        OMFObject segment, const WalkPlace& place);

    const OMFDocument& document_;
    BoundedReads& reads_;
    MappingNotes* notes_ = nullptr;
    std::function<void()> checkExpansion_;
    std::uint64_t visits_ = 0;
    /// Answers by dissolve effect: transitions may share one, or its level.
    std::unordered_map<OMFObject, bool> linearLevels_;
    std::unordered_map<OMFObject, bool> linearEffects_;
    std::unordered_map<OMFObject, Envelope> envelopes_;
    std::unordered_map<OMFObject, SharedList> longLists_;
    std::unordered_map<OMFObject, SharedArguments> longArguments_;
    /// By effect definition; few are kept, and files have few.
    std::unordered_map<OMFObject, std::string> effectIDs_;
};

/// One side of a plain linear dissolve, `duration` in seconds.
[[nodiscard]] AAFFade dissolveFade(AAFFade::Direction direction, const AAFRational& duration);

}  // namespace trellant
