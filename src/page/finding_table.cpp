// SPDX-License-Identifier: Apache-2.0
#include "say.h"
#include "table.h"
#include "tables.h"

#include <trellant/handoff/timeline_text.h>

#include <algorithm>

namespace trellant::page {

namespace {

using check::Finding;
using check::RuleVerdict;

/// Of one rule, each of those that count and of those that a profile accepts: a page is to be
/// mailed, and `trellant check` has them all.
constexpr std::size_t mostShown = 20;

std::size_t shownOf(const std::vector<Finding>& findings) noexcept {
    return std::min(findings.size(), mostShown);
}

std::string_view weightName(check::Severity severity) {
    switch (severity) {
        case check::Severity::error:
            return "error";
        case check::Severity::warning:
            return "warning";
        case check::Severity::info:
            return "remark";
    }
    return "remark";
}

std::string timeText(const AAFTimeline& timeline, const std::optional<AAFRational>& time) {
    return time ? timecodeText(timeline, *time) : std::string();
}

std::string sentenceOf(const Finding& finding) {
    return finding.acceptedBecause ? finding.sentence + " (" + *finding.acceptedBecause + ")"
                                   : finding.sentence;
}

class FindingTable {
  public:
    FindingTable(Markup& markup, const HandOff& handOff, std::size_t rows)
        : timeline_(handOff.timeline),
          table_(markup, {.id = "findings",
                          .title = "findings",
                          .columns = {"weight", "rule", "in", "out", "track", "clip", "sentence"},
                          .rows = rows}) {}

    void add(const RuleVerdict& rule) {
        for (std::size_t i = 0; i < shownOf(rule.findings); ++i) {
            row(say(weightName(rule.severity)), rule, rule.findings[i]);
        }
        for (std::size_t i = 0; i < shownOf(rule.accepted); ++i) {
            row(say("accepted"), rule, rule.accepted[i]);
        }
        if (const std::size_t more = leftOut(rule); more != 0) {
            table_.row().cell(say(weightName(rule.severity))).cell(rule.rule->id);
            table_.cell().cell().cell().cell().cell(say("moreFindings", std::to_string(more)));
        }
    }

    /// What the table does not list.
    [[nodiscard]] static std::size_t leftOut(const RuleVerdict& rule) noexcept {
        return rule.count - shownOf(rule.findings) + rule.acceptedCount - shownOf(rule.accepted);
    }
    [[nodiscard]] static std::size_t rowsOf(const RuleVerdict& rule) noexcept {
        return shownOf(rule.findings) + shownOf(rule.accepted) + (leftOut(rule) == 0 ? 0 : 1);
    }

  private:
    void row(std::string_view weight, const RuleVerdict& rule, const Finding& finding) {
        const auto end = finding.start && finding.duration
                             ? std::optional(*finding.start + *finding.duration)
                             : std::nullopt;
        table_.row()
            .cell(weight)
            .cell(rule.rule->id)
            .cell(timeText(timeline_, finding.start))
            .cell(timeText(timeline_, end))
            .nameCell(trackText(finding.track, finding.trackNumber))
            .nameCell(finding.clip.value_or(""))
            .cell(sentenceOf(finding));
    }

    const AAFTimeline& timeline_;
    Table table_;
};

}  // namespace

void writeFindings(Markup& markup, const HandOff& handOff, const check::Verdict& verdict) {
    std::size_t rows = 0;
    for (const RuleVerdict& rule : verdict.rules) {
        rows += FindingTable::rowsOf(rule);
    }
    FindingTable table(markup, handOff, rows);
    for (const check::Severity severity :
         {check::Severity::error, check::Severity::warning, check::Severity::info}) {
        for (const RuleVerdict& rule : verdict.rules) {
            if (rule.severity == severity) {
                table.add(rule);
            }
        }
    }
}

}  // namespace trellant::page
