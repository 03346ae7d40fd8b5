// SPDX-License-Identifier: Apache-2.0
// trellant: the command for people.
#include "catalogue/catalogue.h"
#include "check/check.h"
#include "commands.h"
#include "dump/dump.h"
#include "export/export.h"
#include "extract/extract.h"
#include "render/render.h"
#include "scan/scan.h"
#include "terminal/interrupts.h"

#include <trellant/handoff/hand_off.h>

#include <exception>
#include <sstream>
#include <string>
#include <type_traits>
#include <variant>

namespace trellant::cli {

namespace {

ExitStatus perform(const Call& call, Console& console) {
    const StopToken stop = interruptToken();
    return std::visit(
        [&console, &stop](const auto& options) {
            using Options = std::decay_t<decltype(options)>;
            if constexpr (std::is_same_v<Options, InfoOptions>) {
                return runInfo(options, console, stop);
            } else if constexpr (std::is_same_v<Options, ListOptions>) {
                return runList(options, console, stop);
            } else if constexpr (std::is_same_v<Options, PeaksOptions>) {
                const Cancellable heeded;
                return runPeaks(options, console, stop);
            } else if constexpr (std::is_same_v<Options, ValidateOptions>) {
                return runValidate(options, console);
            } else if constexpr (std::is_same_v<Options, DumpCall>) {
                return runDump(options, console);
            } else if constexpr (std::is_same_v<Options, CheckCall>) {
                return runCheck(options, console, stop);
            } else if constexpr (std::is_same_v<Options, ExportCall>) {
                const Cancellable heeded;
                return runExport({.call = options, .helperURLProvider = installedWorker}, console,
                                 stop);
            } else if constexpr (std::is_same_v<Options, RenderCall>) {
                const Cancellable heeded;
                return runRender({.call = options, .helperURLProvider = installedWorker}, console,
                                 stop);
            } else if constexpr (std::is_same_v<Options, ScanCall>) {
                return runScanCall(options, console, stop);
            } else if constexpr (std::is_same_v<Options, CatalogueCall>) {
                return runCatalogue(options, console, stop);
            } else if constexpr (std::is_same_v<Options, PageCall>) {
                return runPage(options, console, stop);
            } else {
                static_assert(std::is_same_v<Options, ExtractCall>);
                const Cancellable heeded;
                return runExtract({.call = options, .helperURLProvider = installedWorker}, console,
                                  stop);
            }
        },
        call);
}

/// Whether the call forks before all else: no thread may be about then, and an interrupt ends it
/// anyhow.
bool forksAtOnce(const Call& call) {
    const auto* const extract = std::get_if<ExtractCall>(&call);
    return std::holds_alternative<DumpCall>(call) ||
           std::holds_alternative<ValidateOptions>(call) ||
           (extract != nullptr && extract->salvage);
}

ExitStatus run(int argc, const char* const* argv) {
    const CommandLine line = readCommandLine(argc, argv);
    Console console(line.verbosity);
    try {
        if (line.call) {
            if (!forksAtOnce(*line.call)) {
                watchInterrupts();
            }
            return perform(*line.call, console);
        }
        if (line.status == ExitStatus::done) {
            console.out(line.text);
        } else {
            std::istringstream lines(line.text);
            for (std::string text; std::getline(lines, text);) {
                console.error(text);
            }
        }
        return line.status;
    } catch (const OutputClosed&) {
        return ExitStatus::done;
    } catch (const std::exception& error) {
        console.endBar();
        console.error(error.what());
        return ExitStatus::fileFailed;
    }
}

}  // namespace

}  // namespace trellant::cli

int main(int argc, char** argv) {
    return static_cast<int>(trellant::cli::run(argc, argv));
}
