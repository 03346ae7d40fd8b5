// SPDX-License-Identifier: Apache-2.0
// Verdicts for programs, a line each.
#include "terminal/failure_line.h"
#include "terminal/json_line.h"
#include "verdict_report.h"

#include <trellant/handoff/timeline_text.h>

#include <vector>

namespace trellant::cli {

namespace {

using check::Finding;
using check::FindingValue;
using check::RuleVerdict;
using check::Severity;

/// A finding beside the rule that it belongs to.
struct RuledFinding {
    const RuleVerdict* rule = nullptr;
    const Finding* finding = nullptr;
};

std::vector<RuledFinding> findingsOf(const check::Verdict& verdict) {
    std::vector<RuledFinding> all;
    for (const RuleVerdict& rule : verdict.rules) {
        for (const Finding& finding : rule.findings) {
            all.push_back({&rule, &finding});
        }
        for (const Finding& finding : rule.accepted) {
            all.push_back({&rule, &finding});
        }
    }
    return all;
}

void addValue(JsonLine& line, const char* textName, const char* numberName,
              const FindingValue& value) {
    line.text(textName, value.text);
    if (value.number) {
        line.number(numberName, value.number->doubleValue());
    }
}

void addTimes(JsonLine& line, const AAFTimeline& timeline, const Finding& finding) {
    if (!finding.start) {
        return;
    }
    line.text("in", timecodeText(timeline, *finding.start));
    if (finding.duration) {
        line.text("out", timecodeText(timeline, *finding.start + *finding.duration));
    }
    line.number("startSeconds", finding.start->doubleValue())
        .fraction("startSecondsExact", *finding.start);
    if (finding.duration) {
        line.number("durationSeconds", finding.duration->doubleValue())
            .fraction("durationSecondsExact", *finding.duration);
    }
}

void addFinding(JsonLine& line, const AAFTimeline& timeline, const RuledFinding& ruled) {
    const Finding& finding = *ruled.finding;
    line.text("rule", ruled.rule->rule->id)
        .text("severity", check::severityWord(ruled.rule->severity))
        .text("sentence", finding.sentence)
        .text("track", finding.track)
        .integer("trackNumber", finding.trackNumber)
        .text("clip", finding.clip);
    if (finding.isClipNamedByMasterMob) {
        line.word("clipNameFrom", "masterMob");
    }
    line.text("audioFile", finding.audioFile);
    addTimes(line, timeline, finding);
    line.text("objectPath", finding.objectPath);
    addValue(line, "found", "foundNumber", finding.found);
    addValue(line, "wanted", "wantedNumber", finding.wanted);
    if (!finding.unit.empty()) {
        line.text("unit", finding.unit);
    }
    line.text("acceptedBecause", finding.acceptedBecause);
}

void addRule(JsonLine& line, const RuleVerdict& rule) {
    line.text("rule", rule.rule->id)
        .text("severity", check::severityWord(rule.severity))
        .boolean("looked", rule.wasLooked)
        .count("findings", rule.count)
        .count("accepted", rule.acceptedCount);
}

class LineReport final : public VerdictReport {
  public:
    explicit LineReport(JsonSink& sink) : sink_(sink) {}

    void add(const JudgedFile& file) override {
        const check::Verdict& verdict = file.verdict;
        JsonLine line(sink_);
        line.text("file", fileForPrograms(file.name))
            .text("omfVersion", file.olderVersion)
            .text("profile", verdict.profile)
            .boolean("read", file.failure.empty())
            .boolean("audioRead", verdict.audioRead)
            .count("errors", verdict.count(Severity::error))
            .count("warnings", verdict.count(Severity::warning))
            .count("infos", verdict.count(Severity::info))
            .count("accepted", verdict.acceptedCount())
            .objects("rules", verdict.rules, addRule)
            .objects("findings", findingsOf(verdict),
                     [&file](JsonLine& item, const RuledFinding& ruled) {
                         addFinding(item, file.timeline, ruled);
                     })
            .objects("acceptedNothing", verdict.unmatched,
                     [](JsonLine& item, const check::Acceptance& entry) {
                         item.text("rule", entry.rule)
                             .text("filePattern", entry.file)
                             .text("trackPattern", entry.track)
                             .text("clipPattern", entry.clip)
                             .text("audioFilePattern", entry.audioFile)
                             .text("reason", entry.reason);
                     });
        line.end();
    }

    void addFailure(const std::string& name, const std::string& failure) override {
        sink_.write(failureLine(name, failure));
    }

  private:
    JsonSink& sink_;
};

}  // namespace

std::unique_ptr<VerdictReport> lineReport(JsonSink& sink) {
    return std::make_unique<LineReport>(sink);
}

}  // namespace trellant::cli
