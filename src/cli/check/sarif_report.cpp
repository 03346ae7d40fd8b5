// SPDX-License-Identifier: Apache-2.0
// Verdicts as SARIF 2.1.0: what services that show findings beside a change read. An OMF file has
// no lines, so a result lies on its first one, and its place within the file is the logical
// location.
#include "terminal/failure_line.h"
#include "verdict_report.h"

#include <trellant/base/text.h>
#include <trellant/base/url.h>
#include <trellant/version.h>

#include <string_view>
#include <vector>

namespace trellant::cli {

namespace {

using check::Finding;
using check::FindingValue;
using check::RuleVerdict;
using check::Severity;

std::string_view levelOf(Severity severity) {
    switch (severity) {
        case Severity::info:
            return "note";
        case Severity::warning:
            return "warning";
        case Severity::error:
            return "error";
    }
    return "none";
}

/// How a reader finds the file: a relative name stays one, so that it is found from the folder that
/// the command ran in.
std::string uriOf(const std::string& name) {
    constexpr std::string_view root = "file:///";
    const std::string text = fileURL(name.starts_with("/") ? name : "/" + name).text;
    if (name.starts_with("/")) {
        return text;
    }
    const std::string relative = text.substr(root.size());
    // A colon before the first slash would make the name's head a scheme.
    return relative.find(':') < relative.find('/') ? "./" + relative : relative;
}

class SarifReport final : public VerdictReport {
  public:
    explicit SarifReport(JsonSink& sink) : json_(sink) {}

    void begin() override {
        json_.beginObject();
        text("$schema", "https://json.schemastore.org/sarif-2.1.0.json");
        text("version", "2.1.0");
        json_.plainKey("runs");
        json_.beginArray();
        json_.beginObject();
        json_.plainKey("tool");
        json_.beginObject();
        json_.plainKey("driver");
        json_.beginObject();
        text("name", "trellant check");
        text("version", versionText);
        json_.plainKey("rules");
        json_.beginArray();
        for (const check::Rule* const rule : check::allRules()) {
            addRule(*rule);
        }
        json_.endArray();
        json_.endObject();
        json_.endObject();
        text("columnKind", "unicodeCodePoints");
        json_.plainKey("results");
        json_.beginArray();
    }

    void add(const JudgedFile& file) override {
        for (const RuleVerdict& rule : file.verdict.rules) {
            for (const Finding& finding : rule.findings) {
                addResult(file, rule, finding);
            }
            for (const Finding& finding : rule.accepted) {
                addResult(file, rule, finding);
            }
        }
        if (!file.failure.empty()) {
            addFailure(file.name, file.failure);
        }
    }

    void addFailure(const std::string& name, const std::string& failure) override {
        failures_.push_back({name, failure});
    }

    void end() override {
        json_.endArray();
        json_.plainKey("invocations");
        json_.beginArray();
        json_.beginObject();
        json_.plainKey("executionSuccessful");
        json_.boolean(failures_.empty());
        if (!failures_.empty()) {
            json_.plainKey("toolExecutionNotifications");
            json_.beginArray();
            for (const Failure& failure : failures_) {
                json_.beginObject();
                text("level", "error");
                addMessage("message", failure.text);
                addLocations(failure.file, std::nullopt);
                json_.endObject();
            }
            json_.endArray();
        }
        json_.endObject();
        json_.endArray();
        json_.endObject();
        json_.endArray();
        json_.endObject();
        json_.endLine();
        json_.flush();
    }

  private:
    struct Failure {
        std::string file;
        std::string text;
    };

    void text(std::string_view key, std::string_view value) {
        json_.plainKey(key);
        json_.string(isValidUTF8(value) ? std::string(value) : madeValidUTF8(value));
    }

    void addMessage(std::string_view key, std::string_view value) {
        json_.plainKey(key);
        json_.beginObject();
        text("text", value);
        json_.endObject();
    }

    void addRule(const check::Rule& rule) {
        json_.beginObject();
        text("id", rule.id);
        addMessage("shortDescription", rule.title);
        addMessage("fullDescription", rule.what);
        addMessage("help", std::string(rule.why) + " " + std::string(rule.repair));
        json_.plainKey("defaultConfiguration");
        json_.beginObject();
        text("level", levelOf(rule.severity));
        json_.endObject();
        json_.endObject();
    }

    void addLocations(const std::string& file, const std::optional<std::string>& objectPath) {
        json_.plainKey("locations");
        json_.beginArray();
        json_.beginObject();
        json_.plainKey("physicalLocation");
        json_.beginObject();
        json_.plainKey("artifactLocation");
        json_.beginObject();
        text("uri", uriOf(file));
        json_.endObject();
        json_.plainKey("region");
        json_.beginObject();
        json_.plainKey("startLine");
        json_.integer(1);
        json_.endObject();
        json_.endObject();
        if (objectPath) {
            json_.plainKey("logicalLocations");
            json_.beginArray();
            json_.beginObject();
            text("fullyQualifiedName", *objectPath);
            json_.endObject();
            json_.endArray();
        }
        json_.endObject();
        json_.endArray();
    }

    void addResult(const JudgedFile& file, const RuleVerdict& rule, const Finding& finding) {
        json_.beginObject();
        text("ruleId", rule.rule->id);
        text("level", levelOf(rule.severity));
        addMessage("message", findingLine(file.timeline, finding));
        addLocations(file.name, finding.objectPath);
        if (finding.acceptedBecause) {
            json_.plainKey("suppressions");
            json_.beginArray();
            json_.beginObject();
            text("kind", "external");
            text("justification", *finding.acceptedBecause);
            json_.endObject();
            json_.endArray();
        }
        json_.plainKey("properties");
        json_.beginObject();
        text("found", finding.found.text);
        text("wanted", finding.wanted.text);
        if (!finding.unit.empty()) {
            text("unit", finding.unit);
        }
        json_.endObject();
        json_.endObject();
    }

    JsonWriter json_;
    std::vector<Failure> failures_;
};

}  // namespace

std::unique_ptr<VerdictReport> sarifReport(JsonSink& sink) {
    return std::make_unique<SarifReport>(sink);
}

}  // namespace trellant::cli
