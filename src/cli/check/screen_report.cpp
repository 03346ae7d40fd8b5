// SPDX-License-Identifier: Apache-2.0
// Verdicts for people: of one file its findings, worst first and grouped by rule; of several files
// a row each and a summary.
#include "terminal/counted_text.h"
#include "terminal/shown_text.h"
#include "terminal/wrapped_text.h"
#include "verdict_report.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <vector>

namespace trellant::cli {

namespace {

using check::Finding;
using check::RuleVerdict;
using check::Severity;
using check::Verdict;

/// Findings of a rule that are shown before the rest is counted.
constexpr std::size_t shownFindings = 10;

Paint paintOf(Severity severity) {
    switch (severity) {
        case Severity::info:
            return Paint::dim;
        case Severity::warning:
            return Paint::yellow;
        case Severity::error:
            return Paint::red;
    }
    return Paint::dim;
}

bool fails(const Verdict& verdict, Severity failOn) {
    const auto worst = verdict.worst();
    return worst && *worst >= failOn;
}

/// "2 errors, 1 warning, no info".
std::string countsText(const Verdict& verdict) {
    const std::size_t infos = verdict.count(Severity::info);
    std::string text = counted(verdict.count(Severity::error), "error", "errors") + ", " +
                       counted(verdict.count(Severity::warning), "warning", "warnings") + ", " +
                       std::to_string(infos) + " info";
    if (const std::size_t accepted = verdict.acceptedCount(); accepted != 0) {
        text += ", " + std::to_string(accepted) + " accepted";
    }
    return text;
}

/// "rule "handles", clip "Room*": where an entry that is of no use stands.
std::string entryText(const check::Acceptance& entry) {
    std::string text = entry.rule;
    const auto add = [&text](std::string_view what, const std::optional<std::string>& pattern) {
        if (pattern) {
            text.append(", ").append(what).append(" ").append(*pattern);
        }
    };
    add("file", entry.file);
    add("track", entry.track);
    add("clip", entry.clip);
    add("audio file", entry.audioFile);
    return text;
}

class ScreenReport final : public VerdictReport {
  public:
    ScreenReport(JsonSink& sink, const ScreenSettings& settings)
        : sink_(sink), settings_(settings) {}

    void add(const JudgedFile& file) override {
        ++(!file.failure.empty()                   ? unreadable_
           : fails(file.verdict, settings_.failOn) ? failing_
                                                   : passing_);
        if (settings_.isOneFile || settings_.everything) {
            sink_.write(shownLines(page(file)));
        } else {
            sink_.write(shownLines(row(file)));
        }
    }

    void addFailure(const std::string& name, const std::string& failure) override {
        ++unreadable_;
        if (!settings_.isOneFile) {
            sink_.write(shownLines(painted("unread", Paint::red, settings_.hasColour) + "  " +
                                   shownText(name) + ": " + shownText(failure) + "\n"));
        }
    }

    void end() override {
        if (settings_.isOneFile) {
            return;
        }
        const std::size_t files = passing_ + failing_ + unreadable_;
        std::string text = counted(files, "file", "files") + ": " + std::to_string(passing_) +
                           " passed, " + std::to_string(failing_) + " failed";
        if (unreadable_ != 0) {
            text += ", " + std::to_string(unreadable_) + " could not be read";
        }
        sink_.write(shownLines(text + "\n"));
    }

  private:
    [[nodiscard]] std::string row(const JudgedFile& file) const {
        constexpr std::size_t countsWidth = 36;
        const bool failed = fails(file.verdict, settings_.failOn) || !file.failure.empty();
        const std::string word = !file.failure.empty() ? "unread" : failed ? "failed" : "passed";
        std::string counts = countsText(file.verdict);
        counts.append(counts.size() < countsWidth ? countsWidth - counts.size() : 0, ' ');
        return painted(word, failed ? Paint::red : Paint::green, settings_.hasColour) + "  " +
               counts + "  " + shownText(file.name) + "\n";
    }

    [[nodiscard]] std::string page(const JudgedFile& file) {
        std::string text = isFirst_ ? "" : "\n";
        isFirst_ = false;
        const Verdict& verdict = file.verdict;
        const bool failed = fails(verdict, settings_.failOn) || !file.failure.empty();
        text += painted(shownText(file.name), Paint::bold, settings_.hasColour) + "\n  " +
                painted(failed ? "failed" : "passed", failed ? Paint::red : Paint::green,
                        settings_.hasColour) +
                " by the profile " + shownText(verdict.profile) + ": " + countsText(verdict) + "\n";
        std::vector<const RuleVerdict*> rules;
        for (const RuleVerdict& rule : verdict.rules) {
            rules.push_back(&rule);
        }
        std::stable_sort(rules.begin(), rules.end(),
                         [](const RuleVerdict* left, const RuleVerdict* right) {
                             return left->severity > right->severity;
                         });
        for (const RuleVerdict* const rule : rules) {
            text += group(file, *rule);
        }
        return text + acceptedPart(file, rules) + notes(verdict);
    }

    [[nodiscard]] std::string group(const JudgedFile& file, const RuleVerdict& rule) const {
        if (rule.count == 0) {
            return {};
        }
        std::string text = "\n  " +
                           painted(check::severityWord(rule.severity), paintOf(rule.severity),
                                   settings_.hasColour) +
                           "  " + painted(rule.rule->title, Paint::bold, settings_.hasColour) +
                           "  " + painted(rule.rule->id, Paint::dim, settings_.hasColour) + "\n";
        const std::size_t shown = settings_.everything
                                      ? rule.findings.size()
                                      : std::min(rule.findings.size(), shownFindings);
        for (std::size_t i = 0; i < shown; ++i) {
            text += block(file.timeline, rule.findings[i]);
        }
        if (rule.count > shown) {
            text += "    and " + std::to_string(rule.count - shown) + " more" +
                    (settings_.everything ? "" : ": -v and --json show them") + "\n";
        }
        return text;
    }

    [[nodiscard]] std::string block(const AAFTimeline& timeline, const Finding& finding) const {
        const Paragraph paragraph{
            .indent = 4, .columns = settings_.columns, .hasColour = settings_.hasColour};
        std::string text = wrapped(finding.sentence, paragraph, std::nullopt);
        std::string place = timesText(timeline, finding);
        const std::string track = trackPlace(finding);
        place += place.empty() || track.empty() ? track : ", " + track;
        if (!place.empty()) {
            text += wrapped(place, paragraph, Paint::dim);
        }
        if (settings_.everything && finding.objectPath) {
            text += wrapped(*finding.objectPath, paragraph, Paint::dim);
        }
        return text;
    }

    [[nodiscard]] std::string acceptedPart(const JudgedFile& file,
                                           const std::vector<const RuleVerdict*>& rules) const {
        std::string text;
        const Paragraph paragraph{
            .indent = 4, .columns = settings_.columns, .hasColour = settings_.hasColour};
        for (const RuleVerdict* const rule : rules) {
            const std::size_t shown = settings_.everything
                                          ? rule->accepted.size()
                                          : std::min(rule->accepted.size(), shownFindings);
            for (std::size_t i = 0; i < shown; ++i) {
                const Finding& finding = rule->accepted[i];
                text += text.empty() ? "\n  accepted\n" : "";
                text += wrapped(
                    std::string(rule->rule->id) + ": " + findingLine(file.timeline, finding),
                    paragraph, std::nullopt);
                text += wrapped("accepted: " + finding.acceptedBecause.value_or(""), paragraph,
                                Paint::dim);
            }
            if (rule->acceptedCount > shown) {
                text += "    " + std::string(rule->rule->id) + ": and " +
                        std::to_string(rule->acceptedCount - shown) + " more accepted\n";
            }
        }
        return text;
    }

    [[nodiscard]] std::string notes(const Verdict& verdict) const {
        std::string text;
        const Paragraph paragraph{
            .indent = 2, .columns = settings_.columns, .hasColour = settings_.hasColour};
        for (const check::Acceptance& entry : verdict.unmatched) {
            text += wrapped("The profile accepts what is not there: " + entryText(entry) + " (" +
                                entry.reason + ")",
                            paragraph, Paint::yellow);
        }
        std::string unlooked;
        for (const RuleVerdict& rule : verdict.rules) {
            if (!rule.wasLooked && rule.rule->needs == check::RuleNeeds::sound) {
                unlooked += (unlooked.empty() ? "" : ", ") + std::string(rule.rule->id);
            }
        }
        if (!unlooked.empty()) {
            text += wrapped(
                "The audio was not read (--audio reads it): nothing is said of " + unlooked + ".",
                paragraph, std::nullopt);
        }
        return text.empty() ? text : "\n" + text;
    }

    JsonSink& sink_;
    ScreenSettings settings_;
    bool isFirst_ = true;
    std::size_t passing_ = 0;
    std::size_t failing_ = 0;
    std::size_t unreadable_ = 0;
};

}  // namespace

std::unique_ptr<VerdictReport> screenReport(JsonSink& sink, const ScreenSettings& settings) {
    return std::make_unique<ScreenReport>(sink, settings);
}

}  // namespace trellant::cli
