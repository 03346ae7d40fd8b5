// SPDX-License-Identifier: Apache-2.0
// One file rendered, and what is said of it.
#pragma once

#include "extract/staged_run.h"
#include "render.h"

#include <string>

namespace trellant::cli {

/// One file of a call, and the folder for it.
struct RenderJob {
    std::string file;
    std::string directory;
};

class SessionRenderer {
  public:
    /// All of them must outlive this.
    SessionRenderer(const RenderOptions& options, Console& console, const StopToken& stop)
        : options_(options), console_(console), stop_(stop) {}

    [[nodiscard]] ExitStatus run(const RenderJob& job);

  private:
    using Outcome = StagedOutcome<render::RenderReport>;

    [[nodiscard]] Outcome write(const RenderJob& job);
    [[nodiscard]] render::RenderRequest requestOf(const RenderJob& job,
                                                  const std::string& directory) const;
    [[nodiscard]] ExitStatus conclude(const RenderJob& job, const render::RenderReport& report);

    const RenderOptions& options_;
    Console& console_;
    const StopToken& stop_;
};

}  // namespace trellant::cli
