// SPDX-License-Identifier: Apache-2.0
#include "file_chunks.h"
#include "file_making.h"
#include "file_plan.h"
#include "resampled_media.h"
#include "silent_clips.h"
#include "sound.h"

#include <trellant/base/write_all.h>
#include <trellant/exporter/exporter.h>
#include <trellant/exporter/final_places.h>
#include <trellant/exporter/planned_reels.h>
#include <trellant/exporter/session_markers.h>
#include <trellant/exporter/session_media.h>
#include <trellant/extraction/staging.h>
#include <trellant/extraction/taken_out.h>
#include <trellant/handoff/clip_name.h>
#include <trellant/handoff/jobs.h>
#include <trellant/io/errors.h>
#include <trellant/render/render.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <deque>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <thread>

namespace trellant::render {

namespace fs = std::filesystem;

using exchange::ExportLoss;
using exchange::Samples;

namespace {

const TakenNameAdvice advice{.run = "this rendering",
                             .instead = "choose another folder with --to",
                             .orElse = "another folder with --to leaves it alone"};

std::optional<std::int64_t> lastChange(const std::string& file) {
    struct stat status {};
    return ::stat(file.c_str(), &status) == 0 ? std::optional<std::int64_t>(status.st_mtime)
                                              : std::nullopt;
}

std::string gigabytes(std::uint64_t bytes) {
    // To a tenth, rounded up.
    constexpr std::uint64_t tenth = 100'000'000;
    const std::uint64_t tenths = bytes / tenth + (bytes % tenth == 0 ? 0 : 1);
    return std::to_string(tenths / 10) + "." + std::to_string(tenths % 10) + " GB";
}

WaveForm formOf(const RenderedFile& file, const exchange::ExportPlan& plan) {
    return {.format = file.format,
            .channels = file.channels,
            .rate = static_cast<std::uint32_t>(plan.rate),
            .frames = static_cast<std::uint64_t>(std::max<Samples>(file.length, 0))};
}

/// On all processors, of which several share a file where there are fewer files.
void makeFiles(std::deque<FileMaking>& makings, WorkProgress& progress) {
    const std::size_t processors = std::max(1U, std::thread::hardware_concurrency());
    const std::size_t sharing =
        makings.empty() ? 1 : std::max<std::size_t>(1, processors / makings.size());
    std::atomic<std::uint64_t> done{0};
    runJobs(
        makings.size() * sharing,
        [&](std::size_t number, const std::function<void()>& whileWaiting) {
            makings[number / sharing].work(whileWaiting,
                                           [&done](std::uint64_t bytes) { done += bytes; });
            return std::uint64_t{0};
        },
        progress, &done);
}

}  // namespace

class SessionRender::Run {
  public:
    Run(RenderRequest request, WorkProgress& progress)
        : request_(std::move(request)),
          progress_(progress),
          places_(request_.directoryPath, request_.force, advice),
          audio_(request_.directoryPath),
          staging_(request_.directoryPath) {
        places_.protect(fs::absolute(request_.file).native());
    }

    [[nodiscard]] RenderReport all();
    [[nodiscard]] bool isStaged(std::string_view path) const {
        return path.starts_with(audio_.path() + "/") || path.starts_with(staging_.path() + "/");
    }

  private:
    void read();
    void plan();
    void bringMedia();
    void refuseOtherRates() const;
    void recordSilence(const std::vector<SessionMediaMaker::Difference>& differences);
    void refuseWithoutRoom(std::uint64_t bytes) const;
    void renderFiles();
    [[nodiscard]] FileOrder orderOf(const RenderedFile& file, const FileFacts& facts) const;
    [[nodiscard]] std::unique_ptr<Sound> soundOf(const RenderedFile& file) const;
    [[nodiscard]] std::string writeText(std::string_view name, const std::string& text) const;
    void writeLists();
    void place();

    RenderRequest request_;
    WorkProgress& progress_;
    FinalPlaces places_;
    /// What the worker takes out, under names of its choice.
    Staging audio_;
    Staging staging_;
    PlayedFiles played_;
    RenderReport report_;
};

RenderReport SessionRender::Run::all() {
    read();
    plan();
    bringMedia();
    report_.files =
        plannedFiles(request_, report_.plan, played_, sessionPart(request_, report_.plan));
    std::vector<std::string> names{std::string(lossesName), std::string(manifestName)};
    for (const RenderedFile& file : report_.files) {
        names.push_back(file.name);
    }
    places_.check(names, "");
    renderFiles();
    writeLists();
    progress_.check();
    place();
    return std::move(report_);
}

void SessionRender::Run::read() {
    report_.handOff =
        std::move(takeOut(request_.file, audio_, request_.helperURLProvider, progress_).handOff);
    findMedia(report_.handOff, request_.file, request_.mediaFolders, {}, progress_);
    makeUsable(report_.handOff);
}

void SessionRender::Run::plan() {
    const AAFTimeline& timeline = report_.handOff.timeline;
    exchange::PlanRequest request;
    request.keepsOverlaps = true;
    request.reels = plannedReels(report_.handOff);
    request.mediaFacts = mediaFacts(timeline, progress_);
    request.clipNames = namesByMasterMob(report_.handOff);
    exchange::PlannedSession planned = exchange::planSession(timeline, request);
    report_.losses = exchange::lossesOfPlan(planned, timeline);
    report_.plan = std::move(planned.plan);
    refuseOtherRates();
}

void SessionRender::Run::refuseOtherRates() const {
    const std::vector<std::size_t> others = mediaOfOtherRates(report_.plan);
    if (!others.empty() && !request_.resamples) {
        throw RenderRefusal("the session has " + std::to_string(report_.plan.rate) +
                            " Hz, and not all of its audio: " + ratesText(report_.plan, others) +
                            "; --resample converts it");
    }
}

/// Samples are read where they lie in plain WAVE files, of which the converter makes whatever is
/// none.
void SessionRender::Run::bringMedia() {
    const AAFTimeline& timeline = report_.handOff.timeline;
    const std::string made = staging_.file("media");
    if (!fs::create_directory(made)) {
        throw FileSystemError("create folder", made, EEXIST);
    }
    SessionMediaMaker maker(timeline, report_.plan,
                            {.mode = MediaMode::link,
                             .needsWave = true,
                             .audioPath = audio_.path(),
                             .newPath = made,
                             .finalPath = made,
                             .finalReference = "media",
                             .directoryPath = request_.directoryPath,
                             .waveConverter = request_.waveConverter},
                            progress_);
    for (const sessions::SessionMedia& media : maker.all()) {
        played_.push_back(media.wave);
    }
    for (const std::string& path : maker.sources()) {
        places_.protect(path);
    }
    std::vector<SessionMediaMaker::Difference> differences = maker.differences();
    report_.resampled = mediaOfOtherRates(report_.plan);
    if (!report_.resampled.empty()) {
        const auto failed =
            resample(report_.plan, played_, report_.resampled,
                     {.waveConverter = request_.waveConverter, .folder = made}, progress_);
        differences.insert(differences.end(), failed.begin(), failed.end());
        for (ExportLoss& loss : resamplings(report_.plan, report_.resampled)) {
            report_.losses.push_back(std::move(loss));
        }
    }
    recordSilence(differences);
}

void SessionRender::Run::recordSilence(
    const std::vector<SessionMediaMaker::Difference>& differences) {
    for (std::size_t i = 0; i < played_.size(); ++i) {
        report_.plan.media[i].isOffline = !played_[i];
        report_.missingMedia += played_[i] ? 0U : 1U;
    }
    for (ExportLoss& loss : silentClips(report_.handOff.timeline, report_.plan, differences)) {
        report_.losses.push_back(std::move(loss));
        ++report_.silentClips;
    }
}

void SessionRender::Run::refuseWithoutRoom(std::uint64_t bytes) const {
    std::error_code error;
    const fs::space_info space = fs::space(request_.directoryPath, error);
    if (error) {
        return;
    }
    // A disk that is full to its last byte stops whatever else writes to it.
    constexpr std::uint64_t shareLeftFree = 20;
    const std::uint64_t room = space.available - space.available / shareLeftFree;
    if (bytes > room) {
        throw RenderRefusal("the files take " + gigabytes(bytes) + ", and of the " +
                            gigabytes(space.available) +
                            " that are free a twentieth is left alone; --from and --until name a "
                            "part, --to another disk");
    }
}

void SessionRender::Run::renderFiles() {
    std::uint64_t bytes = 0;
    for (const RenderedFile& file : report_.files) {
        const std::uint64_t more = formOf(file, report_.plan).dataBytes();
        bytes = more > UINT64_MAX - bytes ? UINT64_MAX : bytes + more;
    }
    refuseWithoutRoom(bytes);
    const std::vector<sessions::SessionMarker> markers =
        lossMarkers(report_.handOff, report_.losses, report_.plan);
    const MarkIndex marks(markers, report_.plan.tracks.size());
    const auto own = request_.date ? request_.date : report_.handOff.lastModified;
    const FileFacts facts{
        .plan = report_.plan, .marks = marks, .date = own ? own : lastChange(request_.file)};
    progress_.begin("Rendering", bytes);
    std::deque<FileMaking> makings;
    for (const RenderedFile& file : report_.files) {
        makings.emplace_back(orderOf(file, facts), played_);
    }
    makeFiles(makings, progress_);
    for (std::size_t i = 0; i < makings.size(); ++i) {
        report_.files[i].sha256 = makings[i].result().sha256;
        report_.files[i].cutSamples = makings[i].result().cutSamples;
    }
}

std::unique_ptr<Sound> SessionRender::Run::soundOf(const RenderedFile& file) const {
    if (!file.track) {
        return mixSound(report_.plan, file.start);
    }
    if (!file.clip) {
        return trackSound(report_.plan, *file.track, request_.treatment, file.start);
    }
    const exchange::PlannedClip& clip =
        report_.plan.tracks[*file.track].lanes.front().clips[*file.clip];
    return clipSound(clip, request_.treatment, clip.start - file.start);
}

FileOrder SessionRender::Run::orderOf(const RenderedFile& file, const FileFacts& facts) const {
    return {.path = staging_.file(file.name),
            .form = formOf(file, report_.plan),
            .chunks = [&file, &facts] { return fileChunks(file, facts); },
            .sound = [this, &file] { return soundOf(file); }};
}

/// Gives the text's checksum.
std::string SessionRender::Run::writeText(std::string_view name, const std::string& text) const {
    const std::string path = staging_.file(std::string(name));
    const FileDescriptor target(
        ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0666));
    if (!target.isOpen()) {
        throw FileSystemError("create", path, errno);
    }
    if (const int reason = writeAll(target.number(), text); reason != 0) {
        throw FileSystemError("write", path, reason);
    }
    Sha256 sha;
    sha.add(std::as_bytes(std::span(text)));
    return sha.hexadecimal();
}

void SessionRender::Run::writeLists() {
    std::string manifest;
    for (const RenderedFile& file : report_.files) {
        manifest += file.sha256 + "  " + file.name + "\n";
    }
    const std::string sha =
        writeText(lossesName, lossesDocument(request_.file, report_.handOff, report_.losses));
    manifest += sha + "  " + std::string(lossesName) + "\n";
    static_cast<void>(writeText(manifestName, manifest));
}

/// The list of files last: who sees it sees all of them.
void SessionRender::Run::place() {
    for (const RenderedFile& file : report_.files) {
        places_.moveFile(staging_.file(file.name), file.name);
    }
    for (const std::string_view name : {lossesName, manifestName}) {
        places_.moveFile(staging_.file(std::string(name)), std::string(name));
    }
}

SessionRender::SessionRender(RenderRequest request, WorkProgress& progress)
    : run_(std::make_unique<Run>(std::move(request), progress)) {}

SessionRender::~SessionRender() = default;

RenderReport SessionRender::run() {
    return run_->all();
}

bool SessionRender::isStaged(std::string_view path) const {
    return run_->isStaged(path);
}

}  // namespace trellant::render
