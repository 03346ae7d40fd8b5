// SPDX-License-Identifier: Apache-2.0
#include "expansion.h"

#include <algorithm>
#include <cstdint>
#include <vector>

namespace trellant::fuzzing {

namespace {

/// Below a slot.
constexpr int levels = 48;

using Segments = std::vector<OMFObject>;

/// What references to another track are taken against.
struct Frame {
    const Segments& segments;
    std::int64_t current;
    const Frame* outer;
};

class Count {
  public:
    Count(const OMFDocument& document, std::size_t limit) : document_(document), left_(limit) {}

    /// False when more than the limit were visited, as all others say.
    [[nodiscard]] bool visitSlots(const Segments& segments, const Frame* outer, int depth) {
        for (std::size_t index = 0; index < segments.size(); ++index) {
            const Frame frame{segments, static_cast<std::int64_t>(index), outer};
            if (!visit(segments[index], &frame, depth)) {
                return false;
            }
        }
        return true;
    }

  private:
    [[nodiscard]] bool visit(OMFObject segment, const Frame* scopes, int depth) {
        if (left_ == 0) {
            return false;
        }
        --left_;
        if (depth == levels) {
            return true;
        }
        const OMFClass kind = document_.classOf(segment);
        if (kind == OMFClass::nestedScope) {
            return visitSlots(document_.objectRefs(segment, {OMFProperty::nestedScopeSlots}),
                              scopes, depth + 1);
        }
        if (kind == OMFClass::scopeReference) {
            return visitReferred(segment, scopes, depth + 1);
        }
        const Segments parts = partsOf(segment, kind);
        return std::all_of(parts.begin(), parts.end(),
                           [&](OMFObject part) { return visit(part, scopes, depth + 1); });
    }

    [[nodiscard]] Segments partsOf(OMFObject segment, OMFClass kind) const {
        if (kind == OMFClass::sequence) {
            return document_.objectRefs(segment, {OMFProperty::sequenceComponents});
        }
        Segments parts;
        const auto add = [&](OMFObject object, OMFProperty property) {
            if (const auto part = document_.objectRef(object, {property})) {
                parts.push_back(*part);
            }
        };
        if (kind == OMFClass::selector) {
            add(segment, OMFProperty::selectorSelected);
        } else if (kind == OMFClass::effect) {
            for (const OMFObject slot : document_.objectRefs(segment, {OMFProperty::effectSlots})) {
                add(slot, OMFProperty::effectSlotArgValue);
            }
        }
        return parts;
    }

    [[nodiscard]] bool visitReferred(OMFObject reference, const Frame* scopes, int depth) {
        auto outward = document_.int32(reference, {OMFProperty::scopeReferenceScope}).value_or(0);
        for (; outward > 0 && scopes != nullptr; --outward) {
            scopes = scopes->outer;
        }
        if (outward < 0 || scopes == nullptr) {
            return true;
        }
        const std::int64_t target =
            scopes->current -
            document_.int32(reference, {OMFProperty::scopeReferenceSlot}).value_or(0);
        if (target < 0 || target >= static_cast<std::int64_t>(scopes->segments.size())) {
            return true;
        }
        const Frame moved{scopes->segments, target, scopes->outer};
        return visit(moved.segments[static_cast<std::size_t>(target)], &moved, depth);
    }

    const OMFDocument& document_;
    std::size_t left_;
};

}  // namespace

bool expandsBeyond(const OMFDocument& document, std::size_t limit) {
    Count count(document, limit);
    for (const OMFObject composition : document.objects("CMOB")) {
        Segments segments;
        for (const OMFObject slot : document.objectRefs(composition, {OMFProperty::mobSlots})) {
            segments.push_back(
                document.objectRef(slot, {OMFProperty::slotSegment}).value_or(OMFObject::none));
        }
        if (!count.visitSlots(segments, nullptr, 0)) {
            return true;
        }
    }
    return false;
}

}  // namespace trellant::fuzzing
