// SPDX-License-Identifier: Apache-2.0
// One look at a hand-off: what a host or a command needs of one file, read once by one worker. The
// timeline is usable as it stands, what had to be changed for that is told, losses stand where
// editors look for them, and external media have one verdict.
#pragma once

#include <trellant/client/worker_client.h>
#include <trellant/handoff/changes.h>
#include <trellant/handoff/missing_media.h>
#include <trellant/handoff/work_progress.h>
#include <trellant/model/loss_kind.h>
#include <trellant/model/timeline.h>
#include <trellant/protocol/messages.h>

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace [[gnu::visibility("default")]] trellant {

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
    /// That is the name of the clip's master mob, for want of its own.
    bool isClipNamedByMasterMob = false;
    /// Timeline seconds.
    std::optional<AAFRational> start{};
    std::optional<AAFRational> duration{};
    /// What it means, in one sentence; empty where the worker did not say of which kind it is.
    std::string plain{};
    /// Absent where the worker did not say.
    std::optional<LossKind> kind{};
};

/// What is said once of a file of OMF 1.x.
inline constexpr std::string_view olderModelNote = "OMF 1.x: read as far as its structure is known";

struct HandOff {
    /// Passes validation. External essences that a media folder had a fitting file for have its
    /// place and format.
    AAFTimeline timeline{};
    std::vector<std::string> diagnostics{};
    /// What was changed to make the timeline valid; empty for nearly every file.
    std::vector<DescribedChange> changes{};
    /// One for each of the timeline's unsupportedFeatures, in their order; where the place is not
    /// known only the record's own texts are there.
    std::vector<PlacedLoss> losses{};
    /// The chosen one first; empty when they could not be listed.
    std::vector<AAFWorkerExtensions::Composition> compositions{};
    /// Files that bear the name of a source without a file, where not exactly one of them fits.
    OpenChoices openChoices{};
    /// When the file was last changed, as it says itself: seconds since 1970-01-01 00:00:00.
    std::optional<std::int64_t> lastModified{};
    /// The master mobs that clips play, where they were asked for, and for each of the timeline's
    /// events the place of its own among them, -1 where it plays none; empty where not asked for.
    std::vector<AAFWorkerExtensions::MasterMob> masterMobs{};
    std::vector<std::int64_t> masterMobOfEvents{};
    /// "1.0", of a file of OMF 1.x, which is read as far as its structure is known; absent for
    /// OMF 2.
    std::optional<std::string> olderVersion{};
    /// The tapes and films that essences were recorded from, where they were asked for.
    std::vector<AAFWorkerExtensions::Reel> reels{};
    /// What the file holds that the timeline does not say, where it was asked for.
    Boxed<AAFWorkerExtensions::Contents> contents{};
    /// Samples of one channel of each of the timeline's essences, in their order, as the audio's
    /// own header tells: absent where it does not, or where there is no audio. Empty unless
    /// contents were asked for.
    std::vector<std::optional<std::int64_t>> mediaFrames{};
};

/// Where an installed worker of that name lies: as bundledHelper has it, or in the folder of the
/// running executable.
[[nodiscard]] std::optional<std::filesystem::path> installedWorker(const std::string& name);
/// The places that `installedWorker` looks at, in that order; none for a name that is empty or
/// leads elsewhere. Without a worker there, calls by it throw HelperMissing with these places.
[[nodiscard]] std::vector<std::filesystem::path> installedWorkerPlaces(const std::string& name);

struct HandOffRequest {
    std::string file{};
    /// Where audio files that the hand-off does not hold are looked for, beside the places that it
    /// records and the folder that it lies in itself.
    std::vector<std::string> mediaFolders{};
    /// Also asks for `contents` and `mediaFrames`, for which headers of audio are read.
    bool contents = false;
    AAFWorkerClient::HelperURLProvider helperURLProvider = installedWorker;
};

/// Runs one worker and looks for external media. Throws AAFWorkerClientError, AAFCancellationError.
[[nodiscard]] HandOff readHandOff(const HandOffRequest& request, WorkProgress& progress);

/// What a worker is asked for.
struct WorkerTask {
    std::string file{};
    AAFWorkerProtocol::Request::Operation operation =
        AAFWorkerProtocol::Request::Operation::inspect;
    std::string workDirectory = ".";
    std::vector<std::string> extensions{};
    AAFWorkerClient::HelperURLProvider helperURLProvider = installedWorker;
    /// As AAFWorkerClient has it.
    std::optional<std::chrono::milliseconds> timeLimit{};
    /// Bytes that the worker may take, in place of what a file of that size can need.
    std::optional<std::uint64_t> memoryLimit{};
};

/// The worker's answer as it is, not validated. Answer and worker take at most so much memory as a
/// file of that size can need: 32 MiB and 16 times the
/// size of the file for the answer, 384 MiB and 64 times the size for the worker if the task names
/// no limit. Throws AAFTimeLimitError too where it names one.
/// `whileWaiting`, called about ten times a second on this thread, may throw. Throws as readHandOff
/// does.
[[nodiscard]] AAFWorkerProtocol::Result askWorker(const WorkerTask& task, const StopToken& stop,
                                                  AAFWorkerClient::Progress progress = {},
                                                  const std::function<void()>& whileWaiting = {});

/// The hand-off that an answer describes, its losses placed. Its timeline is as the worker wrote
/// it: it may be invalid, and no media were looked for.
[[nodiscard]] HandOff handOffOf(AAFWorkerProtocol::Result answer);

/// Looks for the audio files that external essences of `handOff` lack: in the folder of `file` and
/// close below it, and in `folders` and all folders below them. `ignored`: paths that are no finds.
/// The timeline need not be valid. Throws AAFCancellationError.
void findMedia(HandOff& handOff, const std::string& file, const std::vector<std::string>& folders,
               const std::vector<std::string>& ignored, WorkProgress& progress);

/// How many samples the media of each essence have, from `contents` where the audio is embedded,
/// else from the header of the file that was found. Fills `mediaFrames`; the timeline must be
/// usable. Throws AAFCancellationError.
void measureMedia(HandOff& handOff, const WorkProgress& progress);

/// Makes the timeline valid where it is not, and says in `changes` what that took. Unusual but real
/// files lead to timelines that no program may rely on; just the piece at fault goes.
void makeUsable(HandOff& handOff);

}  // namespace trellant
