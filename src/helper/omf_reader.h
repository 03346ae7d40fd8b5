// SPDX-License-Identifier: Apache-2.0
// One request, from its paths to its result.
#pragma once

#include <trellant/protocol/messages.h>

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace trellant {

/// Serves requests; holds no state.
struct OMFReader {
    /// Takes a fraction from 0 to 1, on the calling thread.
    using Progress = std::function<void(double)>;
    /// What the request touches in the file system; all paths are absolute.
    struct Reach {
        /// The file itself.
        std::string source{};
        /// The one folder that will be written to, there already; absent: none.
        std::optional<std::string> writableDirectory{};
        /// Where external media are looked for, folders within too; absent: nowhere.
        std::optional<std::string> searchedFolder{};
        /// The files that will be read beside what is written; absent: not known yet.
        std::optional<std::vector<std::string>> files{};
    };
    using WithinReach = std::function<void(const Reach&)>;

    /// Opens and maps the file that the request names. Only `extractAndInspect` writes anything:
    /// it creates the work directory and takes embedded audio out into it. `withinReach` is
    /// called between the two, before anything of the file has been read, and once more, with all
    /// files, before the composition is mapped. Throws OMFIOError for what is wrong with the file,
    /// FileSystemError for what the system refuses, and what the two functions throw.
    [[nodiscard]] static AAFWorkerProtocol::Result process(
        const AAFWorkerProtocol::Request& request, const Progress& progress = [](double) {},
        const WithinReach& withinReach = [](const Reach&) {});
};

}  // namespace trellant
