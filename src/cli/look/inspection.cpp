#include "inspection.h"

#include "file_reading.h"

#include <trellant/base/executable_location.h>
#include <trellant/client/worker_client.h>
#include <trellant/model/repair.h>
#include <trellant/model/validation.h>

#include <chrono>
#include <filesystem>
#include <system_error>
#include <thread>
#include <utility>

namespace trellant::cli {

namespace {

constexpr std::chrono::milliseconds betweenLooks{100};

std::string absoluteText(const std::string& path) {
    return std::filesystem::absolute(path).string();
}

AAFWorkerProtocol::Request requestFor(const InspectionRequest& request) {
    AAFWorkerProtocol::Request sent;
    sent.operation = request.operation;
    sent.aafPath = absoluteText(request.file);
    sent.workDirectory = absoluteText(request.workDirectory);
    if (request.mediaFolder) {
        sent.mediaSearchDirectory = absoluteText(*request.mediaFolder);
    }
    return sent;
}

/// Odd but real files lead to timelines that no program may rely on; just the piece at fault goes.
void makeUsable(Inspection& inspection) {
    try {
        AAFRawTimelineValidation::validate(inspection.timeline);
    } catch (const AAFRawTimelineValidation::Failure&) {
        AAFRepair repair = repairedTimeline(inspection.timeline);
        inspection.changes = toldChanges(inspection.timeline, repair.changes);
        inspection.timeline = std::move(repair.timeline);
    }
}

/// A place for each record. The places come from a reading that took nothing out, so an extraction
/// may have records between them that the reading has not; the others follow in the same order.
std::vector<PlacedLoss> lossesOf(const AAFTimeline& timeline, std::vector<PlacedLoss> places) {
    std::vector<PlacedLoss> losses;
    losses.reserve(timeline.unsupportedFeatures.size());
    auto place = places.begin();
    for (const AAFUnsupportedFeature& feature : timeline.unsupportedFeatures) {
        if (place != places.end() && place->description == feature.description &&
            place->objectPath == feature.objectPath) {
            losses.push_back(std::move(*place));
            ++place;
        } else {
            losses.push_back(
                {.description = feature.description, .objectPath = feature.objectPath});
        }
    }
    return losses;
}

}  // namespace

std::optional<std::filesystem::path> findWorker(const std::string& name) {
    if (auto bundled = bundledHelper(name)) {
        return bundled;
    }
    if (const auto folder = executableDirectory()) {
        std::filesystem::path beside = std::filesystem::path(*folder) / name;
        std::error_code ignored;
        if (std::filesystem::is_regular_file(beside, ignored)) {
            return beside;
        }
    }
    return std::nullopt;
}

Inspection inspectFile(const InspectionRequest& request, const StopToken& stop,
                       const std::function<void(const AAFWorkerProtocol::Progress&)>& progress,
                       const std::function<void()>& whileWaiting) {
    // Whatever the file is called, only one worker reads such files.
    AAFWorkerClient client;
    client.helperName = "trellant-omf";
    client.helperURLProvider = findWorker;
    auto future = client.run(requestFor(request), progress, stop, TimelineChecks::none);
    while (future.wait_for(betweenLooks) != std::future_status::ready) {
        if (whileWaiting) {
            whileWaiting();
        }
    }
    AAFWorkerProtocol::Result result = future.get();
    Inspection inspection;
    inspection.timeline = std::move(result.timeline);
    inspection.diagnostics = std::move(result.diagnostics);
    makeUsable(inspection);
    const std::optional<std::string> mediaFolder =
        request.mediaFolder ? std::optional(absoluteText(*request.mediaFolder)) : std::nullopt;
    std::vector<PlacedLoss> places;
    FileReading reading = readFile(request.file, mediaFolder);
    if (reading.failure) {
        // Ctrl-C ends both processes, in either order.
        for (int looks = 0; looks < 10 && !stop.stop_requested(); ++looks) {
            std::this_thread::sleep_for(betweenLooks / 10);
        }
    }
    if (stop.stop_requested()) {
        throw AAFCancellationError();
    }
    inspection.compositions = std::move(reading.compositions);
    inspection.unread = std::move(reading.failure);
    places = std::move(reading.losses);
    inspection.losses = lossesOf(inspection.timeline, std::move(places));
    return inspection;
}

}  // namespace trellant::cli
