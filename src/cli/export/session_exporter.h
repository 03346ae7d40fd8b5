// SPDX-License-Identifier: Apache-2.0
// One file's session written, and what is said of it.
#pragma once

#include "export.h"
#include "extract/staged_run.h"

#include <trellant/exporter/exporter.h>

#include <string>

namespace trellant::cli {

/// One file of a call, and what its session is called.
struct ExportJob {
    std::string file;
    std::string name;
};

class SessionExporter {
  public:
    /// All of them must outlive this.
    SessionExporter(const ExportOptions& options, Console& console, const StopToken& stop)
        : options_(options), console_(console), stop_(stop) {}

    [[nodiscard]] ExitStatus run(const ExportJob& job);

  private:
    using Outcome = StagedOutcome<ExportReport>;

    [[nodiscard]] Outcome write(const ExportJob& job);
    [[nodiscard]] ExitStatus conclude(const ExportJob& job, const ExportReport& report);

    const ExportOptions& options_;
    Console& console_;
    const StopToken& stop_;
};

}  // namespace trellant::cli
