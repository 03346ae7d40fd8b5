// SPDX-License-Identifier: Apache-2.0
// The quick way of decoding: the grammar of RFC 8259 over text that lies in memory as a whole. It
// only tells whether a text is right; what is wrong with one, parseInto finds out.
#include "decoding_ways.h"
#include "quoted_text.h"
#include "text_cursor.h"
#include "value_filler.h"

#include <trellant/base/cancellation.h>

#include <charconv>
#include <cstdint>
#include <optional>
#include <string>
#include <system_error>
#include <vector>

namespace trellant::jsonDecoding {

namespace {

/// How many digits stand at the head of `text`.
constexpr std::size_t digitCount(std::string_view text) noexcept {
    std::size_t count = 0;
    while (count < text.size() && text[count] >= '0' && text[count] <= '9') {
        ++count;
    }
    return count;
}

/// A function that returns false has met what is not JSON.
class Scanner {
  public:
    Scanner(std::string_view text, ValueFiller& filler, const StopToken& stop)
        : cursor_(text, stop), filler_(filler) {
        cursor_.skip(text.starts_with("\xEF\xBB\xBF") ? 3 : 0);
    }

    [[nodiscard]] bool document() {
        do {
            if (!value()) {
                return false;
            }
            while (!valueIsDue_ && !outer_.empty()) {
                if (!afterValue()) {
                    return false;
                }
            }
        } while (valueIsDue_);
        static_cast<void>(cursor_.peekToken());
        return cursor_.atEnd();
    }

  private:
    /// A whole scalar, an empty object or array, or the head of one up to its first value.
    [[nodiscard]] bool value() {
        valueIsDue_ = false;
        switch (cursor_.peekToken()) {
            case '"':
                return string();
            case '{':
                return beginObject();
            case '[':
                return beginArray();
            case 't':
                return word("true", [&] { filler_.boolean(true); });
            case 'f':
                return word("false", [&] { filler_.boolean(false); });
            case 'n':
                return word("null", [&] { filler_.null(); });
            default:
                return number();
        }
    }

    /// A comma and what stands before the next value, or the end of the innermost object or array.
    [[nodiscard]] bool afterValue() {
        if (cursor_.peekToken() == ',') {
            cursor_.skipPeeked();
            valueIsDue_ = true;
            if (!inArray_) {
                return key();
            }
            filler_.textLeft(cursor_.rest().size());
            return true;
        }
        if (inArray_ ? !endsArray() : !endsObject()) {
            return false;
        }
        inArray_ = outer_.back();
        outer_.pop_back();
        return true;
    }

    [[nodiscard]] bool beginObject() {
        cursor_.skipPeeked();
        filler_.beginObject();
        if (endsObject()) {
            return true;
        }
        enter(false);
        return key();
    }

    [[nodiscard]] bool beginArray() {
        cursor_.skipPeeked();
        filler_.textLeft(cursor_.rest().size());
        filler_.beginArray();
        if (endsArray()) {
            return true;
        }
        enter(true);
        return true;
    }

    void enter(bool isArray) {
        outer_.push_back(inArray_);
        inArray_ = isArray;
        valueIsDue_ = true;
    }

    [[nodiscard]] bool endsObject() {
        if (cursor_.peekToken() != '}') {
            return false;
        }
        cursor_.skipPeeked();
        filler_.endObject();
        return true;
    }

    [[nodiscard]] bool endsArray() {
        if (cursor_.peekToken() != ']') {
            return false;
        }
        cursor_.skipPeeked();
        filler_.endArray();
        return true;
    }

    /// A key and its colon.
    [[nodiscard]] bool key() {
        if (cursor_.peekToken() != '"') {
            return false;
        }
        const std::optional<std::string_view> text = readQuotedText(cursor_, unescaped_);
        if (!text || cursor_.peekToken() != ':') {
            return false;
        }
        cursor_.skipPeeked();
        filler_.key(*text);
        return true;
    }

    [[nodiscard]] bool string() {
        const std::optional<std::string_view> text = readQuotedText(cursor_, unescaped_);
        if (text) {
            filler_.string(*text);
        }
        return text.has_value();
    }

    template <class Deliver>
    [[nodiscard]] bool word(std::string_view word, Deliver deliver) {
        if (!cursor_.rest().starts_with(word)) {
            return false;
        }
        cursor_.skip(word.size());
        deliver();
        return true;
    }

    [[nodiscard]] bool number() {
        const char* const start = cursor_.position();
        if (cursor_.peek() == '-') {
            cursor_.skipPeeked();
        }
        if (cursor_.peek() == '0') {
            cursor_.skipPeeked();
        } else if (!digits()) {
            return false;
        }
        bool isWhole = true;
        if (cursor_.peek() == '.') {
            isWhole = false;
            cursor_.skipPeeked();
            if (!digits()) {
                return false;
            }
        }
        if (const char mark = cursor_.peek(); mark == 'e' || mark == 'E') {
            isWhole = false;
            cursor_.skipPeeked();
            if (const char sign = cursor_.peek(); sign == '+' || sign == '-') {
                cursor_.skipPeeked();
            }
            if (!digits()) {
                return false;
            }
        }
        filler_.number(numberOf(cursor_.since(start), isWhole));
        return true;
    }

    /// One digit or more.
    [[nodiscard]] bool digits() {
        const char* const start = cursor_.position();
        cursor_.skipRun(digitCount);
        return cursor_.position() != start;
    }

    [[nodiscard]] static JsonNumber numberOf(std::string_view text, bool isWhole) noexcept {
        std::int64_t value = 0;
        // Minus zero is a double of its own, so its text is kept.
        if (isWhole && text != "-0" &&
            std::from_chars(text.data(), text.data() + text.size(), value).ec == std::errc()) {
            return JsonNumber(value);
        }
        return JsonNumber(text);
    }

    TextCursor cursor_;
    ValueFiller& filler_;
    /// Whether a value must come next: the first one, or that of a key or an element.
    bool valueIsDue_ = true;
    /// Whether the innermost open object or array is an array, and the same of those around it; for
    /// the outermost, of nothing around it.
    bool inArray_ = false;
    std::vector<bool> outer_;
    std::string unescaped_;
};

}  // namespace

bool scanInto(std::string_view text, ValueSlot root, RecordChecks checks, const StopToken& stop) {
    ValueFiller filler(root, checks);
    try {
        return Scanner(text, filler, stop).document();
    } catch (const ValueFault&) {
        return false;
    }
}

}  // namespace trellant::jsonDecoding
