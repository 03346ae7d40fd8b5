// SPDX-License-Identifier: Apache-2.0
// One run beside the undisturbed one: whether it came to a certain end, compared whole.
#pragma once

#include "fault_rules.h"

#include <trellant/protocol/messages.h>

#include <initializer_list>

namespace trellant::testing {

/// What a timeline may miss for a fault.
enum class Loss { embeddedFormat, searchedFile, searchedFormat, namedFile, namedFormat };

class RunJudge {
  public:
    /// All references must outlive this.
    RunJudge(const Scene& scene, const Undisturbed& undisturbed,
             const std::map<std::string, std::string>& before, const TracedRun& traced);

    /// Fails for what no fault excuses: another process, a change outside the work directory or to
    /// what stood in it, an end by signal unless the C library could not even start.
    [[nodiscard]] ::testing::AssertionResult harm(const Fault& fault) const;

    /// The result, the lines and the files of the undisturbed run.
    [[nodiscard]] ::testing::AssertionResult same() const;
    /// The same but for a loss.
    [[nodiscard]] ::testing::AssertionResult lost(Loss loss) const;
    /// The same but for the number in the name of the extracted file.
    [[nodiscard]] ::testing::AssertionResult renamed() const;
    /// Status 2, an empty standard output, progress so far and then this line.
    [[nodiscard]] ::testing::AssertionResult failed(const std::string& line) const;
    /// Status 1 and this line alone.
    [[nodiscard]] ::testing::AssertionResult rejected(const std::string& line) const;
    /// Status 2, some of the progress lines, no other, and this on standard output.
    [[nodiscard]] ::testing::AssertionResult quiet(const std::string& output) const;
    /// Status 2 and not a byte on either output.
    [[nodiscard]] ::testing::AssertionResult mute() const;
    /// Any end but success, with an empty standard output.
    [[nodiscard]] ::testing::AssertionResult silent() const;

    [[nodiscard]] static ::testing::AssertionResult oneOf(
        std::initializer_list<::testing::AssertionResult> outcomes);

    /// Whether this stood in the scene's folder before the run.
    [[nodiscard]] bool wasThere(const std::string& name) const { return before_.count(name) > 0; }

  private:
    [[nodiscard]] ::testing::AssertionResult gives(const AAFWorkerProtocol::Result& expected) const;

    const Scene& scene_;
    const Undisturbed& undisturbed_;
    const std::map<std::string, std::string>& before_;
    const WorkerRun& run_;
    const std::vector<SeenCall>& calls_;
    std::map<std::string, std::string> after_;
};

}  // namespace trellant::testing
