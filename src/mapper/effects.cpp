// SPDX-License-Identifier: Apache-2.0
// Effects: a rendered result is played where the file carries one; gain and pan play their inputs
// and are folded into them; everything else is reported and silent.
#include "segment_walk.h"

#include <trellant/base/text.h>

#include <algorithm>
#include <utility>

namespace trellant {

AAFRational SegmentWalk::flattenEffect(OMFObject effect, const WalkPlace& place,
                                       EventDrafts& drafts) {
    const auto rendering = reads_.objectRef(effect, {OMFProperty::effectFinalRendering});
    if (rendering && reads_.classOf(*rendering) == OMFClass::sourceClip) {
        const ObjectPath path(place.path, "FinalRendering");
        return flatten(*rendering,
                       {place.rate, place.timelineBase, path, place.scopes, place.depth + 1},
                       drafts);
    }
    auto id = effectKinds_.idOf(effect);
    if (id.empty()) {
        return silence(LossKind::effectUnnamed, "effect invocation has no readable EffectID",
                       place.path, effect, place);
    }
    const auto kind = lowerCased(id);
    const bool isGain = kind == "omfi:effect:monoaudiogain";
    if (!isGain && kind != "omfi:effect:monoaudiopan") {
        return silence(LossKind::effectNotRendered,
                       "OMF effect " + id + " is not rendered by TrellantOMFReader", place.path,
                       effect, place);
    }
    const auto arguments = effectArguments_.of(effect);
    if (arguments->inputs.empty()) {
        return silence(LossKind::effectWithoutInput, id + " has no input slot (-1)", place.path,
                       effect, place);
    }
    const auto first = drafts.size();
    auto duration = flattenInputs(arguments->inputs, place, drafts);
    if (duration == AAFRational::zero()) {
        duration = lengthSeconds(effect, place.rate);
    }
    if (fold_) {
        fold_->fold({std::move(id), isGain, *arguments, place.path, {place.timelineBase, duration}},
                    drafts, first);
    }
    return duration;
}

AAFRational SegmentWalk::flattenInputs(const std::vector<OMFObject>& inputs, const WalkPlace& place,
                                       EventDrafts& drafts) {
    AAFRational longest;
    for (std::size_t i = 0; i < inputs.size(); ++i) {
        const ObjectPath path(place.path, "input", i);
        longest = std::max(
            longest,
            flatten(inputs[i],
                    {place.rate, place.timelineBase, path, place.scopes, place.depth + 1}, drafts));
    }
    return longest;
}

}  // namespace trellant
