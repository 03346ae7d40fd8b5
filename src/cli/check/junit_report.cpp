// SPDX-License-Identifier: Apache-2.0
// Verdicts as test results: every server that builds shows these. What does not make a case fail
// stands in its output.
#include "terminal/failure_line.h"
#include "verdict_report.h"
#include "xml_stream.h"

namespace trellant::cli {

namespace {

using check::Finding;
using check::RuleVerdict;
using check::Severity;

class JunitReport final : public VerdictReport {
  public:
    JunitReport(JsonSink& sink, Severity failOn) : xml_(sink), failOn_(failOn) {}

    void begin() override {
        xml_.open("testsuites");
        xml_.attribute("name", "trellant check");
    }

    void add(const JudgedFile& file) override {
        std::size_t failures = 0;
        std::size_t skipped = 0;
        for (const RuleVerdict& rule : file.verdict.rules) {
            failures += fails(rule) ? 1U : 0U;
            skipped += rule.wasLooked ? 0U : 1U;
        }
        const bool isUnread = !file.failure.empty();
        openSuite(file.name, file.verdict.rules.size() + (isUnread ? 1U : 0U), failures,
                  isUnread ? 1 : 0, skipped);
        for (const RuleVerdict& rule : file.verdict.rules) {
            addCase(file, rule);
        }
        if (isUnread) {
            addError(file.name, file.failure);
        }
        xml_.close();
    }

    void addFailure(const std::string& name, const std::string& failure) override {
        openSuite(name, 1, 0, 1, 0);
        addError(name, failure);
        xml_.close();
    }

    void end() override { xml_.close(); }

  private:
    [[nodiscard]] bool fails(const RuleVerdict& rule) const {
        return rule.count != 0 && rule.severity >= failOn_;
    }

    void openSuite(const std::string& name, std::size_t tests, std::size_t failures,
                   std::size_t errors, std::size_t skipped) {
        xml_.open("testsuite");
        xml_.attribute("name", fileForPrograms(name));
        xml_.attribute("tests", std::to_string(tests));
        xml_.attribute("failures", std::to_string(failures));
        xml_.attribute("errors", std::to_string(errors));
        xml_.attribute("skipped", std::to_string(skipped));
    }

    void openCase(const std::string& file, std::string_view name) {
        xml_.open("testcase");
        xml_.attribute("name", name);
        xml_.attribute("classname", fileForPrograms(file));
    }

    void addError(const std::string& file, const std::string& failure) {
        openCase(file, "read");
        xml_.open("error");
        xml_.attribute("message", failure);
        xml_.attribute("type", "unreadable");
        xml_.close();
        xml_.close();
    }

    void addCase(const JudgedFile& file, const RuleVerdict& rule) {
        openCase(file.name, rule.rule->id);
        if (!rule.wasLooked) {
            xml_.open("skipped");
            xml_.attribute("message", file.failure.empty() ? "the audio was not read"
                                                           : "the file was not read");
            xml_.close();
        } else if (fails(rule)) {
            xml_.open("failure");
            xml_.attribute("message",
                           std::to_string(rule.count) + ": " + std::string(rule.rule->title));
            xml_.attribute("type", check::severityWord(rule.severity));
            xml_.text(linesOf(file, rule.findings, rule.count));
            xml_.close();
        } else if (rule.count != 0) {
            xml_.open("system-out");
            xml_.text(std::string(check::severityWord(rule.severity)) + "\n" +
                      linesOf(file, rule.findings, rule.count));
            xml_.close();
        }
        if (rule.acceptedCount != 0) {
            xml_.open("system-err");
            xml_.text("accepted\n" + linesOf(file, rule.accepted, rule.acceptedCount));
            xml_.close();
        }
        xml_.close();
    }

    [[nodiscard]] static std::string linesOf(const JudgedFile& file,
                                             const std::vector<Finding>& findings,
                                             std::size_t count) {
        std::string text;
        for (const Finding& finding : findings) {
            text += findingLine(file.timeline, finding);
            if (finding.acceptedBecause) {
                text += " (" + *finding.acceptedBecause + ")";
            }
            text += '\n';
        }
        if (count > findings.size()) {
            text += "and " + std::to_string(count - findings.size()) + " more\n";
        }
        return text;
    }

    XmlStream xml_;
    Severity failOn_;
};

}  // namespace

std::unique_ptr<VerdictReport> junitReport(JsonSink& sink, Severity failOn) {
    return std::make_unique<JunitReport>(sink, failOn);
}

}  // namespace trellant::cli
