// SPDX-License-Identifier: Apache-2.0
// One example, mapped by the worker as a user would do it.
#pragma once

#include <trellant/model/timeline.h>

#include <examples.h>
#include <string>
#include <string_view>
#include <trellant_testing/temporary_directory.h>
#include <trellant_testing/worker_process.h>
#include <vector>

namespace trellant::testing {

/// The folder with the committed examples.
[[nodiscard]] std::string examplesFolder();

class ExampleRun {
  public:
    /// Copies the committed files of the example into a folder and takes its audio out beside.
    explicit ExampleRun(const examples::Example& example);

    [[nodiscard]] const WorkerRun& run() const noexcept { return run_; }
    /// Standard output with the two folders replaced by EXAMPLES and WORK.
    [[nodiscard]] std::string portableOutput() const;
    [[nodiscard]] std::string workFile(std::string_view name) const;
    /// The names in the work directory, in order.
    [[nodiscard]] std::vector<std::string> workFiles() const;

    /// The result, decoded and validated.
    [[nodiscard]] AAFTimeline timeline() const;
    [[nodiscard]] std::vector<std::string> diagnostics() const;

  private:
    TemporaryDirectory directory_;
    WorkerRun run_;
};

}  // namespace trellant::testing
