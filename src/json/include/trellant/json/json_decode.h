// SPDX-License-Identifier: Apache-2.0
// Records from JSON: strict RFC 8259 in UTF-8, a byte-order mark skipped. Unknown keys are ignored
// whatever lies under them; of equal keys the last wins; a required key that is missing, a type
// that does not fit and a value outside its range are errors that name the key path.
//
// An integer is any number text whose value is whole and in range (1, 1.0, 1e0), read exactly;
// never a fraction, a string or a boolean. A missing or null optional field is absent.
#pragma once

#include <trellant/base/cancellation.h>
#include <trellant/json/json_value_ops.h>

#include <exception>
#include <string>
#include <string_view>

namespace [[gnu::visibility("default")]] trellant {

/// Text that is not the JSON that was expected. what() is one printable line: "KEYPATH: REASON", or
/// the reason alone for a fault of the syntax or of the outermost value.
class JsonDecodingError final : public std::exception {
  public:
    using Kind = jsonDecoding::Misfit;

    JsonDecodingError(std::string keyPath, std::string reason, Kind kind = Kind::corrupt);
    [[nodiscard]] Kind kind() const noexcept { return kind_; }
    /// "timeline.events[3].fadeIn.duration.denominator"; may be empty.
    [[nodiscard]] const std::string& keyPath() const noexcept { return keyPath_; }
    [[nodiscard]] const std::string& reason() const noexcept { return reason_; }
    [[nodiscard]] const char* what() const noexcept override { return description_.c_str(); }

  private:
    Kind kind_;
    std::string keyPath_;
    std::string reason_;
    std::string description_;
};

/// The decoding was told to stop before it was done.
class JsonDecodingStopped final : public std::exception {
  public:
    [[nodiscard]] const char* what() const noexcept override { return "the decoding was stopped"; }
};

enum class RecordChecks {
    /// Each record that has a RecordCheck passes it before it is returned.
    validate,
    /// Shapes only: for tools that show what damaged records hold.
    none
};

namespace jsonDecoding {

/// A value that has its default, and what gives it back to it.
struct RootSlot {
    ValueSlot slot;
    void (*reset)(void* target);
};

template <class T>
[[nodiscard]] RootSlot rootOf(T& value) noexcept {
    return {slotOf(value), [](void* target) { *static_cast<T*>(target) = T{}; }};
}

/// Fills `root` from the whole of `text`; what it holds after an error is unspecified.
void decodeInto(std::string_view text, RootSlot root, RecordChecks checks, const StopToken& stop);

}  // namespace jsonDecoding

/// The value that `text` holds, of any kind that records are made of. Throws JsonDecodingError, and
/// what the check of a record throws that does not pass it. A text of many
/// megabytes takes seconds: a request to `stop` ends it soon, with JsonDecodingStopped.
template <class T>
[[nodiscard]] T decodeJson(std::string_view text, RecordChecks checks = RecordChecks::validate,
                           const StopToken& stop = {}) {
    T value{};
    jsonDecoding::decodeInto(text, jsonDecoding::rootOf(value), checks, stop);
    return value;
}

}  // namespace trellant
