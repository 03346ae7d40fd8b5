// SPDX-License-Identifier: Apache-2.0
// The forms in which verdicts are written, file by file as they are made: what has been said need
// not be kept.
#pragma once

#include "check.h"
#include "terminal/console.h"

#include <trellant/check/verdict.h>
#include <trellant/json/json_writer.h>
#include <trellant/model/timeline.h>

#include <cstddef>
#include <memory>
#include <optional>
#include <string>

namespace trellant::cli {

/// A file that there is a verdict on.
struct JudgedFile {
    /// As the command line or its folder names it.
    const std::string& name;
    const check::Verdict& verdict;
    /// Gives timecodes to seconds; of a file that was not read an empty one.
    const AAFTimeline& timeline;
    /// Why it was not read; empty where it was.
    const std::string& failure;
    /// HandOff::olderVersion.
    std::optional<std::string> olderVersion{};
};

class VerdictReport {
  public:
    VerdictReport() = default;
    VerdictReport(const VerdictReport&) = delete;
    VerdictReport(VerdictReport&&) = delete;
    VerdictReport& operator=(const VerdictReport&) = delete;
    VerdictReport& operator=(VerdictReport&&) = delete;
    virtual ~VerdictReport() = default;

    virtual void begin() {}
    virtual void add(const JudgedFile& file) = 0;
    /// A file without a verdict.
    virtual void addFailure(const std::string& name, const std::string& failure) = 0;
    virtual void end() {}
};

/// How a person sees it.
struct ScreenSettings {
    /// Of the lines; Console::unlimitedColumns: nothing is wrapped.
    std::size_t columns = Console::unlimitedColumns;
    bool hasColour = false;
    /// Of several files a row each, unless everything is asked for.
    bool isOneFile = true;
    bool everything = false;
    check::Severity failOn = check::Severity::error;
};

/// `sink` must outlive the reports.
[[nodiscard]] std::unique_ptr<VerdictReport> screenReport(JsonSink& sink,
                                                          const ScreenSettings& settings);
/// One JSON object a file.
[[nodiscard]] std::unique_ptr<VerdictReport> lineReport(JsonSink& sink);
/// One document of XML: a test suite a file, a test case a rule. A finding below `failOn` does not
/// make a case fail.
[[nodiscard]] std::unique_ptr<VerdictReport> junitReport(JsonSink& sink, check::Severity failOn);
/// One document of SARIF 2.1.0 with one run.
[[nodiscard]] std::unique_ptr<VerdictReport> sarifReport(JsonSink& sink);

/// "01:00:00:15 - 01:00:01:00", "01:00:00:15", or nothing: when it is, on the timeline.
[[nodiscard]] std::string timesText(const AAFTimeline& timeline, const check::Finding& finding);
/// "track 3 Dialog_L", or nothing.
[[nodiscard]] std::string trackPlace(const check::Finding& finding);
/// What all forms say of it in one line: when, track, and the sentence.
[[nodiscard]] std::string findingLine(const AAFTimeline& timeline, const check::Finding& finding);

}  // namespace trellant::cli
