// SPDX-License-Identifier: Apache-2.0
#include "usage.h"

#include <trellant/version.h>

#include <string_view>

namespace trellant {

namespace {

constexpr std::string_view helpText =
    R"(Usage: trellant-omf < REQUEST > RESULT
       trellant-omf --help | --version

Reads an OMF 2.x file into an exact timeline: the worker behind trellant, one process for one
request. It takes no other arguments. The request, one JSON object, comes on standard input; the
result goes to standard output, progress and at most one message to standard error.

  {"protocolVersion": 1, "operation": "inspect",
   "aafPath": "session.omf", "workDirectory": "audio",
   "recoverProToolsTrueFades": false,
   "removeProToolsSampleAccurateEditFragments": false}

Operations:
  inspect            read and map, nothing is written
  extractAndInspect  and take embedded audio out into the work directory
  verifyExport       as inspect

Exit status: 0 a result was written, 1 the request was not accepted, 2 it failed.

The manual page trellant-omf(1) has every key. To look into files by hand: trellant --help.
)";

}  // namespace

std::optional<std::string> askedOfWorker(std::span<char* const> arguments) {
    if (arguments.size() != 2) {
        return std::nullopt;
    }
    const std::string_view word = arguments[1];
    if (word == "--help") {
        return std::string(helpText);
    }
    if (word == "--version") {
        return std::string("trellant-omf ").append(versionText).append("\n");
    }
    return std::nullopt;
}

}  // namespace trellant
