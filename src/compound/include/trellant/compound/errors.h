// SPDX-License-Identifier: Apache-2.0
// What a compound file cannot hold.
#pragma once

#include <cstdint>
#include <exception>
#include <string>
#include <variant>

namespace [[gnu::visibility("default")]] trellant {
namespace compound {

/// A tree that no compound file can hold. what() says so for a person.
class CompoundError final : public std::exception {
  public:
    enum class NameProblem { empty, moreThan31Units, forbiddenCharacter, unpairedSurrogate };
    struct InvalidName {
        std::u16string name;
        NameProblem problem;
        bool operator==(const InvalidName&) const = default;
    };
    /// Two entries of one storage whose names differ at most in case. `name` is that of one of
    /// them.
    struct DuplicateName {
        std::u16string name;
        bool operator==(const DuplicateName&) const = default;
    };
    enum class Bound {
        /// Storages and streams together: 4,294,967,291 with the root.
        entries,
        /// Of 4096 bytes each: 4,294,967,291.
        sectors,
        /// Of 64 bytes each, of all streams below 4096 bytes: 4,294,967,291.
        miniSectors,
    };
    struct TooLarge {
        Bound bound;
        bool operator==(const TooLarge&) const = default;
    };
    /// A source that gave more or fewer bytes than its stream was said to have.
    struct WrongStreamLength {
        std::u16string name;
        std::uint64_t expected;
        /// What it gave up to the piece that was too much, that piece included.
        std::uint64_t got;
        bool operator==(const WrongStreamLength&) const = default;
    };
    using Fault = std::variant<InvalidName, DuplicateName, TooLarge, WrongStreamLength>;

    explicit CompoundError(Fault fault);

    /// What is wrong, as data.
    [[nodiscard]] const Fault& fault() const noexcept { return fault_; }
    [[nodiscard]] const char* what() const noexcept override { return description_.c_str(); }

  private:
    Fault fault_;
    std::string description_;
};

}  // namespace compound
}  // namespace trellant
