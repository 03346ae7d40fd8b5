// The decoder behind decodeJson. The JSON library does the grammar and hands over one event after
// the other; this file keeps the places that are being filled on a stack of fixed size, as deep as
// the known types nest. What lies under unknown keys is only counted, so it may nest without end.
//
// Numbers are never taken from the library's conversions: integers beyond 64 bits would silently
// become doubles there, and doubles would depend on the locale.
#include <trellant/base/precondition.h>
#include <trellant/base/printable_text.h>
#include <trellant/json/json_decode.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <limits>

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

namespace trellant {

JsonDecodingError::JsonDecodingError(std::string keyPath, std::string reason)
    : keyPath_(std::move(keyPath)),
      reason_(std::move(reason)),
      description_(keyPath_.empty() ? reason_ : keyPath_ + ": " + reason_) {}

namespace jsonDecoding {

namespace {

// The known types nest eight deep (result, timeline, events, event, fade, points, point, rational).
constexpr std::size_t maxDepth = 16;

/// "line 2, column 7" of a byte of the text, both from 1, columns in bytes.
[[nodiscard]] std::string placeInText(std::string_view text, std::size_t offset) {
    const std::string_view before = text.substr(0, std::min(offset, text.size()));
    const auto line = std::count(before.begin(), before.end(), '\n') + 1;
    const std::size_t lineBreak = before.rfind('\n');
    const std::size_t lineStart = lineBreak == std::string_view::npos ? 0 : lineBreak + 1;
    return "line " + std::to_string(line) + ", column " +
           std::to_string(before.size() - lineStart + 1);
}

class Decoder {
  public:
    Decoder(std::string_view text, ValueSlot root, RecordChecks checks, const StopToken& stop)
        : text_(text), root_(root), checks_(checks), stop_(stop) {}

    void heedStop() const {
        if (stop_.stop_requested()) {
            throw JsonDecodingStopped();
        }
    }

    void null() {
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

    void boolean(bool value) {
        const ValueSlot slot = nextValue();
        if (slot.ops != nullptr) {
            if (slot.ops->setBoolean == nullptr) {
                mismatch(*slot.ops, "a boolean");
            }
            slot.ops->setBoolean(slot.target, value);
        }
    }

    void number(const JsonNumber& number) {
        const ValueSlot slot = nextValue();
        if (slot.ops != nullptr) {
            if (slot.ops->setNumber == nullptr) {
                mismatch(*slot.ops, "a number");
            }
            slot.ops->setNumber(slot.target, number);
        }
    }

    void string(std::string& text) {
        const ValueSlot slot = nextValue();
        if (slot.ops != nullptr) {
            if (slot.ops->setString == nullptr) {
                mismatch(*slot.ops, "a string");
            }
            slot.ops->setString(slot.target, text);
        }
    }

    void beginObject() {
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

    void beginArray() {
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

    void key(std::string_view key) {
        if (ignoredDepth_ == 0) {
            Frame& frame = frames_[depth_ - 1];
            frame.key.reset();
            member_ = frame.ops->member(frame, key);
        }
    }

    void endObject() {
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

    void endArray() {
        if (ignoredDepth_ > 0) {
            --ignoredDepth_;
            return;
        }
        --depth_;
    }

    /// `position` counts the bytes read, the offending one included.
    [[noreturn]] void syntaxError(std::size_t position, std::string_view message) const {
        // The library's message goes on with what it read; the place says that already.
        const std::size_t start = message.rfind(" - ", message.find("; last read"));
        message = message.substr(start == std::string_view::npos ? 0 : start + 3);
        message = message.substr(0, message.find("; last read"));
        throw JsonDecodingError("", "syntax error at " +
                                        placeInText(text_, position == 0 ? 0 : position - 1) +
                                        ": " + printableText(message));
    }

    [[nodiscard]] std::string keyPath() const {
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

  private:
    /// Where the next value belongs; for optional fields that is the field itself.
    [[nodiscard]] ValueSlot nextSlot() {
        if (depth_ == 0) {
            return root_;
        }
        Frame& frame = frames_[depth_ - 1];
        if (!frame.isArray) {
            return member_;
        }
        frame.index += frame.inElement ? 1 : 0;
        frame.inElement = true;
        return frame.ops->element(frame.target);
    }

    /// Where the next value that is not null belongs; no operations when it is ignored.
    [[nodiscard]] ValueSlot nextValue() {
        if (ignoredDepth_ > 0) {
            return {};
        }
        ValueSlot slot = nextSlot();
        while (slot.ops != nullptr && slot.ops->unwrap != nullptr) {
            slot = slot.ops->unwrap(slot.target);
        }
        return slot;
    }

    void push(ValueSlot slot, bool isArray) {
        precondition(depth_ < maxDepth, "JSON types nest deeper than the decoder's stack");
        Frame& frame = frames_[depth_++];
        frame = Frame{};
        frame.ops = slot.ops;
        frame.target = slot.target;
        frame.isArray = isArray;
    }

    [[noreturn]] static void mismatch(const ValueOps& ops, std::string_view found) {
        throw ValueFault{
            std::string("expected ").append(ops.expected).append(", found ").append(found)};
    }

    std::string_view text_;
    ValueSlot root_;
    RecordChecks checks_;
    const StopToken& stop_;
    std::array<Frame, maxDepth> frames_;
    std::size_t depth_ = 0;
    /// The place of the member whose key came last.
    ValueSlot member_;
    /// Open objects and arrays below an ignored key.
    std::size_t ignoredDepth_ = 0;
};

using JsonLibrary = nlohmann::basic_json<std::map, std::vector, std::string, bool, std::int64_t,
                                         std::uint64_t, UnusedDouble>;

/// The library's events, handed on. Every handler returns true: faults are thrown.
class Events {
  public:
    explicit Events(Decoder& decoder) : decoder_(decoder) {}

    bool null() {
        decoder_.null();
        return true;
    }
    bool boolean(bool value) {
        decoder_.boolean(value);
        return true;
    }
    bool number_integer(std::int64_t value) {
        // Only texts with a minus come here, so a zero is minus zero.
        decoder_.number(value == 0 ? JsonNumber(std::string_view("-0.0")) : JsonNumber(value));
        return true;
    }
    bool number_unsigned(std::uint64_t value) {
        if (value <= static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max())) {
            decoder_.number(JsonNumber(static_cast<std::int64_t>(value)));
        } else {
            const std::string text = std::to_string(value);
            decoder_.number(JsonNumber(std::string_view(text)));
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
        decoder_.number(JsonNumber(std::string_view(text)));
        return true;
    }
    bool string(std::string& text) {
        decoder_.string(text);
        return true;
    }
    [[noreturn]] static bool binary(JsonLibrary::binary_t& /*bytes*/) {
        preconditionFailure("JSON text holds no binary values");
    }
    bool start_object(std::size_t /*count*/) {
        decoder_.beginObject();
        return true;
    }
    bool key(std::string& key) {
        decoder_.key(key);
        return true;
    }
    bool end_object() {
        decoder_.endObject();
        return true;
    }
    bool start_array(std::size_t /*count*/) {
        decoder_.beginArray();
        return true;
    }
    bool end_array() {
        decoder_.endArray();
        return true;
    }
    [[noreturn]] bool parse_error(std::size_t position, const std::string& /*token*/,
                                  const nlohmann::detail::exception& error) {
        decoder_.syntaxError(position, error.what());
    }

  private:
    Decoder& decoder_;
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

    TextReader(const Decoder& decoder, const char* at) noexcept : decoder_(&decoder), at_(at) {}
    [[nodiscard]] const char& operator*() const noexcept { return *at_; }
    TextReader& operator++() {
        ++at_;
        if (++bytes_ % bytesBetweenLooks == 0) {
            decoder_->heedStop();
        }
        return *this;
    }
    [[nodiscard]] bool operator==(const TextReader& other) const noexcept {
        return at_ == other.at_;
    }

  private:
    static constexpr std::uint32_t bytesBetweenLooks = 1'024;

    const Decoder* decoder_;
    const char* at_;
    std::uint32_t bytes_ = 0;
};

}  // namespace

void decodeInto(std::string_view text, ValueSlot root, RecordChecks checks, const StopToken& stop) {
    Decoder decoder(text, root, checks, stop);
    // The library would take a NUL for the end of the text.
    const std::size_t nul = text.find('\0');
    if (nul != std::string_view::npos) {
        decoder.syntaxError(nul + 1, "NUL byte");
    }
    Events events(decoder);
    try {
        JsonLibrary::sax_parse(TextReader(decoder, text.data()),
                               TextReader(decoder, text.data() + text.size()), &events);
    } catch (const ValueFault& fault) {
        throw JsonDecodingError(decoder.keyPath(), fault.reason);
    }
}

}  // namespace jsonDecoding

}  // namespace trellant
