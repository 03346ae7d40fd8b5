// SPDX-License-Identifier: Apache-2.0
// One request, from its paths to its result.
#pragma once

#include <trellant/protocol/messages.h>

#include <functional>
#include <optional>
#include <string>

namespace trellant {

/// Serves requests; holds no state.
struct OMFReader {
    /// Takes a fraction from 0 to 1, on the calling thread.
    using Progress = std::function<void(double)>;
    /// Takes the one folder that will be written to, absolute and there already; absent: none.
    using BeforeReading = std::function<void(const std::optional<std::string>&)>;

    /// Opens and maps the file that the request names. Only `extractAndInspect` writes anything:
    /// it creates the work directory and takes embedded audio out into it. `beforeReading` is
    /// called once, between the two: before anything of the file has been read. Throws OMFIOError
    /// for what is wrong with the file, FileSystemError for what the system refuses, and what the
    /// two functions throw.
    [[nodiscard]] static AAFWorkerProtocol::Result process(
        const AAFWorkerProtocol::Request& request, const Progress& progress = [](double) {},
        const BeforeReading& beforeReading = [](const std::optional<std::string>&) {});
};

}  // namespace trellant
