// SPDX-License-Identifier: Apache-2.0
// The places that are being filled while a text is read. Whoever reads the grammar hands over one
// event after the other; the places stand on a stack of fixed size, as deep as the known types
// nest. What lies under unknown keys is only counted, so it may nest without end.
#pragma once

#include <trellant/json/json_decode.h>

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

namespace trellant::jsonDecoding {

/// Every event throws ValueFault when it does not fit its place, and `endObject` what the check of
/// a record throws. The events must be those of one well-formed document.
class ValueFiller {
  public:
    ValueFiller(ValueSlot root, RecordChecks checks) noexcept : root_(root), checks_(checks) {}

    void null();
    void boolean(bool value);
    void number(const JsonNumber& number);
    void string(std::string_view text);
    void beginObject();
    void beginArray();
    void key(std::string_view key);
    void endObject();
    void endArray();

    /// How many bytes of the text are to come, told before an array begins and before each of its
    /// values: by that the filler guesses how long a long array becomes, since moving a hundred
    /// thousand records to a larger place again and again costs more than a guess. Whoever does not
    /// tell gets no guess.
    void textLeft(std::size_t bytes) noexcept { textLeft_ = bytes; }

    /// Where the last event belongs: "events[3].id"; one printable line.
    [[nodiscard]] std::string keyPath() const;

  private:
    // The known types nest eight deep (result, timeline, events, event, fade, points, point,
    // rational).
    static constexpr std::size_t maxDepth = 16;

    void expectElements(const Frame& frame) const;
    [[nodiscard]] bool standsAlone(std::size_t index) const;
    [[nodiscard]] ValueSlot nextSlot();
    [[nodiscard]] ValueSlot nextValue();
    void push(ValueSlot slot, bool isArray);

    ValueSlot root_;
    RecordChecks checks_;
    std::array<Frame, maxDepth> frames_;
    std::size_t depth_ = 0;
    /// The place of the member whose key came last.
    ValueSlot member_;
    /// Open objects and arrays below an ignored key.
    std::size_t ignoredDepth_ = 0;
    std::size_t textLeft_ = 0;
};

}  // namespace trellant::jsonDecoding
