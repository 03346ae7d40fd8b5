// SPDX-License-Identifier: Apache-2.0
#include <trellant/base/printable_text.h>
#include <trellant/json/json_value_ops.h>

namespace trellant::jsonDecoding {

namespace {

[[noreturn]] void missingKey(Frame& frame, std::string_view key) {
    frame.key = key;
    throw ValueFault{"missing key", Misfit::missingKey};
}

}  // namespace

ValueSlot recordMember(Frame& frame, std::string_view key) {
    std::size_t position = frame.likelyField;
    for (std::size_t looked = 0; looked < frame.ops->fields.size(); ++looked) {
        const FieldSlot& field = frame.ops->fields[position];
        if (field.key != key) {
            position = field.next;
            continue;
        }
        frame.likelyField = field.next;
        const std::uint64_t bit = std::uint64_t{1} << position;
        if ((frame.seen & bit) != 0) {
            field.reset(frame.target);
        }
        frame.seen |= bit;
        frame.key = field.key;
        return {field.ops, field.access(frame.target)};
    }
    return {};
}

void endRecord(Frame& frame) {
    for (std::size_t position = 0; position < frame.ops->fields.size(); ++position) {
        const FieldSlot& field = frame.ops->fields[position];
        if (field.required && (frame.seen >> position & 1U) == 0) {
            missingKey(frame, field.key);
        }
    }
}

ValueSlot pairMember(Frame& frame, std::string_view key,
                     const std::array<std::string_view, 2>& keys) {
    for (std::size_t position = 0; position < keys.size(); ++position) {
        if (keys[position] == key) {
            frame.seen |= std::uint64_t{1} << position;
            frame.key = keys[position];
            return slotOf(frame.parts[position]);
        }
    }
    return {};
}

void endPair(Frame& frame, const std::array<std::string_view, 2>& keys) {
    for (std::size_t position = 0; position < keys.size(); ++position) {
        if ((frame.seen >> position & 1U) == 0) {
            missingKey(frame, keys[position]);
        }
    }
}

void unknownRawValue(std::string_view text) {
    throw ValueFault{"unknown value \"" + printableText(text) + "\""};
}

}  // namespace trellant::jsonDecoding
