// SPDX-License-Identifier: Apache-2.0
// `trellant dump`: the container behind a file, read in a confined child.
#include "dump/dump.h"

#include "dump/dump_container.h"
#include "look/failure_text.h"
#include "process/forked_child.h"
#include "terminal/failure_line.h"

#include <trellant/base/printable_path.h>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace trellant::cli {

namespace {

/// What the child answers beside a status when nobody reads any more.
constexpr std::string_view closedAnswer = "closed";

std::string dumpInChild(const DumpOptions& options, Console& console) {
    try {
        return std::to_string(static_cast<int>(dumpContainer(options, console)));
    } catch (const OutputClosed&) {
        return std::string(closedAnswer);
    }
}

ExitStatus failed(const DumpOptions& options, const std::string& line, const std::string& why,
                  Console& console) {
    if (options.json) {
        console.out(failureLine(options.file, why));
    }
    console.error(line);
    return ExitStatus::fileFailed;
}

}  // namespace

ExitStatus runDump(const DumpOptions& options, Console& console) {
    if (const auto failure = streamFailure(options.file)) {
        return failed(options, printablePath(options.file) + ": " + *failure, *failure, console);
    }
    const ForkedAnswer answer = inConfinedChild([&] { return dumpInChild(options, console); },
                                                std::nullopt, std::vector{options.file});
    if (const auto* failure = std::get_if<ForkedFailure>(&answer)) {
        const std::string why = whyNoAnswer(options.file, *failure);
        return failed(options, why, why, console);
    }
    const auto& text = std::get<std::string>(answer);
    if (text == closedAnswer) {
        throw OutputClosed{};
    }
    return text == "0"   ? ExitStatus::done
           : text == "1" ? ExitStatus::wrongUse
                         : ExitStatus::fileFailed;
}

ExitStatus runDump(const DumpCall& call, Console& console) {
    ExitStatus status = ExitStatus::done;
    bool isFirst = true;
    for (const std::string& file : call.files) {
        DumpOptions options = call.each;
        options.file = file;
        if (!isFirst && !options.json) {
            console.out("\n");
        }
        isFirst = false;
        status = worse(status, runDump(options, console));
    }
    return status;
}

}  // namespace trellant::cli
