// SPDX-License-Identifier: Apache-2.0
// Files of real workstations: where they are, and the worker run over one of them.
#pragma once

#include <trellant/protocol/messages.h>

#include <optional>
#include <string>
#include <string_view>
#include <trellant_testing/temporary_directory.h>
#include <trellant_testing/worker_process.h>
#include <vector>

namespace trellant::testing {

/// Every "*.omf" of the folder that is OMF 2, in order; absent when no folder is named.
[[nodiscard]] std::optional<std::vector<std::string>> realFiles();
/// Those that are OMF 1.
[[nodiscard]] std::optional<std::vector<std::string>> realFilesOfVersion1();
/// The file of that name; absent when it is not there.
[[nodiscard]] std::optional<std::string> realFile(std::string_view name);

class RealFileRun {
  public:
    RealFileRun(std::string_view operation, const std::string& path);

    [[nodiscard]] const WorkerRun& run() const noexcept { return run_; }
    /// The result, decoded and validated.
    [[nodiscard]] AAFWorkerProtocol::Result result() const { return decodeResult(run_.output); }
    [[nodiscard]] std::string workFile(std::string_view name) const;
    /// The names in the work directory; absent when there is none.
    [[nodiscard]] std::optional<std::vector<std::string>> workFiles() const;

  private:
    TemporaryDirectory directory_;
    WorkerRun run_;
};

}  // namespace trellant::testing
