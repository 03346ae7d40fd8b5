// SPDX-License-Identifier: Apache-2.0
// Mono gain and mono pan, folded into the drafts of the effect's inputs.
#pragma once

#include "automation_envelopes.h"
#include "effect_arguments.h"
#include "event_draft.h"
#include "mapping_notes.h"

#include <cstddef>
#include <string>

namespace trellant {

/// An invocation of gain or pan on its way into the drafts.
struct FoldedEffect {
    /// As the file writes it.
    std::string id{};
    /// Else it is a pan.
    bool isGain = false;
    const EffectArguments::Values& arguments;
    const ObjectPath& path;
    LossRange range{};

    [[nodiscard]] Loss loss(LossKind kind) const { return {.kind = kind, .range = range}; }
};

class EffectFold {
  public:
    /// Both must outlive this.
    EffectFold(BoundedReads& reads, MappingNotes& notes)
        : reads_(reads), notes_(notes), envelopes_(reads) {}

    /// Works on the drafts from `first` on, those of the effect's inputs: of drafts that place the
    /// same clip at the same time one is left, and each takes on the gain or pan. What cannot be
    /// folded is recorded.
    void fold(const FoldedEffect& effect, EventDrafts& drafts, std::size_t first);

  private:
    using Envelope = Boxed<AAFAutomationEnvelope>;

    void foldControl(const FoldedEffect& effect, EventDrafts& drafts, std::size_t first);
    void foldGainAutomation(const FoldedEffect& effect, OMFObject varying, EventDrafts& drafts,
                            std::size_t first);
    void foldConstant(const FoldedEffect& effect, OMFObject control, EventDrafts& drafts,
                      std::size_t first);
    void foldVarying(const FoldedEffect& effect, OMFObject control, EventDrafts& drafts,
                     std::size_t first);
    void giveGainAutomation(const FoldedEffect& effect, const Envelope& envelope,
                            EventDrafts& drafts, std::size_t first);
    /// Of a varying value; a curve that is not known is recorded, each time.
    [[nodiscard]] Envelope envelopeOf(OMFObject varying, const FoldedEffect& effect);

    BoundedReads& reads_;
    MappingNotes& notes_;
    AutomationEnvelopes envelopes_;
};

}  // namespace trellant
