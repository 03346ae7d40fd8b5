// SPDX-License-Identifier: Apache-2.0
#include "batches.h"
#include "made_file.h"
#include "source_files.h"

#include <trellant/base/keyed_hash.h>
#include <trellant/base/precondition.h>
#include <trellant/extraction/wave_conversion.h>
#include <trellant/handoff/jobs.h>
#include <trellant/listening/source_sound.h>

#include <utility>

namespace trellant::listening {

namespace {

/// One file that some sources name.
struct Medium {
    std::string path;
    std::optional<std::int64_t> bitDepth;
    SourceSound sound{};
};

/// The most that the converter writes about a file.
std::uint64_t mostMeasureBytes(std::size_t mostPairs) {
    constexpr std::uint64_t headBytes = 64;
    constexpr std::uint64_t pairBytes = 4;
    constexpr std::uint64_t listBytes = 16 + 16 * audio::mostListedRanges;
    return headBytes + audio::mostChannels * (mostPairs * pairBytes + 3 * listBytes);
}

class Measuring {
  public:
    Measuring(const MeasureRequest& request, const Staging& staging)
        : request_(request), staging_(staging) {
        precondition(request.mostPairs >= 1 && request.mostPairs <= audio::mostPairs,
                     "an outline has a bounded number of pairs");
    }

    /// The number of the medium.
    std::size_t add(std::string path, const AAFSourceEssence& essence) {
        const auto [found, isNew] = byPath_.emplace(path, media_.size());
        if (isNew) {
            media_.push_back({std::move(path), essence.bitDepth});
        }
        return found->second;
    }
    void run(WorkProgress& progress) {
        std::vector<std::uint64_t> sizes;
        for (const Medium& medium : media_) {
            sizes.push_back(bytesOfFile(medium.path));
        }
        const std::vector<Batch> batches = batchesOf(sizes);
        progress.begin("Listening to the audio", bytesOf({0, sizes.size()}, sizes));
        runJobs(
            batches.size(),
            [&](std::size_t number, const std::function<void()>& whileWaiting) {
                measure(batches[number], whileWaiting);
                return bytesOf(batches[number], sizes);
            },
            progress);
    }
    [[nodiscard]] const SourceSound& sound(std::size_t medium) const {
        return media_[medium].sound;
    }

  private:
    void measure(const Batch& batch, const std::function<void()>& whileWaiting) {
        std::vector<ConverterTask> tasks;
        for (std::size_t i = 0; i < batch.count; ++i) {
            tasks.push_back(taskOf(batch.first + i));
        }
        const auto failures = runConverterForEach(request_.converter, tasks, whileWaiting);
        for (std::size_t i = 0; i < batch.count; ++i) {
            take(media_[batch.first + i], tasks[i].destination, failures[i]);
        }
    }

    [[nodiscard]] ConverterTask taskOf(std::size_t number) const {
        const Medium& medium = media_[number];
        std::string made = staging_.file("measures-" + std::to_string(number));
        ConverterTask task{{"--measure", medium.path, made, std::to_string(request_.mostPairs)},
                           std::move(made)};
        constexpr std::int64_t mostBits = 64;
        if (medium.bitDepth && *medium.bitDepth >= 1 && *medium.bitDepth <= mostBits) {
            task.arguments.push_back(std::to_string(*medium.bitDepth));
        }
        return task;
    }

    void take(Medium& medium, const std::string& made,
              const std::optional<std::string>& failure) const {
        medium.sound.state = SoundState::refused;
        if (failure) {
            medium.sound.reason = *failure;
            return;
        }
        const auto bytes = takenFile(made, mostMeasureBytes(request_.mostPairs));
        auto measures = bytes ? audio::unpackedMeasures(*bytes) : std::nullopt;
        if (!measures) {
            medium.sound.reason = "the conversion gave no answer that makes sense";
            return;
        }
        medium.sound.state = SoundState::heard;
        medium.sound.measures = std::make_shared<const audio::SoundMeasures>(std::move(*measures));
    }

    const MeasureRequest& request_;
    const Staging& staging_;
    std::vector<Medium> media_;
    KeyedMap<std::string, std::size_t> byPath_;
};

}  // namespace

std::vector<SourceSound> measureSources(const AAFTimeline& timeline, const MeasureRequest& request,
                                        const Staging& staging, WorkProgress& progress) {
    const std::vector<bool> played = playedEssences(timeline);
    std::vector<std::optional<std::size_t>> mediumOf(timeline.essences.size());
    Measuring measuring(request, staging);
    for (std::size_t i = 0; i < timeline.essences.size(); ++i) {
        progress.check();
        auto path = played[i] ? filePath(timeline.essences[i]) : std::nullopt;
        if (path) {
            mediumOf[i] = measuring.add(std::move(*path), timeline.essences[i]);
        }
    }
    measuring.run(progress);
    std::vector<SourceSound> sounds;
    sounds.reserve(timeline.essences.size());
    for (std::size_t i = 0; i < timeline.essences.size(); ++i) {
        if (mediumOf[i]) {
            sounds.push_back(measuring.sound(*mediumOf[i]));
        } else if (played[i]) {
            sounds.push_back({.state = SoundState::missing, .reason = noFileReason});
        } else {
            sounds.push_back({.state = SoundState::notPlayed, .reason = {}});
        }
    }
    return sounds;
}

}  // namespace trellant::listening
