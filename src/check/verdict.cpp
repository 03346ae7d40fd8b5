// SPDX-License-Identifier: Apache-2.0
#include "finding_list.h"
#include "name_pattern.h"

#include <trellant/check/verdict.h>

#include <utility>

namespace trellant::check {

namespace {

/// The entries of a profile for one rule and file, and how often each of them was of use.
struct Accepting {
    std::vector<const Acceptance*> entries{};
    std::vector<std::size_t> matched{};
};

Accepting acceptingFor(const Rule& rule, const FileFacts& file, const Profile& profile) {
    Accepting accepting;
    for (const Acceptance& entry : profile.accept) {
        if (entry.rule == rule.id && (!entry.file || fitsPattern(file.name, *entry.file))) {
            accepting.entries.push_back(&entry);
        }
    }
    accepting.matched.resize(accepting.entries.size());
    return accepting;
}

enum class Reach { file, all };

bool isReached(const Rule& rule, const CheckedHandOff& checked, Reach reach) {
    switch (rule.needs) {
        case RuleNeeds::file:
            return true;
        case RuleNeeds::timeline:
            return reach == Reach::all;
        case RuleNeeds::sound:
            return reach == Reach::all && checked.hasSound();
    }
    return false;
}

RuleVerdict verdictOn(const Rule& rule, const RuleSettings& settings, const CheckedHandOff& checked,
                      const Profile& profile, Verdict& whole) {
    RuleVerdict verdict{.rule = &rule, .severity = settings.severity};
    Accepting accepting = acceptingFor(rule, checked.file(), profile);
    FindingList findings(checked, accepting.entries, accepting.matched);
    rule.look(checked, settings, findings);
    findings.moveInto(verdict);
    for (std::size_t i = 0; i < accepting.entries.size(); ++i) {
        if (accepting.matched[i] == 0) {
            whole.unmatched.push_back(*accepting.entries[i]);
        }
    }
    return verdict;
}

Verdict heldAgainst(const CheckedHandOff& checked, const Profile& profile, Reach reach) {
    Verdict verdict{.profile = profile.name, .audioRead = checked.hasSound()};
    const auto rules = allRules();
    for (std::size_t i = 0; i < rules.size(); ++i) {
        const RuleSettings& settings = profile.settings.at(i);
        if (!settings.isOn) {
            continue;
        }
        if (isReached(*rules[i], checked, reach)) {
            verdict.rules.push_back(verdictOn(*rules[i], settings, checked, profile, verdict));
        } else {
            verdict.rules.push_back(
                {.rule = rules[i], .severity = settings.severity, .wasLooked = false});
        }
    }
    return verdict;
}

}  // namespace

std::size_t Verdict::count(Severity severity) const noexcept {
    std::size_t total = 0;
    for (const RuleVerdict& rule : rules) {
        total += rule.severity == severity ? rule.count : 0;
    }
    return total;
}

std::size_t Verdict::acceptedCount() const noexcept {
    std::size_t total = 0;
    for (const RuleVerdict& rule : rules) {
        total += rule.acceptedCount;
    }
    return total;
}

std::optional<Severity> Verdict::worst() const noexcept {
    std::optional<Severity> worst;
    for (const RuleVerdict& rule : rules) {
        if (rule.count != 0 && (!worst || *worst < rule.severity)) {
            worst = rule.severity;
        }
    }
    return worst;
}

Verdict verdictOf(const CheckedHandOff& checked, const Profile& profile) {
    return heldAgainst(checked, profile, Reach::all);
}

Verdict verdictOfUnread(const FileFacts& file, const Profile& profile) {
    const HandOff nothing;
    return heldAgainst(CheckedHandOff(nothing, file), profile, Reach::file);
}

}  // namespace trellant::check
