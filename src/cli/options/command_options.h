// SPDX-License-Identifier: Apache-2.0
// The options of each command. A command's call lives in its record, where the parser fills it.
#pragma once

#include "options/options.h"

#include <CLI/CLI.hpp>
#include <functional>

namespace trellant::cli {

struct CommandOptions {
    /// Of the program's parser, which owns it.
    const CLI::App* app = nullptr;
    /// What was asked for, once the command line is read.
    std::function<Call()> call;
};

[[nodiscard]] CommandOptions addInfo(CLI::App& program);
[[nodiscard]] CommandOptions addList(CLI::App& program);
[[nodiscard]] CommandOptions addExtract(CLI::App& program);
[[nodiscard]] CommandOptions addExport(CLI::App& program);
[[nodiscard]] CommandOptions addRender(CLI::App& program);
[[nodiscard]] CommandOptions addCheck(CLI::App& program);
[[nodiscard]] CommandOptions addPage(CLI::App& program);
[[nodiscard]] CommandOptions addPeaks(CLI::App& program);
[[nodiscard]] CommandOptions addScan(CLI::App& program);
[[nodiscard]] CommandOptions addCatalogue(CLI::App& program);
[[nodiscard]] CommandOptions addDump(CLI::App& program);
[[nodiscard]] CommandOptions addValidate(CLI::App& program);

}  // namespace trellant::cli
