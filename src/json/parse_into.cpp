// SPDX-License-Identifier: Apache-2.0
// The way of decoding that explains what is wrong: the JSON library does the grammar and hands over
// one event after the other.
//
// Numbers are never taken from the library's conversions: integers beyond 64 bits would silently
// become doubles there, and doubles would depend on the locale.
#include "decoding_ways.h"
#include "value_filler.h"

#include <trellant/base/cancellation.h>
#include <trellant/base/precondition.h>
#include <trellant/base/printable_text.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <limits>
#include <string>

namespace trellant::jsonDecoding {

namespace {

/// Takes the place of the library's double, which it converts, finds infinite and refuses even
/// where the number is ignored. It is converted into and never looked at.
class UnusedDouble {
  public:
    UnusedDouble(double value = 0) noexcept : value_(value) {}
    operator double&() noexcept { return value_; }
    operator double() const noexcept { return 0; }

  private:
    double value_;
};

}  // namespace

}  // namespace trellant::jsonDecoding

#ifdef _LIBCPP_VERSION
// The library asks this of its double. Most standard libraries convert what is no number by itself,
// clang's does not, and nothing else than an overload beside theirs is found from there.
namespace std {
inline bool isfinite(trellant::jsonDecoding::UnusedDouble /*converted*/) noexcept {
    return true;
}
}  // namespace std
#endif

#define JSON_NO_IO 1
#define JSON_HAS_FILESYSTEM 0
#define JSON_HAS_EXPERIMENTAL_FILESYSTEM 0
#include <nlohmann/json.hpp>

namespace trellant::jsonDecoding {

namespace {

/// "line 2, column 7" of a byte of the text, both from 1, columns in bytes.
[[nodiscard]] std::string placeInText(std::string_view text, std::size_t offset) {
    const std::string_view before = text.substr(0, std::min(offset, text.size()));
    const auto line = std::count(before.begin(), before.end(), '\n') + 1;
    const std::size_t lineBreak = before.rfind('\n');
    const std::size_t lineStart = lineBreak == std::string_view::npos ? 0 : lineBreak + 1;
    return "line " + std::to_string(line) + ", column " +
           std::to_string(before.size() - lineStart + 1);
}

/// `position` counts the bytes read, the offending one included.
[[noreturn]] void syntaxError(std::string_view text, std::size_t position,
                              std::string_view message) {
    // The library's message goes on with what it read; the place says that already.
    const std::size_t start = message.rfind(" - ", message.find("; last read"));
    message = message.substr(start == std::string_view::npos ? 0 : start + 3);
    message = message.substr(0, message.find("; last read"));
    throw JsonDecodingError("", "syntax error at " +
                                    placeInText(text, position == 0 ? 0 : position - 1) + ": " +
                                    printableText(message));
}

using JsonLibrary = nlohmann::basic_json<std::map, std::vector, std::string, bool, std::int64_t,
                                         std::uint64_t, UnusedDouble>;

/// The library's events, handed on. Every handler returns true: faults are thrown.
class Events {
  public:
    Events(std::string_view text, ValueFiller& filler) : text_(text), filler_(filler) {}

    bool null() {
        filler_.null();
        return true;
    }
    bool boolean(bool value) {
        filler_.boolean(value);
        return true;
    }
    bool number_integer(std::int64_t value) {
        // Only texts with a minus come here, so a zero is minus zero.
        filler_.number(value == 0 ? JsonNumber(std::string_view("-0.0")) : JsonNumber(value));
        return true;
    }
    bool number_unsigned(std::uint64_t value) {
        if (value <= static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max())) {
            filler_.number(JsonNumber(static_cast<std::int64_t>(value)));
        } else {
            const std::string text = std::to_string(value);
            filler_.number(JsonNumber(std::string_view(text)));
        }
        return true;
    }
    bool number_float(UnusedDouble /*converted*/, const std::string& read) {
        // The library has put the locale's decimal separator in the place of the point.
        std::string text = read;
        const std::size_t separator = text.find_first_not_of("0123456789+-eE");
        if (separator != std::string::npos) {
            text[separator] = '.';
        }
        filler_.number(JsonNumber(std::string_view(text)));
        return true;
    }
    bool string(std::string& text) {
        filler_.string(text);
        return true;
    }
    [[noreturn]] static bool binary(JsonLibrary::binary_t& /*bytes*/) {
        preconditionFailure("JSON text holds no binary values");
    }
    bool start_object(std::size_t /*count*/) {
        filler_.beginObject();
        return true;
    }
    bool key(std::string& key) {
        filler_.key(key);
        return true;
    }
    bool end_object() {
        filler_.endObject();
        return true;
    }
    bool start_array(std::size_t /*count*/) {
        filler_.beginArray();
        return true;
    }
    bool end_array() {
        filler_.endArray();
        return true;
    }
    [[noreturn]] bool parse_error(std::size_t position, const std::string& /*token*/,
                                  const nlohmann::detail::exception& error) {
        syntaxError(text_, position, error.what());
    }

  private:
    std::string_view text_;
    ValueFiller& filler_;
};

/// Hands the text to the library and heeds a stop meanwhile: by bytes, since one string or one run
/// of blanks may be as long as the text.
class TextReader {
  public:
    using iterator_category = std::input_iterator_tag;
    using value_type = char;
    using difference_type = std::ptrdiff_t;
    using pointer = const char*;
    using reference = const char&;

    TextReader(const StopToken& stop, const char* at) noexcept : stop_(&stop), at_(at) {}
    [[nodiscard]] const char& operator*() const noexcept { return *at_; }
    TextReader& operator++() {
        ++at_;
        if (++bytes_ % bytesBetweenLooks == 0 && stop_->stop_requested()) {
            throw JsonDecodingStopped();
        }
        return *this;
    }
    [[nodiscard]] bool operator==(const TextReader& other) const noexcept {
        return at_ == other.at_;
    }

  private:
    static constexpr std::uint32_t bytesBetweenLooks = 1'024;

    const StopToken* stop_;
    const char* at_;
    std::uint32_t bytes_ = 0;
};

}  // namespace

void parseInto(std::string_view text, ValueSlot root, RecordChecks checks, const StopToken& stop) {
    // The library would take a NUL for the end of the text.
    const std::size_t nul = text.find('\0');
    if (nul != std::string_view::npos) {
        syntaxError(text, nul + 1, "NUL byte");
    }
    ValueFiller filler(root, checks);
    Events events(text, filler);
    try {
        JsonLibrary::sax_parse(TextReader(stop, text.data()),
                               TextReader(stop, text.data() + text.size()), &events);
    } catch (const ValueFault& fault) {
        throw JsonDecodingError(filler.keyPath(), fault.reason, fault.misfit);
    }
}

}  // namespace trellant::jsonDecoding
