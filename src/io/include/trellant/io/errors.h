// SPDX-License-Identifier: Apache-2.0
// The errors of the file-access stack. Two kinds, told apart by what a person does about them: the
// file is damaged or unusual (OMFIOError), or the system refused something (FileSystemError).
#pragma once

#include <cstdint>
#include <exception>
#include <string>
#include <variant>

namespace [[gnu::visibility("default")]] trellant {

/// A fault of the file itself. what() is errorDescription().
class OMFIOError final : public std::exception {
  public:
    /// A range of bytes that leaves the file; all three in bytes.
    struct OutOfBounds {
        std::uint64_t offset;
        std::uint64_t length;
        std::uint64_t fileSize;
        bool operator==(const OutOfBounds&) const = default;
    };
    /// The file gave fewer bytes than its size promised.
    struct ShortRead {
        std::int64_t expected;
        std::int64_t got;
        bool operator==(const ShortRead&) const = default;
    };
    /// The structure is broken; `text` says how.
    struct Malformed {
        std::string text;
        bool operator==(const Malformed&) const = default;
    };
    /// The structure is sound, but beyond what is read here.
    struct Unsupported {
        std::string text;
        bool operator==(const Unsupported&) const = default;
    };
    using Fault = std::variant<OutOfBounds, ShortRead, Malformed, Unsupported>;

    explicit OMFIOError(Fault fault);
    [[nodiscard]] static OMFIOError malformed(std::string text);
    [[nodiscard]] static OMFIOError unsupported(std::string text);

    /// What is wrong, as data.
    [[nodiscard]] const Fault& fault() const noexcept { return fault_; }
    /// "Malformed OMF/Bento file: ..." and its siblings, for a person.
    [[nodiscard]] const std::string& errorDescription() const noexcept { return description_; }
    [[nodiscard]] const char* what() const noexcept override { return description_.c_str(); }

  private:
    Fault fault_;
    std::string description_;
};

/// A refusal of the operating system. what() reads: cannot open "PATH": No such file or directory
class FileSystemError final : public std::exception {
  public:
    /// `action` completes "cannot ..." ("open", "create directory"); `path` is shown with what is
    /// not UTF-8 replaced; `errorNumber` is an errno value.
    FileSystemError(const std::string& action, const std::string& path, int errorNumber);

    /// The errno value.
    [[nodiscard]] int errorNumber() const noexcept { return errorNumber_; }
    [[nodiscard]] const char* what() const noexcept override { return description_.c_str(); }

  private:
    int errorNumber_;
    std::string description_;
};

}  // namespace trellant
