// SPDX-License-Identifier: Apache-2.0
// A hand-off as a session of one of today's tools, with the audio that it needs and the list of
// everything that is not in it.
//
// All comes into being in a hidden folder inside the wanted one and moves from there to its final
// names. So whatever ends the run, what is on disk is whole.
#pragma once

#include <trellant/exchange/capabilities.h>
#include <trellant/exchange/carried_part.h>
#include <trellant/exchange/export_plan.h>
#include <trellant/handoff/hand_off.h>
#include <trellant/handoff/work_progress.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace [[gnu::visibility("default")]] trellant {

/// Where the session's audio lies.
enum class MediaMode {
    /// In the folder NAME.media beside the session, as plain WAVE files.
    copy,
    /// Where it lies already; only what lies inside the hand-off, or what the tool cannot read as
    /// it
    /// is, goes into NAME.media.
    link,
    /// Inside the session file.
    embed
};

/// Whether a session of this format can have its media there. A format without media has all modes.
[[nodiscard]] bool hasMediaMode(exchange::ExportFormat format, MediaMode mode) noexcept;
/// The mode where nobody asks for another: `embed` for archives, else `copy`.
[[nodiscard]] MediaMode usualMediaMode(exchange::ExportFormat format) noexcept;

struct ExportRequest {
    std::string file{};
    /// Where the session goes: an existing folder, absolute.
    std::string directoryPath{};
    /// What its files are called, without an extension: "Reel 1" gives "Reel 1.aaf".
    std::string name{};
    exchange::ExportFormat format = exchange::ExportFormat::aaf;
    std::optional<MediaMode> mediaMode{};
    /// Samples in a second; absent: the commonest of the media.
    std::optional<std::int64_t> rate{};
    /// Searched for audio files that lie outside, beside the folder of `file` itself.
    std::vector<std::string> mediaFolders{};
    /// New audio files are named after master mobs where the source has no name, that of the
    /// interchange file, or one that several sources bear; else all after their sources.
    bool namesFilesByMasterMob = false;
    /// Files of these names are replaced. A file that the run reads never is.
    bool force = false;
    /// Losses go into the session as markers.
    bool markers = true;
    /// Seconds since 1970 that the session is dated with; absent: when `file` was last changed, as
    /// it says itself, else as the system says.
    std::optional<std::int64_t> date{};
    /// The program that makes audio files into plain WAVE files.
    std::string waveConverter{};
    AAFWorkerClient::HelperURLProvider helperURLProvider = installedWorker;
};

/// A file of that name is there already, or it is one that the run reads. what() says so for a
/// person.
class ExportTargetError final : public std::exception {
  public:
    explicit ExportTargetError(std::string description) : description_(std::move(description)) {}
    [[nodiscard]] const char* what() const noexcept override { return description_.c_str(); }

  private:
    std::string description_;
};

struct ExportReport {
    HandOff handOff{};
    /// What was written.
    exchange::ExportPlan plan{};
    /// What the format lost or changed, beside what reading lost.
    std::vector<exchange::ExportLoss> losses{};
    /// Names in the wanted folder: the session's files, then the list of losses.
    std::vector<std::string> files{};
    /// The folder of its media, when there is one.
    std::optional<std::string> mediaFolder{};
    /// Files in that folder.
    std::size_t mediaFiles = 0;
    std::size_t linkedMedia = 0;
    std::size_t embeddedMedia = 0;
    std::size_t offlineMedia = 0;
};

/// One run.
class SessionExport {
  public:
    /// Throws ExportTargetError, and FileSystemError where the hidden folder cannot be made.
    /// `progress` must outlive this.
    SessionExport(ExportRequest request, WorkProgress& progress);
    ~SessionExport();
    SessionExport(const SessionExport&) = delete;
    SessionExport& operator=(const SessionExport&) = delete;
    SessionExport(SessionExport&&) = delete;
    SessionExport& operator=(SessionExport&&) = delete;

    /// All of it; call once. Throws AAFWorkerClientError, AAFCancellationError after a stop,
    /// ExportTargetError, and FileSystemError where the system refuses; there is nothing new in the
    /// folder then, unless the last step, the moving of names, was under way.
    [[nodiscard]] ExportReport run();

    /// Whether the path lies in a hidden folder of this run, so that no person knows it.
    [[nodiscard]] bool isStaged(std::string_view path) const;

  private:
    class Run;
    std::unique_ptr<Run> run_;
};

/// The names of a session's files in their folder: "Reel 1.aaf"; several for markers.
[[nodiscard]] std::vector<std::string> sessionFileNames(exchange::ExportFormat format,
                                                        const std::string& name);

/// The list of losses as it stands in NAME.losses.json: an array with one record a line, those of
/// reading first. `file`: the hand-off as the person named it.
[[nodiscard]] std::string lossesDocument(const std::string& file, const HandOff& handOff,
                                         const std::vector<exchange::ExportLoss>& losses);

}  // namespace trellant
