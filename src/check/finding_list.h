// SPDX-License-Identifier: Apache-2.0
// Where a rule reports to: counts, holds against what a profile accepts, and keeps as much as
// somebody will read. Texts are made for what is kept only: a hand-off of a million clips may break
// a rule a million times.
#pragma once

#include <trellant/check/checked_hand_off.h>
#include <trellant/check/profile.h>
#include <trellant/check/rule.h>
#include <trellant/check/verdict.h>

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace trellant::check {

/// Where a finding lies; what is absent is not concerned.
struct FindingPlace {
    const CheckedTrack* track = nullptr;
    const CheckedClip* clip = nullptr;
    const CheckedSource* source = nullptr;
    /// A loss, which may have a track and clip of its own.
    const PlacedLoss* loss = nullptr;
    /// Timeline seconds; with a clip, and without these, the clip's own.
    std::optional<AAFRational> start{};
    std::optional<AAFRational> duration{};
};

/// What is said of it.
struct FindingText {
    std::string sentence{};
    FindingValue found{};
    FindingValue wanted{};
    std::string unit{};
};

class FindingList {
  public:
    /// All must outlive this. `acceptances` are those for the rule and the file; `matched` counts
    /// what each of them accepted.
    FindingList(const CheckedHandOff& checked, std::vector<const Acceptance*> acceptances,
                std::vector<std::size_t>& matched)
        : checked_(checked), acceptances_(std::move(acceptances)), matched_(matched) {}

    /// `say()` gives the FindingText; it is called only for what is kept.
    template <class Say>
    void report(const FindingPlace& place, const Say& say) {
        const Acceptance* const accepted = acceptanceOf(place);
        std::vector<Finding>& kept = accepted == nullptr ? findings_ : accepted_;
        ++(accepted == nullptr ? count_ : acceptedCount_);
        if (kept.size() < RuleVerdict::mostKept) {
            kept.push_back(made(place, say(), accepted));
        }
    }

    /// Hands over what was reported.
    void moveInto(RuleVerdict& verdict);

  private:
    [[nodiscard]] const Acceptance* acceptanceOf(const FindingPlace& place);
    [[nodiscard]] Finding made(const FindingPlace& place, FindingText text,
                               const Acceptance* accepted) const;

    const CheckedHandOff& checked_;
    std::vector<const Acceptance*> acceptances_;
    std::vector<std::size_t>& matched_;
    std::size_t count_ = 0;
    std::size_t acceptedCount_ = 0;
    std::vector<Finding> findings_;
    std::vector<Finding> accepted_;
};

}  // namespace trellant::check
