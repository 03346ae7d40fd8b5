// SPDX-License-Identifier: Apache-2.0
// `trellant check`: hand-offs held against the rules of a profile.
#include "check/check.h"

#include "check/checked_files.h"
#include "check/file_facts.h"
#include "check/heard_audio.h"
#include "check/named_profile.h"
#include "check/rule_pages.h"
#include "check/verdict_report.h"
#include "look/inspect.h"
#include "terminal/deliver.h"
#include "terminal/shown_text.h"

#include <trellant/base/printable_path.h>
#include <trellant/base/printable_text.h>
#include <trellant/check/profile.h>
#include <trellant/check/verdict.h>

#include <filesystem>
#include <memory>
#include <system_error>

namespace trellant::cli {

namespace fs = std::filesystem;

namespace {

/// Why the command line cannot be meant; absent when it can.
std::optional<std::string> wrongUse(const CheckCall& call) {
    if (call.listRules || call.explain) {
        return call.files.empty()
                   ? std::nullopt
                   : std::optional<std::string>("--list-rules and --explain check no files");
    }
    if (call.files.empty()) {
        return "check needs OMF files, or folders that hold some";
    }
    return std::nullopt;
}

class Checker {
  public:
    Checker(const CheckCall& call, const check::Profile& profile, Console& console,
            const StopToken& stop)
        : call_(call), profile_(profile), console_(console), stop_(stop) {}

    [[nodiscard]] ExitStatus run() {
        const std::vector<CheckedFile> files = checkedFiles(call_.files, call_.recursive);
        std::vector<std::string> inputs;
        for (const CheckedFile& file : files) {
            inputs.push_back(file.path);
        }
        if (!mayDeliver(call_.destination, inputs, console_)) {
            return ExitStatus::wrongUse;
        }
        Delivery delivery(call_.destination, console_);
        const bool toConsole = call_.destination.path == "-";
        const bool isOneFile = call_.files.size() == 1 && files.size() <= 1;
        const auto report = reportTo(
            delivery, {.columns = toConsole ? console_.outColumns() : Console::unlimitedColumns,
                       .hasColour = toConsole && console_.outHasColour(),
                       .isOneFile = isOneFile,
                       .everything = console_.verbosity() == Verbosity::verbose,
                       .failOn = call_.failOn});
        ExitStatus status = ExitStatus::done;
        report->begin();
        for (const CheckedFile& file : files) {
            if (stop_.stop_requested()) {
                return ExitStatus::fileFailed;
            }
            status = worse(status, judge(file, *report, delivery));
            delivery.flush();
        }
        report->end();
        return delivery.finish() ? status : ExitStatus::fileFailed;
    }

  private:
    [[nodiscard]] std::unique_ptr<VerdictReport> reportTo(JsonSink& sink,
                                                          const ScreenSettings& settings) const {
        switch (call_.form) {
            case CheckCall::Form::people:
                return screenReport(sink, settings);
            case CheckCall::Form::json:
                return lineReport(sink);
            case CheckCall::Form::junit:
                return junitReport(sink, call_.failOn);
            case CheckCall::Form::sarif:
                return sarifReport(sink);
        }
        return lineReport(sink);
    }

    [[nodiscard]] ExitStatus judge(const CheckedFile& checkedFile, VerdictReport& report,
                                   Delivery& delivery) {
        const std::string& file = checkedFile.path;
        if (!checkedFile.failure.empty()) {
            console_.error(printablePath(file) + ": " + checkedFile.failure);
            report.addFailure(file, checkedFile.failure);
            return ExitStatus::fileFailed;
        }
        const Inspection found = inspect(
            {.file = file, .mediaFolders = call_.mediaFolders, .contents = true}, console_, stop_);
        check::FileFacts facts = factsOf(file);
        if (!found.handOff) {
            tellUnread(file, found, std::move(facts), report);
            return ExitStatus::fileFailed;
        }
        facts.objectModel = found.handOff->olderVersion ? 1 : facts.objectModel;
        protectMedia(*found.handOff, delivery);
        const bool isWanted = call_.audio || profile_.audio;
        const auto sound =
            isWanted ? heardAudio(file, call_.mediaFolders, *found.handOff, console_, stop_)
                     : std::nullopt;
        const check::CheckedHandOff checked(*found.handOff, std::move(facts),
                                            sound ? &*sound : nullptr);
        const check::Verdict verdict = check::verdictOf(checked, profile_);
        report.add({.name = file,
                    .verdict = verdict,
                    .timeline = found.handOff->timeline,
                    .failure = found.failure,
                    .olderVersion = found.handOff->olderVersion});
        if (isWanted && !sound) {
            return ExitStatus::fileFailed;
        }
        const auto worst = verdict.worst();
        return worst && *worst >= call_.failOn ? ExitStatus::lossesFound : ExitStatus::done;
    }

    /// Of OMF 1.x that a worker of an earlier version refused more is known than that.
    void tellUnread(const std::string& file, const Inspection& found, check::FileFacts facts,
                    VerdictReport& report) const {
        if (!found.isOlderModel) {
            report.addFailure(file, found.failure);
            return;
        }
        facts.objectModel = 1;
        const check::Verdict verdict = check::verdictOfUnread(facts, profile_);
        if (verdict.worst()) {
            report.add({.name = file,
                        .verdict = verdict,
                        .timeline = AAFTimeline(),
                        .failure = found.failure});
        } else {
            report.addFailure(file, found.failure);
        }
    }

    const CheckCall& call_;
    const check::Profile& profile_;
    Console& console_;
    const StopToken& stop_;
};

ExitStatus explain(const CheckCall& call, const check::Profile& profile, Console& console) {
    if (call.listRules) {
        const bool toConsole = call.destination.path == "-";
        const bool isJson = call.form == CheckCall::Form::json;
        return deliver(call.destination,
                       isJson ? ruleLines(profile)
                              : shownLines(ruleList(
                                    profile,
                                    toConsole ? console.outColumns() : Console::unlimitedColumns,
                                    toConsole && console.outHasColour())),
                       console)
                   ? ExitStatus::done
                   : ExitStatus::fileFailed;
    }
    const check::Rule* const rule = check::ruleNamed(*call.explain);
    if (rule == nullptr) {
        const std::string nearest = check::nearestRule(*call.explain);
        console.error("there is no rule \"" + printableText(*call.explain) + "\"" +
                      (nearest.empty() ? "; --list-rules shows them"
                                       : "; did you mean \"" + nearest + "\"?"));
        return ExitStatus::wrongUse;
    }
    console.out(shownLines(rulePage(*rule, profile, console.outColumns(), console.outHasColour())));
    return ExitStatus::done;
}

}  // namespace

ExitStatus runCheck(const CheckCall& call, Console& console, const StopToken& stop) {
    if (const auto message = wrongUse(call)) {
        console.error(*message);
        return ExitStatus::wrongUse;
    }
    std::optional<check::Profile> profile;
    try {
        profile = namedProfile(call.profile);
    } catch (const check::ProfileError& error) {
        console.error(error.what());
        return ExitStatus::wrongUse;
    }
    if (call.listRules || call.explain) {
        return explain(call, *profile, console);
    }
    return Checker(call, *profile, console, stop).run();
}

}  // namespace trellant::cli
