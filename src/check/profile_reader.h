// SPDX-License-Identifier: Apache-2.0
// One document of a profile, laid over the one that it extends.
#pragma once

#include <trellant/check/profile.h>
#include <trellant/json/json_tree.h>

#include <optional>
#include <string>
#include <string_view>

namespace trellant::check {

/// Every rule with its defaults.
[[nodiscard]] Profile standardProfile();

class ProfileReader {
  public:
    /// Throws ProfileError for what is no object of JSON. `name` stands before every fault.
    ProfileReader(std::string_view text, std::string name);

    /// The name of the profile that this one extends; absent where it extends none. Throws
    /// ProfileError.
    [[nodiscard]] std::optional<std::string> extended() const;

    /// `base` with all that this document says. Throws ProfileError.
    [[nodiscard]] Profile over(Profile base) const;

  private:
    void readRule(const JsonTree::Member& member, Profile& profile) const;
    void readSeverity(const JsonTree& value, const std::string& path, RuleSettings& settings) const;
    [[nodiscard]] ParameterValue valueOf(const Parameter& parameter, const JsonTree& value,
                                         const std::string& path) const;
    [[nodiscard]] Acceptance acceptanceOf(const JsonTree& value, const std::string& path) const;
    void readAcceptances(const JsonTree& value, Profile& profile) const;

    [[nodiscard]] const JsonTree::Object& objectOf(const JsonTree& value,
                                                   const std::string& path) const;
    [[nodiscard]] const std::string& textOf(const JsonTree& value, const std::string& path) const;
    [[nodiscard]] AAFRational numberOf(const JsonTree& value, const std::string& path) const;
    [[noreturn]] void refuse(const std::string& path, const std::string& reason) const;

    std::string name_;
    JsonTree document_;
};

}  // namespace trellant::check
