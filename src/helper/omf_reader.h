// One request, from its paths to its result.
#pragma once

#include <trellant/protocol/messages.h>

#include <functional>

namespace trellant {

/// Serves requests; holds no state.
struct OMFReader {
    /// Takes a fraction from 0 to 1, on the calling thread.
    using Progress = std::function<void(double)>;

    /// Opens and maps the file that the request names. Only `extractAndInspect` writes anything:
    /// it creates the work directory and takes embedded audio out into it. Throws OMFIOError for
    /// what is wrong with the file and FileSystemError for what the system refuses.
    [[nodiscard]] static AAFWorkerProtocol::Result process(
        const AAFWorkerProtocol::Request& request, const Progress& progress = [](double) {});
};

}  // namespace trellant
