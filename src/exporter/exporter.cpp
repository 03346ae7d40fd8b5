// SPDX-License-Identifier: Apache-2.0
#include "media_losses.h"

#include <trellant/base/file_descriptor.h>
#include <trellant/base/system_call_error.h>
#include <trellant/base/text.h>
#include <trellant/base/url.h>
#include <trellant/base/write_all.h>
#include <trellant/client/errors.h>
#include <trellant/exchange/format_limits.h>
#include <trellant/exporter/exporter.h>
#include <trellant/exporter/final_places.h>
#include <trellant/exporter/planned_reels.h>
#include <trellant/exporter/session_markers.h>
#include <trellant/exporter/session_media.h>
#include <trellant/extraction/file_naming.h>
#include <trellant/extraction/staging.h>
#include <trellant/extraction/taken_out.h>
#include <trellant/handoff/clip_name.h>
#include <trellant/io/errors.h>
#include <trellant/sessions/session.h>

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <functional>
#include <iterator>
#include <map>
#include <sys/stat.h>
#include <utility>
#include <variant>

namespace trellant {

namespace fs = std::filesystem;

using exchange::Carriage;
using exchange::ExportFormat;
using exchange::Feature;

namespace {

using StreamWriter = void (*)(const sessions::Session&, const compound::ByteSink&);
using PlacedWriter = void (*)(const sessions::Session&, const sessions::PlacedSink&);

struct SessionFile {
    std::string_view nameEnd;
    std::variant<StreamWriter, PlacedWriter> writer;
};

/// The files of each format.
std::vector<SessionFile> sessionFiles(ExportFormat format) {
    switch (format) {
        case ExportFormat::aaf:
            return {{".aaf", sessions::writeAafSession}};
        case ExportFormat::otio:
            return {{".otio", sessions::writeOtioSession}};
        case ExportFormat::otioz:
            return {{".otioz", sessions::writeOtioBundle}};
        case ExportFormat::reaper:
            return {{".rpp", sessions::writeReaperSession}};
        case ExportFormat::dawproject:
            return {{".dawproject", sessions::writeDawProject}};
        case ExportFormat::markers:
            return {{".labels.txt", sessions::writeAudacityLabels},
                    {".markers.csv", sessions::writeReaperMarkers},
                    {".cues.wav", PlacedWriter(sessions::writeCuePoints)}};
    }
    return {};
}

bool isCarried(ExportFormat format, Feature feature, Carriage how) {
    return exchange::capability(format, feature).carriage == how;
}

std::optional<std::int64_t> lastChange(const std::string& file) {
    struct stat status {};
    return ::stat(file.c_str(), &status) == 0 ? std::optional<std::int64_t>(status.st_mtime)
                                              : std::nullopt;
}

/// Some formats write paths as they write names, and lose what no name may have.
std::function<bool(const std::string&)> namesOf(ExportFormat format) {
    if (format != ExportFormat::reaper && format != ExportFormat::dawproject) {
        return {};
    }
    return [format](const std::string& path) { return exchange::nameWithin(format, path) == path; };
}

FileDescriptor newFile(const std::string& path) {
    FileDescriptor file(
        ::open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0666));
    if (!file.isOpen()) {
        throw FileSystemError("create", path, errno);
    }
    return file;
}

}  // namespace

bool hasMediaMode(ExportFormat format, MediaMode mode) noexcept {
    switch (format) {
        case ExportFormat::otioz:
            return mode == MediaMode::embed;
        case ExportFormat::otio:
        case ExportFormat::reaper:
            return mode != MediaMode::embed;
        case ExportFormat::aaf:
        case ExportFormat::dawproject:
            return true;
        case ExportFormat::markers:
            return false;
    }
    return true;
}

MediaMode usualMediaMode(ExportFormat format) noexcept {
    return format == ExportFormat::otioz ? MediaMode::embed : MediaMode::copy;
}

std::vector<std::string> sessionFileNames(ExportFormat format, const std::string& name) {
    std::vector<std::string> names;
    for (const SessionFile& file : sessionFiles(format)) {
        names.push_back(name + std::string(file.nameEnd));
    }
    return names;
}

class SessionExport::Run {
  public:
    Run(ExportRequest request, WorkProgress& progress)
        : request_(std::move(request)),
          progress_(progress),
          names_(sessionFileNames(request_.format, request_.name)),
          mediaFolder_(request_.name + ".media"),
          places_(request_.directoryPath, request_.force) {
        names_.push_back(request_.name + ".losses.json");
        places_.protect(fs::absolute(request_.file).native());
        places_.check(names_, mediaFolder_);
        audio_.emplace(request_.directoryPath);
        staging_.emplace(request_.directoryPath);
    }

    [[nodiscard]] ExportReport all();
    [[nodiscard]] bool isStaged(std::string_view path) const {
        return path.starts_with(audio_->path() + "/") || path.starts_with(staging_->path() + "/");
    }

  private:
    [[nodiscard]] MediaMode mediaMode() const {
        return request_.mediaMode.value_or(usualMediaMode(request_.format));
    }
    [[nodiscard]] bool hasMedia() const { return request_.format != ExportFormat::markers; }
    void read();
    [[nodiscard]] std::int64_t date() const;
    [[nodiscard]] exchange::CarriedPart planned() const;
    /// Of the files that bear the name of a master mob, by position of their sources.
    [[nodiscard]] std::map<std::size_t, std::string> fileNames() const;
    [[nodiscard]] std::vector<sessions::SessionMedia> media(exchange::CarriedPart& carried);
    [[nodiscard]] std::vector<exchange::ExportLoss> markedLosses(
        const std::vector<exchange::ExportLoss>& losses) const;
    void recordUnmarked(const sessions::Session& session);
    void writeFiles(const sessions::Session& session);
    void writeFile(const std::string& name, const SessionFile& file,
                   const sessions::Session& session);
    void writeLosses();
    void place();

    ExportRequest request_;
    WorkProgress& progress_;
    std::vector<std::string> names_;
    std::string mediaFolder_;
    FinalPlaces places_;
    /// What the worker takes out, under names of its choice.
    std::optional<Staging> audio_;
    std::optional<Staging> staging_;
    ExportReport report_;
};

ExportReport SessionExport::Run::all() {
    read();
    exchange::CarriedPart carried = planned();
    sessions::Session session;
    // A file's name is bytes; a session's is text.
    session.name = madeValidUTF8(request_.name);
    session.date = date();
    session.media = media(carried);
    if (request_.markers) {
        session.markers = lossMarkers(report_.handOff, markedLosses(carried.losses), carried.plan);
    }
    report_.losses = std::move(carried.losses);
    session.plan = std::move(carried.plan);
    recordUnmarked(session);
    progress_.begin("Writing the session", 0);
    progress_.check();
    writeFiles(session);
    writeLosses();
    report_.plan = std::move(session.plan);
    progress_.check();
    place();
    return std::move(report_);
}

/// A file's date of the system changes with each copy of it, so its own comes first.
std::int64_t SessionExport::Run::date() const {
    const auto own = request_.date ? request_.date : report_.handOff.lastModified;
    return own ? *own : lastChange(request_.file).value_or(0);
}

void SessionExport::Run::read() {
    if (!hasMedia()) {
        report_.handOff = readHandOff({.file = request_.file,
                                       .mediaFolders = request_.mediaFolders,
                                       .helperURLProvider = request_.helperURLProvider},
                                      progress_);
        return;
    }
    report_.handOff =
        std::move(takeOut(request_.file, *audio_, request_.helperURLProvider, progress_).handOff);
    findMedia(report_.handOff, request_.file, request_.mediaFolders, {}, progress_);
    makeUsable(report_.handOff);
}

exchange::CarriedPart SessionExport::Run::planned() const {
    const AAFTimeline& timeline = report_.handOff.timeline;
    exchange::PlanRequest request;
    request.rate = request_.rate;
    request.splitsChannels =
        isCarried(request_.format, Feature::channelOfSeveral, Carriage::detour);
    request.keepsOverlaps = isCarried(request_.format, Feature::overlaps, Carriage::carried);
    request.reels = plannedReels(report_.handOff);
    request.clipNames = namesByMasterMob(report_.handOff);
    if (hasMedia()) {
        request.mediaFacts = mediaFacts(timeline, progress_);
    }
    if (request_.namesFilesByMasterMob) {
        request.fileNames = fileNames();
    }
    return exchange::carriedPart(exchange::planSession(timeline, request), timeline,
                                 request_.format);
}

std::map<std::size_t, std::string> SessionExport::Run::fileNames() const {
    std::map<std::size_t, std::string> names;
    const auto ofMobs = namesOfMasterMobs(report_.handOff, request_.file);
    for (std::size_t i = 0; i < ofMobs.size(); ++i) {
        if (ofMobs[i]) {
            names.emplace_hint(names.end(), i, *ofMobs[i]);
        }
    }
    return names;
}

/// Marks alone play nothing, so that they lose nothing of how a clip is played: what is not in the
/// hand-off is worth a mark there, and a clip that has none.
std::vector<exchange::ExportLoss> SessionExport::Run::markedLosses(
    const std::vector<exchange::ExportLoss>& losses) const {
    if (request_.format != ExportFormat::markers) {
        return losses;
    }
    std::vector<exchange::ExportLoss> marked;
    std::copy_if(
        losses.begin(), losses.end(), std::back_inserter(marked),
        [](const exchange::ExportLoss& loss) { return loss.feature == Feature::clipPlaces; });
    return marked;
}

/// Marks that the WAVE file of cue points has no room for.
void SessionExport::Run::recordUnmarked(const sessions::Session& session) {
    if (request_.format != ExportFormat::markers) {
        return;
    }
    const sessions::CueFileShare share = sessions::cueFileShare(session);
    if (share.leftOut != 0) {
        exchange::ExportLoss loss{.feature = Feature::lossMarkers};
        loss.sentence = "The WAVE file of cue points has no room for " +
                        std::to_string(share.leftOut) +
                        (share.leftOut == 1 ? " mark, which is" : " marks, which are") +
                        " in the other files only.";
        loss.technical = "cue points: " + std::to_string(share.held) + " held, " +
                         std::to_string(share.leftOut) + " left out";
        report_.losses.insert(report_.losses.begin(), std::move(loss));
    }
}

std::vector<sessions::SessionMedia> SessionExport::Run::media(exchange::CarriedPart& carried) {
    exchange::ExportPlan& plan = carried.plan;
    if (!hasMedia()) {
        return std::vector<sessions::SessionMedia>(plan.media.size());
    }
    const std::string made = staging_->file(mediaFolder_);
    if (!fs::create_directory(made)) {
        throw FileSystemError("create folder", made, EEXIST);
    }
    SessionMediaMaker maker(report_.handOff.timeline, plan,
                            {.mode = mediaMode(),
                             .needsWave = request_.format == ExportFormat::aaf,
                             .canName = namesOf(request_.format),
                             .audioPath = audio_->path(),
                             .newPath = made,
                             .finalPath = request_.directoryPath + "/" + mediaFolder_,
                             .finalReference = mediaFolder_,
                             .directoryPath = request_.directoryPath,
                             .waveConverter = request_.waveConverter},
                            progress_);
    std::vector<sessions::SessionMedia> media = maker.all();
    for (const std::string& path : maker.sources()) {
        places_.protect(path);
    }
    for (exchange::ExportLoss& loss :
         mediaLosses(report_.handOff.timeline, plan, maker.differences())) {
        carried.losses.push_back(std::move(loss));
    }
    report_.mediaFiles = maker.newFiles();
    report_.linkedMedia = maker.linked().size();
    for (std::size_t i = 0; i < media.size(); ++i) {
        report_.embeddedMedia += media[i].isEmbedded ? 1U : 0U;
        report_.offlineMedia += plan.media[i].isOffline ? 1U : 0U;
    }
    if (report_.mediaFiles != 0) {
        report_.mediaFolder = mediaFolder_;
    }
    return media;
}

void SessionExport::Run::writeFiles(const sessions::Session& session) {
    const std::vector<SessionFile> files = sessionFiles(request_.format);
    for (std::size_t i = 0; i < files.size(); ++i) {
        writeFile(names_[i], files[i], session);
    }
}

void SessionExport::Run::writeFile(const std::string& name, const SessionFile& file,
                                   const sessions::Session& session) {
    const std::string path = staging_->file(name);
    const FileDescriptor target = newFile(path);
    if (const auto* const write = std::get_if<StreamWriter>(&file.writer)) {
        (*write)(session, [&](ByteView bytes) {
            progress_.check();
            if (const int reason = writeAll(target.number(), bytes); reason != 0) {
                throw FileSystemError("write", path, reason);
            }
        });
        return;
    }
    const sessions::PlacedSink sink = sessions::descriptorPlacedSink(target.number());
    try {
        std::get<PlacedWriter>(file.writer)(session, [&](std::uint64_t offset, ByteView bytes) {
            progress_.check();
            sink(offset, bytes);
        });
    } catch (const SystemCallError& error) {
        throw FileSystemError("write", path, error.errorNumber());
    }
}

void SessionExport::Run::writeLosses() {
    const std::string path = staging_->file(names_.back());
    const FileDescriptor target = newFile(path);
    const std::string text = lossesDocument(request_.file, report_.handOff, report_.losses);
    if (const int reason = writeAll(target.number(), text); reason != 0) {
        throw FileSystemError("write", path, reason);
    }
}

/// The session last: who sees it sees all that it needs.
void SessionExport::Run::place() {
    places_.check(names_, mediaFolder_);
    if (report_.mediaFolder) {
        places_.moveFolder(staging_->file(mediaFolder_), mediaFolder_);
    }
    for (auto name = names_.rbegin(); name != names_.rend(); ++name) {
        places_.moveFile(staging_->file(*name), *name);
    }
    report_.files = names_;
}

SessionExport::SessionExport(ExportRequest request, WorkProgress& progress)
    : run_(std::make_unique<Run>(std::move(request), progress)) {}

SessionExport::~SessionExport() = default;

ExportReport SessionExport::run() {
    return run_->all();
}

bool SessionExport::isStaged(std::string_view path) const {
    return run_->isStaged(path);
}

}  // namespace trellant
