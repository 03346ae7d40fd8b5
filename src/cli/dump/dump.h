// SPDX-License-Identifier: Apache-2.0
// The container behind a file, for engineers.
#pragma once

#include "terminal/console.h"
#include "terminal/exit_status.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace trellant::cli {

/// At most one of `toc`, `object` and `path`; without any the dump is an overview.
struct DumpOptions {
    std::string file{};
    /// Every item of the table of contents.
    bool toc = false;
    /// One object with its properties.
    std::optional<std::uint32_t> object{};
    /// The object that a loss names, step by step: "CMOB[12]/slot[34]/SEQU[56]/component[2]".
    std::optional<std::string> path{};
    /// Lists and values are shown whole.
    bool all = false;
    /// JSON objects, a line each.
    bool json = false;
};

/// The same of several files, one after the other.
struct DumpCall {
    std::vector<std::string> files;
    /// Without a file.
    DumpOptions each{};
};

/// Reads in a confined child process, which writes to standard output as it goes: no file takes the
/// command down or makes it do anything else, and a long list needs no memory. `fileFailed` for a
/// file that is damaged, after what could be read of it; `wrongUse` for an object or a path that is
/// not in the file. Throws OutputClosed.
[[nodiscard]] ExitStatus runDump(const DumpOptions& options, Console& console);
/// Each file in a child of its own; the worst of their statuses.
[[nodiscard]] ExitStatus runDump(const DumpCall& call, Console& console);

}  // namespace trellant::cli
