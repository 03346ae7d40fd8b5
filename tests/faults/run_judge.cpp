// SPDX-License-Identifier: Apache-2.0
#include "run_judge.h"

#include <algorithm>
#include <sys/syscall.h>
#include <trellant_testing/requests.h>

namespace trellant::testing {

namespace {

using ::testing::AssertionFailure;
using ::testing::AssertionResult;
using ::testing::AssertionSuccess;

/// Essences in the order of their identifiers, which is that of the mobs.
enum EssenceIndex : std::size_t { embedded, searched, named };

bool makesProcesses(const SeenCall& seen) {
    switch (seen.call.number) {
        case SYS_clone:
        case SYS_clone3:
        case SYS_execve:
        case SYS_execveat:
#ifdef SYS_fork
        case SYS_fork:
        case SYS_vfork:
#endif
            return true;
        default:
            return false;
    }
}

void loseFormat(AAFSourceEssence& essence) {
    essence.channelCount = 1;
    essence.bitDepth.reset();
    essence.codec = "WAVD";
}

void loseFile(AAFWorkerProtocol::Result& result, EssenceIndex index) {
    auto& essence = result.timeline.essences.at(index);
    loseFormat(essence);
    essence.fileURL.reset();
    // Behind the lines on the container and the composition, before the one on the track.
    result.diagnostics.insert(
        result.diagnostics.begin() + 2,
        "external essence not located: " + essence.originalPath.value_or("?"));
}

/// `text` without its last line.
std::string linesBefore(const std::string& text) {
    const auto end = text.size() < 2 ? std::string::npos : text.rfind('\n', text.size() - 2);
    return end == std::string::npos ? "" : text.substr(0, end + 1);
}

}  // namespace

RunJudge::RunJudge(const Scene& scene, const Undisturbed& undisturbed,
                   const std::map<std::string, std::string>& before, const TracedRun& traced)
    : scene_(scene),
      undisturbed_(undisturbed),
      before_(before),
      run_(traced.run),
      calls_(traced.calls),
      after_(scene.everything()) {}

AssertionResult RunJudge::harm(const Fault& fault) const {
    if (run_.signal && fault.seen.kind != CallKind::startup) {
        return AssertionFailure() << "ended by signal " << *run_.signal;
    }
    if (std::any_of(calls_.begin(), calls_.end(), makesProcesses)) {
        return AssertionFailure() << "made another process";
    }
    for (const auto& [name, content] : before_) {
        const auto now = after_.find(name);
        if (now == after_.end() || now->second != content) {
            return AssertionFailure() << name << " has changed";
        }
    }
    for (const auto& [name, content] : after_) {
        if (before_.count(name) == 0 && name != "work" && !name.starts_with("work/")) {
            return AssertionFailure() << name << " was made";
        }
    }
    return AssertionSuccess();
}

AssertionResult RunJudge::same() const {
    if (run_.status == 0 && run_.output == undisturbed_.output &&
        run_.errors == undisturbed_.errors && after_ == undisturbed_.everything) {
        return AssertionSuccess();
    }
    return AssertionFailure() << "not the undisturbed result: status " << run_.status.value_or(-1)
                              << "\n"
                              << run_.errors << run_.output;
}

AssertionResult RunJudge::gives(const AAFWorkerProtocol::Result& expected) const {
    if (run_.status != 0 || run_.errors != undisturbed_.errors) {
        return AssertionFailure() << "no success: " << run_.errors;
    }
    try {
        if (decodeResult(run_.output) == expected) {
            return AssertionSuccess();
        }
    } catch (const std::exception& error) {
        return AssertionFailure() << error.what();
    }
    return AssertionFailure() << "another result: " << run_.output;
}

AssertionResult RunJudge::lost(Loss loss) const {
    auto expected = decodeResult(undisturbed_.output);
    auto& essences = expected.timeline.essences;
    switch (loss) {
        case Loss::embeddedFormat:
            loseFormat(essences.at(embedded));
            break;
        case Loss::searchedFile:
            loseFile(expected, searched);
            break;
        case Loss::searchedFormat:
            loseFormat(essences.at(searched));
            break;
        case Loss::namedFile:
            loseFile(expected, named);
            break;
        case Loss::namedFormat:
            loseFormat(essences.at(named));
            break;
    }
    return gives(expected);
}

AssertionResult RunJudge::renamed() const {
    auto expected = decodeResult(undisturbed_.output);
    const std::string next = wasThere("work/Tone.wav") ? "work/Tone_3.wav" : "work/Tone_2.wav";
    expected.timeline.essences.at(embedded).fileURL =
        AAFURL{"file://" + (scene_.folder() / next).string()};
    const auto made = after_.find(next);
    if (made == after_.end() || made->second != scene_.embeddedAudio()) {
        return AssertionFailure() << next << " does not hold the audio";
    }
    return gives(expected);
}

AssertionResult RunJudge::failed(const std::string& line) const {
    if (run_.status == 2 && run_.output.empty() && run_.errors.ends_with(line) &&
        undisturbed_.errors.starts_with(linesBefore(run_.errors)) &&
        linesBefore(run_.errors) + line == run_.errors) {
        return AssertionSuccess();
    }
    return AssertionFailure() << "status " << run_.status.value_or(-1) << " and\n"
                              << run_.errors << "in place of\n"
                              << line;
}

AssertionResult RunJudge::rejected(const std::string& line) const {
    if (run_.status == 1 && run_.output.empty() && run_.errors == line) {
        return AssertionSuccess();
    }
    return AssertionFailure() << "not rejected: " << run_.errors;
}

AssertionResult RunJudge::quiet(const std::string& output) const {
    if (run_.status == 2 && run_.output == output && undisturbed_.errors.starts_with(run_.errors)) {
        return AssertionSuccess();
    }
    return AssertionFailure() << "not quiet: status " << run_.status.value_or(-1) << "\n"
                              << run_.errors << run_.output;
}

AssertionResult RunJudge::mute() const {
    return run_.errors.empty() ? quiet("") : AssertionFailure() << "not mute: " << run_.errors;
}

AssertionResult RunJudge::silent() const {
    if (run_.status != 0 && run_.output.empty()) {
        return AssertionSuccess();
    }
    return AssertionFailure() << "not silent: " << run_.output;
}

AssertionResult RunJudge::oneOf(std::initializer_list<AssertionResult> outcomes) {
    auto none = AssertionFailure();
    for (const auto& outcome : outcomes) {
        if (outcome) {
            return AssertionSuccess();
        }
        none << outcome.message() << "\n";
    }
    return none;
}

}  // namespace trellant::testing
