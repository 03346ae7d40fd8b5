// SPDX-License-Identifier: Apache-2.0
#include "loss_names.h"

#include <trellant/base/executable_location.h>
#include <trellant/base/keyed_hash.h>
#include <trellant/base/url.h>
#include <trellant/handoff/audio_facts.h>
#include <trellant/handoff/hand_off.h>
#include <trellant/handoff/loss_sentences.h>
#include <trellant/handoff/media_folders.h>
#include <trellant/model/repair.h>
#include <trellant/model/validation.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <limits>
#include <memory>
#include <mutex>
#include <system_error>
#include <utility>

namespace trellant {

namespace fs = std::filesystem;

namespace {

constexpr std::chrono::milliseconds betweenLooks{100};

using Extensions = AAFWorkerExtensions;

/// What an answer, and the worker that gives it, may take: so much for any file, and so many times
/// the file's size. Real files stay far below; small ones that describe millions of clips or losses
/// by using their parts again end with an error instead of filling this process with them, which
/// takes some ten times an answer's size to list it.
constexpr std::uint64_t anyAnswer = 33'554'432;
constexpr std::uint64_t answerTimesTheFile = 16;
constexpr std::uint64_t anyMemory = 402'653'184;
constexpr std::uint64_t memoryTimesTheFile = 64;

/// 0 for what cannot be looked at: the worker says why.
std::uint64_t sizeOf(const std::string& path) {
    constexpr std::uint64_t largestFile = std::uint64_t{1} << 50U;
    std::error_code failure;
    const std::uintmax_t size = fs::file_size(path, failure);
    return failure ? 0 : std::min<std::uint64_t>(size, largestFile);
}

std::string absoluteText(const std::string& path) {
    return fs::absolute(path).string();
}

AAFWorkerProtocol::Request requestFor(const WorkerTask& task) {
    AAFWorkerProtocol::Request sent;
    sent.operation = task.operation;
    sent.aafPath = absoluteText(task.file);
    sent.workDirectory = absoluteText(task.workDirectory);
    sent.extensions = task.extensions;
    constexpr auto most = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
    const std::uint64_t memory =
        task.memoryLimit.value_or(anyMemory + memoryTimesTheFile * sizeOf(task.file));
    sent.memoryLimit = static_cast<std::int64_t>(std::min(memory, most));
    return sent;
}

/// Progress on its way to a callback that belongs to whoever asks: the client may leave one that is
/// stuck to itself, and it must not outlive the asking.
class AskersProgress {
  public:
    explicit AskersProgress(AAFWorkerClient::Progress callback)
        : state_(std::make_shared<State>(std::move(callback))) {}
    /// Waits for a callback that is running.
    ~AskersProgress() {
        const std::lock_guard lock(state_->mutex);
        state_->callback = nullptr;
    }
    AskersProgress(const AskersProgress&) = delete;
    AskersProgress& operator=(const AskersProgress&) = delete;
    AskersProgress(AskersProgress&&) = delete;
    AskersProgress& operator=(AskersProgress&&) = delete;

    [[nodiscard]] AAFWorkerClient::Progress callback() const {
        return [state = state_](const AAFWorkerProtocol::Progress& report) {
            const std::lock_guard lock(state->mutex);
            if (state->callback) {
                state->callback(report);
            }
        };
    }

  private:
    struct State {
        explicit State(AAFWorkerClient::Progress called) : callback(std::move(called)) {}

        std::mutex mutex{};
        AAFWorkerClient::Progress callback;
    };
    std::shared_ptr<State> state_;
};

PlacedLoss placedLoss(const AAFUnsupportedFeature& feature, const Extensions::LossPlace& place) {
    PlacedLoss loss{.description = feature.description,
                    .objectPath = feature.objectPath,
                    .trackID = place.trackID,
                    .trackName = place.trackName,
                    .clipName = place.clipName,
                    .start = place.start,
                    .duration = place.duration,
                    .plain = std::string(plainSentence(place.kind)),
                    .kind = place.kind};
    if (place.trackIndex) {
        loss.trackNumber = *place.trackIndex + 1;
    }
    return loss;
}

std::vector<PlacedLoss> lossesOf(const AAFTimeline& timeline,
                                 const Boxed<Extensions::LossPlaces>& places) {
    std::vector<PlacedLoss> losses;
    losses.reserve(timeline.unsupportedFeatures.size());
    for (std::size_t i = 0; i < timeline.unsupportedFeatures.size(); ++i) {
        const AAFUnsupportedFeature& feature = timeline.unsupportedFeatures[i];
        if (places && i < places->places.size()) {
            losses.push_back(placedLoss(feature, places->places[i]));
        } else {
            losses.push_back(
                {.description = feature.description, .objectPath = feature.objectPath});
        }
    }
    return losses;
}

/// Samples of one channel of an essence's file of its own; absent where its header does not tell.
std::optional<std::int64_t> framesOfFile(const AAFSourceEssence& essence) {
    const auto path = essence.fileURL ? pathOfFileURL(essence.fileURL->text) : std::nullopt;
    const auto facts = path ? audioFacts(*path) : std::nullopt;
    constexpr auto most = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
    if (!facts || !facts->frames || *facts->frames > most) {
        return std::nullopt;
    }
    return static_cast<std::int64_t>(*facts->frames);
}

/// What is told of events by their places, for a timeline that has others or fewer.
void followEvents(HandOff& handOff, const AAFTimeline& repaired) {
    KeyedMap<std::string_view, std::int64_t> mobs;
    const auto& events = handOff.timeline.events;
    for (std::size_t i = 0; i < events.size() && i < handOff.masterMobOfEvents.size(); ++i) {
        mobs.emplace(events[i].id, handOff.masterMobOfEvents[i]);
    }
    std::vector<std::int64_t> followed;
    followed.reserve(mobs.empty() ? 0 : repaired.events.size());
    for (std::size_t i = 0; i < repaired.events.size() && !mobs.empty(); ++i) {
        const auto mob = mobs.find(repaired.events[i].id);
        followed.push_back(mob == mobs.end() ? -1 : mob->second);
    }
    handOff.masterMobOfEvents = std::move(followed);
}

/// The same, but where an installed worker is missing it says where one was looked for.
AAFWorkerClient::HelperURLProvider namingPlaces(AAFWorkerClient::HelperURLProvider provider) {
    using Function = std::optional<fs::path> (*)(const std::string&);
    const auto* const function = provider.target<Function>();
    if (function == nullptr || *function != &installedWorker) {
        return provider;
    }
    return [](const std::string& name) {
        auto worker = installedWorker(name);
        if (!worker) {
            throw AAFWorkerClientError::helperMissing(name, installedWorkerPlaces(name));
        }
        return worker;
    };
}

}  // namespace

std::optional<fs::path> installedWorker(const std::string& name) {
    if (auto bundled = bundledHelper(name)) {
        return bundled;
    }
    if (const auto folder = executableDirectory()) {
        fs::path beside = fs::path(*folder) / name;
        std::error_code ignored;
        if (fs::is_regular_file(beside, ignored)) {
            return beside;
        }
    }
    return std::nullopt;
}

std::vector<fs::path> installedWorkerPlaces(const std::string& name) {
    std::vector<fs::path> places = bundledHelperPlaces(name);
    const auto folder = executableDirectory();
    if (folder && !places.empty()) {
        places.push_back(fs::path(*folder) / name);
    }
    return places;
}

AAFWorkerProtocol::Result askWorker(const WorkerTask& task, const StopToken& stop,
                                    AAFWorkerClient::Progress progress,
                                    const std::function<void()>& whileWaiting) {
    // Whatever the file is called, only one worker reads such files.
    AAFWorkerClient client;
    client.helperName = "trellant-omf";
    client.helperURLProvider = namingPlaces(task.helperURLProvider);
    client.resultLimit =
        std::min(client.resultLimit, anyAnswer + answerTimesTheFile * sizeOf(task.file));
    client.timeLimit = task.timeLimit;
    const bool isWatched = static_cast<bool>(progress);
    const AskersProgress askers(std::move(progress));
    // Without a callback the call needs no thread for it.
    auto answer =
        client.run(requestFor(task), isWatched ? askers.callback() : AAFWorkerClient::Progress(),
                   stop, TimelineChecks::none);
    while (answer.wait_for(betweenLooks) != std::future_status::ready) {
        if (whileWaiting) {
            whileWaiting();
        }
    }
    return answer.get();
}

HandOff handOffOf(AAFWorkerProtocol::Result answer) {
    HandOff handOff;
    handOff.timeline = std::move(answer.timeline);
    handOff.diagnostics = std::move(answer.diagnostics);
    const Boxed<Extensions> extensions = std::move(answer.extensions);
    Boxed<Extensions::LossPlaces> places;
    if (extensions) {
        places = extensions->lossPlaces;
        if (const Boxed<Extensions::Compositions>& all = extensions->compositions) {
            handOff.compositions = all->compositions;
        }
        if (const Boxed<Extensions::Dates>& dates = extensions->dates) {
            handOff.lastModified = dates->lastModified;
        }
        if (const Boxed<Extensions::Reels>& reels = extensions->reels) {
            handOff.reels = reels->reels;
        }
        if (const Boxed<Extensions::MasterMobs>& mobs = extensions->masterMobs) {
            handOff.masterMobs = mobs->masterMobs;
            handOff.masterMobOfEvents = mobs->ofEvents;
        }
        if (const Boxed<Extensions::OlderModel>& older = extensions->omf1) {
            handOff.olderVersion = older->version;
        }
        handOff.contents = extensions->contents;
    }
    handOff.losses = lossesOf(handOff.timeline, places);
    if (places) {
        nameLosses(handOff, *places);
    }
    return handOff;
}

void findMedia(HandOff& handOff, const std::string& file, const std::vector<std::string>& folders,
               const std::vector<std::string>& ignored, WorkProgress& progress) {
    const auto& essences = handOff.timeline.essences;
    const bool isComplete = std::all_of(
        essences.begin(), essences.end(),
        [](const AAFSourceEssence& essence) { return essence.embedded || essence.fileURL; });
    if (isComplete) {
        return;
    }
    progress.begin("Looking for audio files", 0);
    MediaFolders media(ignored, progress);
    media.addBeside(absoluteText(file));
    for (const std::string& folder : folders) {
        media.addFolder(absoluteText(folder));
    }
    if (media.incomplete()) {
        progress.say(WorkProgress::Remark::note,
                     "the media folders hold too many files; not all were looked at");
    }
    handOff.openChoices = findMissing(handOff.timeline, media);
}

void makeUsable(HandOff& handOff) {
    try {
        AAFRawTimelineValidation::validate(handOff.timeline);
    } catch (const AAFRawTimelineValidation::Failure&) {
        AAFRepair repair = repairedTimeline(handOff.timeline);
        handOff.changes = describedChanges(handOff.timeline, repair.changes);
        followEvents(handOff, repair.timeline);
        handOff.timeline = std::move(repair.timeline);
    }
}

void measureMedia(HandOff& handOff, const WorkProgress& progress) {
    KeyedMap<std::string_view, std::int64_t> embedded;
    if (handOff.contents) {
        for (const Extensions::MediaLength& length : handOff.contents->mediaLengths) {
            embedded.emplace(length.essenceID, length.frames);
        }
    }
    handOff.mediaFrames.clear();
    handOff.mediaFrames.reserve(handOff.timeline.essences.size());
    for (const AAFSourceEssence& essence : handOff.timeline.essences) {
        progress.check();
        const auto known = embedded.find(essence.id);
        if (essence.embedded) {
            handOff.mediaFrames.push_back(known == embedded.end() ? std::nullopt
                                                                  : std::optional(known->second));
        } else {
            handOff.mediaFrames.push_back(framesOfFile(essence));
        }
    }
}

HandOff readHandOff(const HandOffRequest& request, WorkProgress& progress) {
    std::vector<std::string> extensions{
        std::string(Extensions::lossPlacesName), std::string(Extensions::compositionsName),
        std::string(Extensions::datesName),      std::string(Extensions::reelsName),
        std::string(Extensions::masterMobsName), std::string(Extensions::omf1Name)};
    if (request.contents) {
        extensions.emplace_back(Extensions::contentsName);
    }
    HandOff handOff = handOffOf(askWorker({.file = request.file,
                                           .extensions = std::move(extensions),
                                           .helperURLProvider = request.helperURLProvider},
                                          progress.stop(),
                                          [&progress](const AAFWorkerProtocol::Progress& report) {
                                              progress.show(report.fraction, report.phase);
                                          }));
    progress.check();
    findMedia(handOff, request.file, request.mediaFolders, {}, progress);
    makeUsable(handOff);
    if (request.contents) {
        measureMedia(handOff, progress);
    }
    return handOff;
}

}  // namespace trellant
