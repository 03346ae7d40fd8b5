#include <trellant/model/json_value_ops.h>
#include <trellant/model/printable_text.h>

namespace trellant::jsonDecoding {

namespace {

constexpr std::string_view numeratorKey = "numerator";
constexpr std::string_view denominatorKey = "denominator";
constexpr std::array<std::string_view, 2> rationalKeys{numeratorKey, denominatorKey};

[[noreturn]] void missingKey(Frame& frame, std::string_view key) {
    frame.key = key;
    throw ValueFault{"missing key"};
}

}  // namespace

ValueSlot recordMember(Frame& frame, std::string_view key) {
    for (std::size_t position = 0; position < frame.ops->fields.size(); ++position) {
        const FieldSlot& field = frame.ops->fields[position];
        if (field.key != key) {
            continue;
        }
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

ValueSlot rationalMember(Frame& frame, std::string_view key) {
    for (std::size_t position = 0; position < rationalKeys.size(); ++position) {
        if (rationalKeys[position] == key) {
            frame.seen |= std::uint64_t{1} << position;
            frame.key = rationalKeys[position];
            return slotOf(frame.parts[position]);
        }
    }
    return {};
}

void endRational(Frame& frame) {
    for (std::size_t position = 0; position < rationalKeys.size(); ++position) {
        if ((frame.seen >> position & 1U) == 0) {
            missingKey(frame, rationalKeys[position]);
        }
    }
    if (frame.parts[1] == 0) {
        frame.key = denominatorKey;
        throw ValueFault{"AAFRational denominator must not be zero"};
    }
    *static_cast<AAFRational*>(frame.target) = AAFRational(frame.parts[0], frame.parts[1]);
}

void unknownRawValue(std::string_view text) {
    throw ValueFault{"unknown value \"" + printableText(text) + "\""};
}

}  // namespace trellant::jsonDecoding
