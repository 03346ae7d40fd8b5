// SPDX-License-Identifier: Apache-2.0
// AAFWorkerProtocol: the contract between a host and a worker process. The host writes one Request
// to the worker's standard input and closes it; the worker writes any number of Progress records to
// standard error (lines.h frames them) and, on success only, one Result to standard output, without
// a byte after it.
#pragma once

#include <trellant/base/cancellation.h>
#include <trellant/json/json_writer.h>
#include <trellant/model/enum_names.h>
#include <trellant/model/timeline.h>
#include <trellant/model/timeline_json.h>
#include <trellant/protocol/extensions.h>

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace [[gnu::visibility("default")]] trellant {

struct AAFWorkerProtocol {
    AAFWorkerProtocol() = delete;

    /// Both sides compare it for equality; there is no negotiation.
    static constexpr std::int64_t version = 1;

    /// Host to worker. Paths are UTF-8; relative ones are taken against the worker's current
    /// folder.
    struct Request {
        enum class Operation {
            /// Read and map; nothing is written.
            inspect,
            /// Create the work directory, read and map, extract embedded audio into it.
            extractAndInspect,
            /// As `inspect`.
            verifyExport
        };

        std::int64_t protocolVersion = version;
        Operation operation = Operation::inspect;
        std::string aafPath;
        std::string workDirectory;
        /// Where external media files are looked for. Empty text is a path, not an absence.
        std::optional<std::string> mediaSearchDirectory;
        /// Options of the host that travel with the request; the worker does not act on them.
        bool recoverProToolsTrueFades = false;
        bool removeProToolsSampleAccurateEditFragments = false;
        /// What the answer is to hold beside the timeline, by name (AAFWorkerExtensions). Names
        /// that the worker does not know are passed over. Absent: the answer has no extensions at
        /// all.
        std::optional<std::vector<std::string>> extensions{};
        /// Bytes of memory that the worker may take at most; one that needs more fails. Absent: as
        /// much as there is.
        std::optional<std::int64_t> memoryLimit{};
        bool operator==(const Request&) const = default;
    };

    /// Worker to host, while it works.
    struct Progress {
        /// "opening", "reconstructing", "resolving", "finishing" or "done".
        std::string phase;
        /// From 0 to 1.
        double fraction = 0;
        std::optional<std::string> detail;
        bool operator==(const Progress&) const = default;
    };

    /// Worker to host, once, when all went well.
    struct Result {
        std::int64_t protocolVersion = version;
        AAFTimeline timeline;
        /// Remarks of the mapping, in the order made.
        std::vector<std::string> diagnostics;
        /// A digest for each extracted file; the worker leaves it out.
        std::optional<std::map<std::string, std::string>> embeddedMediaSHA256;
        /// There exactly when the request had the key, with those of its names that are known.
        Boxed<AAFWorkerExtensions> extensions{};
        bool operator==(const Result&) const = default;
    };
};

template <>
struct EnumNames<AAFWorkerProtocol::Request::Operation> {
    static constexpr std::array<std::string_view, 3> names{"inspect", "extractAndInspect",
                                                           "verifyExport"};
};

/// Throws JsonDecodingError.
[[nodiscard]] AAFWorkerProtocol::Request decodeRequest(std::string_view json);
/// Keys in the documented order.
[[nodiscard]] std::string encodeRequest(const AAFWorkerProtocol::Request& request);

/// Throws JsonDecodingError.
[[nodiscard]] AAFWorkerProtocol::Progress decodeProgress(std::string_view json);
/// Keys in the order phase, fraction, detail. Throws JsonEncodingError for a fraction that is not
/// finite.
[[nodiscard]] std::string encodeProgress(const AAFWorkerProtocol::Progress& progress);

/// Throws JsonDecodingError, and AAFRawTimelineValidation::Failure for a timeline that does not
/// pass its checks, unless `checks` asks for none.
[[nodiscard]] AAFWorkerProtocol::Result decodeResult(
    std::string_view json, TimelineChecks checks = TimelineChecks::validate,
    const StopToken& stop = {});
/// Keys of every object in ascending code-point order. Throws JsonEncodingError before the sink is
/// called for the first time.
void encodeResult(const AAFWorkerProtocol::Result& result, JsonSink& sink);

}  // namespace trellant
