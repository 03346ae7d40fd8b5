// SPDX-License-Identifier: Apache-2.0
// What no AAF file can hold.
#pragma once

#include <cstdint>
#include <exception>
#include <string>
#include <variant>

namespace [[gnu::visibility("default")]] trellant {
namespace aaf {

/// Values that cannot be written. what() says so for a person.
class AafError final : public std::exception {
  public:
    /// A value of a property is longer than 65,535 bytes. `property` is its name: "URLString".
    struct ValueTooLong {
        std::string property;
        std::uint64_t byteCount;
        bool operator==(const ValueTooLong&) const = default;
    };
    /// A text with a zero character, which would end it early.
    struct ZeroInText {
        std::string property;
        bool operator==(const ZeroInText&) const = default;
    };
    /// A second object of the same identifier where each must have its own: "Mobs", "Slots",
    /// "EssenceData", "Parameters".
    struct Duplicate {
        std::string property;
        bool operator==(const Duplicate&) const = default;
    };
    /// The lengths in a Sequence add up to more than 64 bits or to less than nothing.
    struct LengthOutOfRange {
        bool operator==(const LengthOutOfRange&) const = default;
    };
    /// A Transition at an end of a Sequence, or beside another one.
    struct MisplacedTransition {
        bool operator==(const MisplacedTransition&) const = default;
    };
    /// A rate or a value with the denominator 0, or a rate that is not above 0.
    struct InvalidRational {
        std::string property;
        bool operator==(const InvalidRational&) const = default;
    };
    using Fault = std::variant<ValueTooLong, ZeroInText, Duplicate, LengthOutOfRange,
                               MisplacedTransition, InvalidRational>;

    explicit AafError(Fault fault);

    /// What is wrong, as data.
    [[nodiscard]] const Fault& fault() const noexcept { return fault_; }
    [[nodiscard]] const char* what() const noexcept override { return description_.c_str(); }

  private:
    Fault fault_;
    std::string description_;
};

}  // namespace aaf
}  // namespace trellant
