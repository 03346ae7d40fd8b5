// SPDX-License-Identifier: Apache-2.0
// A hand-off as sound: one file a track from a common start, a stereo guide of the mix, or one file
// a clip with handles. All is worked out from the plan of an export, so that what is heard is what
// exports hold.
//
// All comes into being in a hidden folder inside the wanted one and moves from there to its final
// names. So whatever ends the run, what is on disk is whole.
#pragma once

#include <trellant/audio/pcm.h>
#include <trellant/exchange/carried_part.h>
#include <trellant/exchange/export_plan.h>
#include <trellant/handoff/hand_off.h>
#include <trellant/handoff/work_progress.h>

#include <cstddef>
#include <cstdint>
#include <exception>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace [[gnu::visibility("default")]] trellant {
namespace render {

enum class RenderKind {
    /// One mono file for each track with clips. Pan, mute and solo are left to the mix.
    tracks,
    /// One stereo file of the tracks that are heard.
    mix,
    /// One mono file for each clip whose media are there. Fades and the track are left to the
    /// session that the files go into.
    clips
};

enum class Treatment {
    /// With gains, automation and fades.
    processed,
    /// What lies where, and nothing else.
    edits
};

struct RenderRequest {
    std::string file{};
    /// Where the files go: an existing folder, absolute.
    std::string directoryPath{};
    RenderKind kind = RenderKind::tracks;
    /// The mix is always processed.
    Treatment treatment = Treatment::processed;
    /// Absent: 24 bits; of edits the media's own where all media of a file agree.
    std::optional<audio::PcmFormat> format{};
    /// Labels of timecode, "01:00:00:00"; absent: the session's start, its end. Of clips those that
    /// lie in that part, whole.
    std::optional<std::string> from{};
    std::optional<std::string> until{};
    /// Seconds of the media before and behind each clip, where they have that much; 0 or more.
    AAFRational handles{};
    /// Media of other rates than the session's are converted; else they are refused.
    bool resamples = false;
    /// Searched for audio files that lie outside, beside the folder of `file` itself.
    std::vector<std::string> mediaFolders{};
    /// Files of these names are replaced. A file that the run reads never is.
    bool force = false;
    /// Seconds since 1970 that the files are dated with; absent: when `file` was last changed, as
    /// it says itself, else as the system says.
    std::optional<std::int64_t> date{};
    /// The program that makes audio files into plain WAVE files.
    std::string waveConverter{};
    AAFWorkerClient::HelperURLProvider helperURLProvider = installedWorker;
};

/// The request does not fit the hand-off: media of several rates, a label outside of it, more than
/// the disk holds, more hours or files than there may be. what() says so for a person.
class RenderRefusal final : public std::exception {
  public:
    explicit RenderRefusal(std::string description) : description_(std::move(description)) {}
    [[nodiscard]] const char* what() const noexcept override { return description_.c_str(); }

  private:
    std::string description_;
};

/// What a rendering has at most, since a hand-off of kilobytes can name years: hours in a file, as
/// many as timecode counts, and files.
inline constexpr std::int64_t mostHours = 24;
inline constexpr std::size_t mostFiles = 50'000;

struct RenderedFile {
    /// In the wanted folder.
    std::string name{};
    /// Position in the plan's tracks; absent for the mix.
    std::optional<std::size_t> track{};
    /// Position in that track's first lane; absent but for a file of one clip.
    std::optional<std::size_t> clip{};
    std::size_t channels = 1;
    audio::PcmFormat format{};
    /// The session's sample that the first one is; below 0 for a handle before the start.
    exchange::Samples start = 0;
    exchange::Samples length = 0;
    /// Clips in it, and those of them that are silent because their media are missing.
    std::size_t clips = 0;
    std::size_t silentClips = 0;
    /// Those whose media were converted to the session's rate.
    std::size_t resampledClips = 0;
    /// Samples beyond full scale.
    std::uint64_t cutSamples = 0;
    std::string sha256{};
};

struct RenderReport {
    HandOff handOff{};
    exchange::ExportPlan plan{};
    /// What is not heard as the hand-off has it, beside what reading lost.
    std::vector<exchange::ExportLoss> losses{};
    std::vector<RenderedFile> files{};
    /// Clips of the whole plan whose media are missing, and of how many sources.
    std::size_t silentClips = 0;
    std::size_t missingMedia = 0;
    /// Positions in the plan's media.
    std::vector<std::size_t> resampled{};
};

/// Names in the wanted folder, beside those of the sound.
inline constexpr std::string_view lossesName = "losses.json";
inline constexpr std::string_view manifestName = "MANIFEST.sha256";

/// One run.
class SessionRender {
  public:
    /// Throws FileSystemError where the hidden folder cannot be made. `progress` must outlive this.
    SessionRender(RenderRequest request, WorkProgress& progress);
    ~SessionRender();
    SessionRender(const SessionRender&) = delete;
    SessionRender& operator=(const SessionRender&) = delete;
    SessionRender(SessionRender&&) = delete;
    SessionRender& operator=(SessionRender&&) = delete;

    /// All of it, on all processors; call once. Memory does not grow with the length of the sound.
    /// Throws AAFWorkerClientError, AAFCancellationError after a stop, RenderRefusal,
    /// ExportTargetError for a name that is taken, and FileSystemError where the system refuses;
    /// there is nothing new in the folder then, unless the last step, the moving of names, was
    /// under way.
    [[nodiscard]] RenderReport run();

    /// Whether the path lies in a hidden folder of this run, so that no person knows it.
    [[nodiscard]] bool isStaged(std::string_view path) const;

  private:
    class Run;
    std::unique_ptr<Run> run_;
};

}  // namespace render
}  // namespace trellant
