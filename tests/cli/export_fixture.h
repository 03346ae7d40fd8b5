// SPDX-License-Identifier: Apache-2.0
// `trellant export` over documents that a test makes, with the real worker and converter.
#pragma once

#include "export/export.h"
#include "extract_fixture.h"

#include <nlohmann/json.hpp>

#include <string>
#include <vector>

namespace trellant::testing {

class ExportTest : public ExtractTest {
  protected:
    /// Options for `file` into "out", as REAPER projects: text that a test can look into.
    [[nodiscard]] cli::ExportOptions exporting(
        const std::string& file,
        exchange::ExportFormat format = exchange::ExportFormat::reaper) const;
    [[nodiscard]] Said exported(const cli::ExportOptions& options, const Setting& setting = {},
                                const StopToken& stop = {}) const;
    /// An export that must end well; what stands on standard output.
    std::string exportWell(const cli::ExportOptions& options) const;

    [[nodiscard]] nlohmann::json losses(const std::string& name = "mix") const;
    /// Every name below "out", with its folder.
    [[nodiscard]] std::vector<std::string> written() const;
};

}  // namespace trellant::testing
