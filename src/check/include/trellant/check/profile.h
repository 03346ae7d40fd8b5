// SPDX-License-Identifier: Apache-2.0
// What a house asks of a hand-off: which rules hold, how much they weigh, with which values, and
// what is accepted all the same. A JSON document (schema/profile.schema.json).
#pragma once

#include <trellant/check/rule.h>

#include <exception>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace [[gnu::visibility("default")]] trellant {
namespace check {

/// Findings that are known and no fault. "*" in a pattern stands for any characters, "?" for one.
struct Acceptance {
    /// The id of a rule.
    std::string rule{};
    /// Name of the OMF file without folders, of the track, clip or audio file; absent: any.
    std::optional<std::string> file{};
    std::optional<std::string> track{};
    std::optional<std::string> clip{};
    std::optional<std::string> audioFile{};
    std::string reason{};
    bool operator==(const Acceptance&) const = default;
};

struct Profile {
    std::string name{};
    /// Audio is to be read for it.
    bool audio = false;
    /// One for each of allRules(), in their order.
    std::vector<RuleSettings> settings{};
    /// Those of the profiles that it extends first.
    std::vector<Acceptance> accept{};
};

/// A profile that says nothing sensible; what() is one line for people that names the key.
class ProfileError final : public std::exception {
  public:
    explicit ProfileError(std::string text) : text_(std::move(text)) {}
    [[nodiscard]] const char* what() const noexcept override { return text_.c_str(); }

  private:
    std::string text_;
};

/// A profile that comes with the program.
struct BuiltInProfile {
    std::string_view name;
    /// For whom, in a few words.
    std::string_view meaning;
    /// The document.
    std::string_view text;
};

/// "post" first: that holds where nobody names one.
[[nodiscard]] std::span<const BuiltInProfile> builtInProfiles();

/// The profile that comes with the program; absent where there is none of that name.
[[nodiscard]] std::optional<Profile> builtInProfile(std::string_view name);

/// The text of a profile that another one extends, by the name that stands there and is none of
/// those that come with the program. Throws ProfileError.
using ProfileFinder = std::function<std::string(const std::string& name)>;

/// At most so many entries of `accept`, with those of the profiles that are extended.
inline constexpr std::size_t mostAcceptances = 1'000;
/// Profiles that extend one another, at most.
inline constexpr std::size_t mostExtended = 8;

/// Reads a profile. `name` is what it is called where it does not say so itself. Throws
/// ProfileError for what is no JSON, unknown rules and keys (naming the nearest known one), values
/// of another kind or out of range, and profiles that extend one another in a circle.
[[nodiscard]] Profile readProfile(std::string_view text, const std::string& name,
                                  const ProfileFinder& finder);

}  // namespace check
}  // namespace trellant
