// One look at a file, as every command needs it: the worker's timeline, made usable where it is
// odd, and the losses placed on it.
#pragma once

#include "changes.h"

#include <trellant/base/cancellation.h>
#include <trellant/mapper/compositions.h>
#include <trellant/model/timeline.h>
#include <trellant/protocol/messages.h>

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace trellant::cli {

/// A loss where editors look for it.
struct PlacedLoss {
    /// Those of the record.
    std::string description{};
    std::optional<std::string> objectPath{};
    std::optional<std::string> trackID{};
    std::optional<std::string> trackName{};
    /// The track's number in the composition, from 1.
    std::optional<std::int64_t> trackNumber{};
    std::optional<std::string> clipName{};
    /// Timeline seconds.
    std::optional<AAFRational> start{};
    std::optional<AAFRational> duration{};
    /// What it means, in one sentence.
    std::string plain{};
};

struct Inspection {
    /// Passes validation.
    AAFTimeline timeline;
    std::vector<std::string> diagnostics;
    /// What was changed for that; empty for nearly every file.
    std::vector<ToldChange> changes;
    /// One for each of the timeline's unsupportedFeatures, in their order; where the place is not
    /// known only the record's own texts are there.
    std::vector<PlacedLoss> losses;
    /// The chosen one first.
    std::vector<AAFComposition> compositions;
    /// Why the places of the losses and the compositions are missing, when they are.
    std::optional<std::string> unread;
    /// Ids of the essences for which the media folder holds several files.
    std::vector<std::string> ambiguousEssences;
};

/// Where the command's worker lies: as bundledHelper has it, or in the command's own folder.
[[nodiscard]] std::optional<std::filesystem::path> findWorker(const std::string& name);

struct InspectionRequest {
    std::string file;
    AAFWorkerProtocol::Request::Operation operation =
        AAFWorkerProtocol::Request::Operation::inspect;
    std::string workDirectory = ".";
    std::optional<std::string> mediaFolder{};
};

/// Runs the worker. Throws AAFWorkerClientError and AAFCancellationError; what only adds to the
/// picture (places, compositions) is left out when it cannot be had. `whileWaiting`, called about
/// ten times a second until the worker is done, may move a bar.
[[nodiscard]] Inspection inspectFile(
    const InspectionRequest& request, const StopToken& stop,
    const std::function<void(const AAFWorkerProtocol::Progress&)>& progress = {},
    const std::function<void()>& whileWaiting = {});

}  // namespace trellant::cli
