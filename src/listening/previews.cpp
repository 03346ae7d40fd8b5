// SPDX-License-Identifier: Apache-2.0
#include "batches.h"
#include "made_file.h"
#include "source_files.h"

#include <trellant/base/precondition.h>
#include <trellant/extraction/wave_conversion.h>
#include <trellant/handoff/audio_facts.h>
#include <trellant/handoff/jobs.h>
#include <trellant/listening/source_sound.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace trellant::listening {

namespace {

/// A preview that is to be made.
struct Making {
    std::size_t wish;
    std::string path;
    std::uint64_t sourceBytes;
};

bool makesSense(const PreviewWish& wish) noexcept {
    return wish.firstFrame >= 0 && (!wish.frames || *wish.frames > 0) &&
           (!wish.channel || *wish.channel >= 0);
}

/// What the part takes, as far as the file's header tells.
std::uint64_t estimatedBytes(const PreviewWish& wish, const std::string& path,
                             std::uint32_t bitsPerSecond) {
    const auto facts = audioFacts(path);
    const double rate =
        facts && facts->format.sampleRate ? facts->format.sampleRate->doubleValue() : 0;
    if (!facts || !facts->frames || !(rate > 0)) {
        return 0;
    }
    const auto first = static_cast<std::uint64_t>(wish.firstFrame);
    const std::uint64_t rest = *facts->frames - std::min(first, *facts->frames);
    const std::uint64_t frames =
        wish.frames ? std::min(static_cast<std::uint64_t>(*wish.frames), rest) : rest;
    const bool isMono = wish.channel || facts->format.channels.value_or(1) == 1;
    return estimatedPreviewBytes(static_cast<double>(frames) / rate, isMono ? 1 : 2, bitsPerSecond);
}

class Previewing {
  public:
    Previewing(const std::vector<PreviewWish>& wishes, const PreviewRequest& request,
               const Staging& staging)
        : wishes_(wishes), request_(request), staging_(staging), previews_(wishes.size()) {}

    /// Takes the wishes that seem to fit.
    void choose(const AAFTimeline& timeline, const WorkProgress& progress) {
        std::uint64_t room = request_.mostBytes;
        for (std::size_t i = 0; i < wishes_.size(); ++i) {
            progress.check();
            precondition(wishes_[i].essence < timeline.essences.size(),
                         "a preview is of an essence of the timeline");
            const auto path = filePath(timeline.essences[wishes_[i].essence]);
            if (!path || !makesSense(wishes_[i])) {
                previews_[i].reason = path ? "there is no such part" : noFileReason;
                continue;
            }
            const std::uint64_t bytes = estimatedBytes(wishes_[i], *path, request_.bitsPerSecond);
            if (bytes > room) {
                previews_[i].state = PreviewState::leftOut;
                previews_[i].reason = leftOutReason;
                continue;
            }
            room -= bytes;
            makings_.push_back({i, *path, bytesOfFile(*path)});
        }
    }

    void make(WorkProgress& progress) {
        std::vector<std::uint64_t> sizes;
        for (const Making& making : makings_) {
            sizes.push_back(making.sourceBytes);
        }
        const std::vector<Batch> batches = batchesOf(sizes);
        progress.begin("Making previews", bytesOf({0, sizes.size()}, sizes));
        runJobs(
            batches.size(),
            [&](std::size_t number, const std::function<void()>& whileWaiting) {
                makeAll(batches[number], whileWaiting);
                return bytesOf(batches[number], sizes);
            },
            progress);
    }

    /// What was made, up to the bytes that are allowed.
    [[nodiscard]] std::vector<Preview> taken() {
        std::uint64_t room = request_.mostBytes;
        for (Preview& preview : previews_) {
            if (preview.state != PreviewState::made) {
                continue;
            }
            if (preview.ogg.size() > room) {
                preview = {.state = PreviewState::leftOut, .ogg = {}, .reason = leftOutReason};
                continue;
            }
            room -= preview.ogg.size();
        }
        return std::move(previews_);
    }

  private:
    static constexpr const char* leftOutReason = "there is no room for it";

    void makeAll(const Batch& batch, const std::function<void()>& whileWaiting) {
        std::vector<ConverterTask> tasks;
        for (std::size_t i = 0; i < batch.count; ++i) {
            tasks.push_back(taskOf(makings_[batch.first + i]));
        }
        const auto failures = runConverterForEach(request_.converter, tasks, whileWaiting);
        for (std::size_t i = 0; i < batch.count; ++i) {
            take(previews_[makings_[batch.first + i].wish], tasks[i].destination, failures[i]);
        }
    }

    [[nodiscard]] ConverterTask taskOf(const Making& making) const {
        const PreviewWish& wish = wishes_[making.wish];
        std::string made = staging_.file("preview-" + std::to_string(making.wish));
        ConverterTask task{
            {"--preview", making.path, made, std::to_string(request_.bitsPerSecond),
             std::to_string(wish.firstFrame), std::to_string(wish.frames.value_or(0))},
            std::move(made)};
        if (wish.channel) {
            task.arguments.push_back(
                std::to_string(std::min<std::int64_t>(*wish.channel, highestChannel) + 1));
        }
        return task;
    }

    void take(Preview& preview, const std::string& made,
              const std::optional<std::string>& failure) const {
        if (failure) {
            preview.reason = *failure;
            return;
        }
        const std::uint64_t bytes = bytesOfFile(made);
        auto ogg = takenFile(made, request_.mostBytes);
        if (bytes > request_.mostBytes) {
            preview.state = PreviewState::leftOut;
            preview.reason = leftOutReason;
        } else if (!ogg) {
            preview.reason = "the preview could not be read";
        } else {
            preview = {.state = PreviewState::made, .ogg = std::move(*ogg), .reason = {}};
        }
    }

    /// Beyond what any file has: the converter says so.
    static constexpr std::int64_t highestChannel = 65'535;

    const std::vector<PreviewWish>& wishes_;
    const PreviewRequest& request_;
    const Staging& staging_;
    std::vector<Preview> previews_;
    std::vector<Making> makings_;
};

}  // namespace

std::uint64_t estimatedPreviewBytes(double seconds, std::size_t channels,
                                    std::uint32_t bitsPerSecond) noexcept {
    // Pages add three in a hundred, heads about a kilobyte.
    constexpr double share = 1.05;
    constexpr double headBytes = 1'500;
    constexpr double most = 9e18;
    constexpr double bitsOfByte = 8;
    const double bytes =
        headBytes + share * seconds * static_cast<double>(channels) * bitsPerSecond / bitsOfByte;
    return bytes < most ? static_cast<std::uint64_t>(bytes)
                        : std::numeric_limits<std::uint64_t>::max();
}

std::vector<Preview> previewSources(const AAFTimeline& timeline,
                                    const std::vector<PreviewWish>& wishes,
                                    const PreviewRequest& request, const Staging& staging,
                                    WorkProgress& progress) {
    Previewing previewing(wishes, request, staging);
    previewing.choose(timeline, progress);
    previewing.make(progress);
    return previewing.taken();
}

}  // namespace trellant::listening
