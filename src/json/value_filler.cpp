// SPDX-License-Identifier: Apache-2.0
#include "value_filler.h"

#include <trellant/base/precondition.h>
#include <trellant/base/printable_text.h>

#include <algorithm>

namespace trellant::jsonDecoding {

namespace {

[[noreturn]] void mismatch(const ValueOps& ops, std::string_view found) {
    throw ValueFault{std::string("expected ").append(ops.expected).append(", found ").append(found),
                     Misfit::wrongType};
}

// An array is guessed at when it holds so many elements, and again at each multiple of it by
// `guessFactor`; no guess reaches beyond the next.
constexpr std::size_t firstGuess = 256;
constexpr std::size_t guessFactor = 1'024;

/// Whether an array of `count` elements is to be guessed at.
bool isGuessDue(std::size_t count) noexcept {
    return count == firstGuess || count == firstGuess * guessFactor;
}

}  // namespace

/// The elements to come are taken to be as long as those before, up to the end of the text.
void ValueFiller::expectElements(const Frame& frame) const {
    if (textLeft_ >= frame.textLeft) {
        return;
    }
    const auto held = static_cast<double>(frame.index);
    const auto bytesOfOne = static_cast<double>(frame.textLeft - textLeft_) / held;
    const double most = static_cast<double>(guessFactor) * held;
    const double guess = std::min(held + static_cast<double>(textLeft_) / bytesOfOne, most);
    frame.ops->expectElements(frame.target, static_cast<std::size_t>(guess));
}

/// Where the next value belongs; for optional fields that is the field itself.
ValueSlot ValueFiller::nextSlot() {
    if (depth_ == 0) {
        return root_;
    }
    Frame& frame = frames_[depth_ - 1];
    if (!frame.isArray) {
        return member_;
    }
    frame.index += frame.inElement ? 1 : 0;
    frame.inElement = true;
    if (isGuessDue(frame.index) && frame.ops->expectElements != nullptr) {
        expectElements(frame);
    }
    return frame.ops->element(frame.target);
}

/// Where the next value that is not null belongs; no operations when it is ignored.
ValueSlot ValueFiller::nextValue() {
    if (ignoredDepth_ > 0) {
        return {};
    }
    ValueSlot slot = nextSlot();
    while (slot.ops != nullptr && slot.ops->unwrap != nullptr) {
        slot = slot.ops->unwrap(slot.target);
    }
    return slot;
}

/// Whether there is one of what the frame of that index holds: members of records alone lead there.
/// Of arrays within arrays each would claim the rest of the text as its own.
bool ValueFiller::standsAlone(std::size_t index) const {
    return std::all_of(
        frames_.begin(), frames_.begin() + static_cast<std::ptrdiff_t>(index),
        [](const Frame& outer) { return !outer.isArray && !outer.ops->fields.empty(); });
}

void ValueFiller::push(ValueSlot slot, bool isArray) {
    precondition(depth_ < maxDepth, "JSON types nest deeper than the decoder's stack");
    Frame& frame = frames_[depth_++];
    frame = Frame{};
    frame.ops = slot.ops;
    frame.target = slot.target;
    frame.isArray = isArray;
    frame.likelyField = slot.ops->firstField;
    frame.textLeft = standsAlone(depth_ - 1) ? textLeft_ : 0;
}

void ValueFiller::null() {
    if (ignoredDepth_ > 0) {
        return;
    }
    const ValueSlot slot = nextSlot();
    if (slot.ops == nullptr) {
        return;
    }
    if (slot.ops->setNull == nullptr) {
        mismatch(*slot.ops, "null");
    }
    slot.ops->setNull(slot.target);
}

void ValueFiller::boolean(bool value) {
    const ValueSlot slot = nextValue();
    if (slot.ops != nullptr) {
        if (slot.ops->setBoolean == nullptr) {
            mismatch(*slot.ops, "a boolean");
        }
        slot.ops->setBoolean(slot.target, value);
    }
}

void ValueFiller::number(const JsonNumber& number) {
    const ValueSlot slot = nextValue();
    if (slot.ops != nullptr) {
        if (slot.ops->setNumber == nullptr) {
            mismatch(*slot.ops, "a number");
        }
        slot.ops->setNumber(slot.target, number);
    }
}

void ValueFiller::string(std::string_view text) {
    const ValueSlot slot = nextValue();
    if (slot.ops != nullptr) {
        if (slot.ops->setString == nullptr) {
            mismatch(*slot.ops, "a string");
        }
        slot.ops->setString(slot.target, text);
    }
}

void ValueFiller::beginObject() {
    const ValueSlot slot = nextValue();
    if (slot.ops == nullptr) {
        ++ignoredDepth_;
        return;
    }
    if (slot.ops->member == nullptr) {
        mismatch(*slot.ops, "an object");
    }
    push(slot, false);
}

void ValueFiller::beginArray() {
    const ValueSlot slot = nextValue();
    if (slot.ops == nullptr) {
        ++ignoredDepth_;
        return;
    }
    if (slot.ops->element == nullptr) {
        mismatch(*slot.ops, "an array");
    }
    push(slot, true);
}

void ValueFiller::key(std::string_view key) {
    if (ignoredDepth_ == 0) {
        Frame& frame = frames_[depth_ - 1];
        frame.key.reset();
        member_ = frame.ops->member(frame, key);
    }
}

void ValueFiller::endObject() {
    if (ignoredDepth_ > 0) {
        --ignoredDepth_;
        return;
    }
    Frame& frame = frames_[depth_ - 1];
    frame.key.reset();
    frame.ops->endObject(frame);
    if (checks_ == RecordChecks::validate && frame.ops->check != nullptr) {
        frame.ops->check(frame.target);
    }
    --depth_;
}

void ValueFiller::endArray() {
    if (ignoredDepth_ > 0) {
        --ignoredDepth_;
        return;
    }
    --depth_;
}

std::string ValueFiller::keyPath() const {
    std::string path;
    for (std::size_t level = 0; level < depth_; ++level) {
        const Frame& frame = frames_[level];
        if (frame.isArray && frame.inElement) {
            path.append("[").append(std::to_string(frame.index)).append("]");
        } else if (frame.key) {
            path.append(path.empty() ? "" : ".").append(printableText(*frame.key));
        }
    }
    return path;
}

}  // namespace trellant::jsonDecoding
