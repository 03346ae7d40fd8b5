// SPDX-License-Identifier: Apache-2.0
// Whether a hand-off is sound by a profile's rules.
#pragma once

#include <trellant/check/checked_hand_off.h>
#include <trellant/check/finding.h>
#include <trellant/check/profile.h>
#include <trellant/check/rule.h>

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace [[gnu::visibility("default")]] trellant {
namespace check {

struct RuleVerdict {
    /// Findings of one rule that are kept; more are counted.
    static constexpr std::size_t mostKept = 1'000;

    const Rule* rule = nullptr;
    Severity severity = Severity::warning;
    /// False for a rule that asks for sound where nobody listened: nothing is said of it.
    bool wasLooked = true;
    /// Findings that count, and those that the profile accepts.
    std::size_t count = 0;
    std::size_t acceptedCount = 0;
    /// The first of each.
    std::vector<Finding> findings{};
    std::vector<Finding> accepted{};
};

struct Verdict {
    /// The profile's name.
    std::string profile{};
    /// Whether the audio was listened to.
    bool audioRead = false;
    /// The rules that are on, as allRules() has them.
    std::vector<RuleVerdict> rules{};
    /// Entries of the profile that accepted nothing in this file.
    std::vector<Acceptance> unmatched{};

    /// Findings of that weight that count.
    [[nodiscard]] std::size_t count(Severity severity) const noexcept;
    /// Findings that the profile accepts.
    [[nodiscard]] std::size_t acceptedCount() const noexcept;
    /// The highest weight that something counts with; absent where nothing was found.
    [[nodiscard]] std::optional<Severity> worst() const noexcept;
};

/// Holds a hand-off against a profile. Reads nothing; takes time and memory in proportion to the
/// hand-off, and its findings are bounded.
[[nodiscard]] Verdict verdictOf(const CheckedHandOff& checked, const Profile& profile);

/// The same for a file that is OMF 1.x and so was not read: only what the file itself tells.
[[nodiscard]] Verdict verdictOfUnread(const FileFacts& file, const Profile& profile);

}  // namespace check
}  // namespace trellant
