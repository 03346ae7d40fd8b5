// SPDX-License-Identifier: Apache-2.0
// trellant-omf: one process, one request. The request comes on standard input, the result goes to
// standard output, progress and at most one log line to standard error; the exit status says which
// of three outcomes happened. This is the one place where errors become texts.
#include "confined_reach.h"
#include "omf_reader.h"
#include "standard_streams.h"
#include "usage.h"

#include <trellant/base/host_watch.h>
#include <trellant/confine/memory_allowance.h>
#include <trellant/io/errors.h>
#include <trellant/protocol/messages.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <new>
#include <span>
#include <string>

namespace trellant {

namespace {

/// Below this fraction the composition is being read, from it on its sources are resolved.
constexpr double resolvingFrom = 0.3;

AAFWorkerProtocol::Request acceptedRequest(const std::string& input) {
    if (input.empty()) {
        fail("empty request on stdin", ExitStatus::requestRejected);
    }
    AAFWorkerProtocol::Request request;
    try {
        request = decodeRequest(input);
    } catch (const JsonDecodingError& error) {
        fail(std::string("invalid request JSON: ") + error.what(), ExitStatus::requestRejected);
    }
    if (request.protocolVersion != AAFWorkerProtocol::version) {
        fail("unsupported protocol version " + std::to_string(request.protocolVersion),
             ExitStatus::requestRejected);
    }
    return request;
}

void serve(const AAFWorkerProtocol::Request& request) {
    emitProgress("opening", 0.05);
    const auto result = OMFReader::process(
        request,
        [](double fraction) {
            emitProgress(fraction < resolvingFrom ? "reconstructing" : "resolving", fraction);
        },
        confineTo);
    emitProgress("finishing", 0.95);
    StandardOutput output;
    encodeResult(result, output);
    emitProgress("done", 1.0);
}

/// Serves the request within the memory that it allows, if it says so.
void serveWithin(const AAFWorkerProtocol::Request& request) {
    const std::int64_t limit = request.memoryLimit.value_or(0);
    const bool isLimited =
        request.memoryLimit &&
        limitMemory(static_cast<std::uint64_t>(std::max<std::int64_t>(limit, 0)));
    try {
        serve(request);
    } catch (const std::bad_alloc&) {
        if (!isLimited) {
            throw;
        }
        throw OMFIOError::unsupported("composition needs more than " + std::to_string(limit) +
                                      " bytes of memory");
    }
}

ExitStatus run(std::span<char* const> arguments) {
    prepareStandardStreams();
    watchHost(static_cast<int>(ExitStatus::processingFailed));
    removeUnfinishedFileOnSignals();
    try {
        if (const auto text = askedOfWorker(arguments)) {
            StandardOutput().write(*text);
            return ExitStatus::success;
        }
        keepWithinMemory();
        serveWithin(acceptedRequest(readStandardInput()));
    } catch (const OMFIOError& error) {
        fail(error.errorDescription(), ExitStatus::processingFailed);
    } catch (const std::bad_alloc&) {
        fail("unexpected failure: out of memory", ExitStatus::processingFailed);
    } catch (const std::exception& error) {
        fail(std::string("unexpected failure: ") + error.what(), ExitStatus::processingFailed);
    }
    return ExitStatus::success;
}

}  // namespace

}  // namespace trellant

int main(int count, char** arguments) {
    // Ends without unwinding what the system reclaims anyway.
    trellant::end(trellant::run({arguments, static_cast<std::size_t>(count)}));
}
