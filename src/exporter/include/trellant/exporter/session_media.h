// SPDX-License-Identifier: Apache-2.0
// The audio of a session, brought to where the session can play it from.
#pragma once

#include <trellant/base/keyed_hash.h>
#include <trellant/base/read_files.h>
#include <trellant/exchange/capabilities.h>
#include <trellant/exchange/export_plan.h>
#include <trellant/exporter/exporter.h>
#include <trellant/handoff/work_progress.h>
#include <trellant/model/timeline.h>
#include <trellant/sessions/session.h>

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace [[gnu::visibility("default")]] trellant {

/// The facts of the files that the clips of `timeline` play, for a plan. Throws
/// AAFCancellationError.
[[nodiscard]] std::vector<std::optional<exchange::MediaFacts>> mediaFacts(
    const AAFTimeline& timeline, const WorkProgress& progress);

struct MediaWishes {
    MediaMode mode = MediaMode::copy;
    /// The tool reads nothing but WAVE files.
    bool needsWave = false;
    /// Whether the session can name a file by this path; absent: any.
    std::function<bool(const std::string& path)> canName{};
    /// Where the worker's files lie: they are ours to move.
    std::string audioPath{};
    /// Where new files come into being: an existing folder.
    std::string newPath{};
    /// Where these will lie: absolute, and as the session names it.
    std::string finalPath{};
    std::string finalReference{};
    /// The session's folder.
    std::string directoryPath{};
    std::string waveConverter{};
};

class SessionMediaMaker {
  public:
    /// All must outlive this. Media that cannot be had become offline in `plan`.
    SessionMediaMaker(const AAFTimeline& timeline, exchange::ExportPlan& plan, MediaWishes wishes,
                      WorkProgress& progress);

    /// By position in the plan's media. Call once. Throws FileSystemError, AAFCancellationError.
    [[nodiscard]] std::vector<sessions::SessionMedia> all();

    /// Files of others that the session is made of.
    [[nodiscard]] const std::vector<std::string>& sources() const noexcept { return sources_; }
    /// Media that are not what the plan says: offline, or in a form that not every tool reads.
    struct Difference {
        std::size_t media = 0;
        bool isOffline = false;
        /// For people.
        std::string reason{};
    };
    [[nodiscard]] const std::vector<Difference>& differences() const noexcept {
        return differences_;
    }
    /// Files of others that the session plays where they lie.
    [[nodiscard]] const std::vector<std::string>& linked() const noexcept { return linked_; }
    /// New files that are to lie beside the session.
    [[nodiscard]] std::size_t newFiles() const noexcept { return newFiles_; }

  private:
    [[nodiscard]] bool isOurs(const std::string& path) const;
    [[nodiscard]] std::size_t positionOf(const exchange::PlannedMedia& media) const {
        return static_cast<std::size_t>(&media - plan_.media.data());
    }
    [[nodiscard]] sessions::SessionMedia made(exchange::PlannedMedia& media,
                                              const std::string& source);
    [[nodiscard]] std::optional<sessions::SessionMedia> linkedMedia(
        const exchange::PlannedMedia& media, const std::string& source);
    enum class Brought { moved, copied };
    [[nodiscard]] Brought bring(const exchange::PlannedMedia& media, const std::string& source,
                                const std::string& destination);
    void convert(exchange::PlannedMedia& media, const std::string& source);
    void keepAsItIs(exchange::PlannedMedia& media, const std::string& source,
                    const std::string& reason);
    void goOffline(exchange::PlannedMedia& media, const std::string& reason);

    const AAFTimeline& timeline_;
    exchange::ExportPlan& plan_;
    MediaWishes wishes_;
    WorkProgress& progress_;
    /// Media that are still to be made of a file.
    KeyedMap<std::string, std::size_t> remainingUses_;
    std::vector<std::string> sources_;
    std::vector<Difference> differences_;
    std::vector<std::string> linked_;
    std::size_t newFiles_ = 0;
};

}  // namespace trellant
