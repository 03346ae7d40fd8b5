// SPDX-License-Identifier: Apache-2.0
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
        std::uint64_t bytes = 0;
        for (const Medium& medium : media_) {
            bytes += bytesOfFile(medium.path);
        }
        progress.begin("Listening to the audio", bytes);
        runJobs(
            media_.size(),
            [this](std::size_t number, const std::function<void()>& whileWaiting) {
                measure(media_[number], number, whileWaiting);
                return bytesOfFile(media_[number].path);
            },
            progress);
    }
    [[nodiscard]] const SourceSound& sound(std::size_t medium) const {
        return media_[medium].sound;
    }

  private:
    void measure(Medium& medium, std::size_t number,
                 const std::function<void()>& whileWaiting) const {
        const std::string made = staging_.file("measures-" + std::to_string(number));
        std::vector<std::string> commandLine{request_.converter, "--measure", medium.path, made,
                                             std::to_string(request_.mostPairs)};
        constexpr std::int64_t mostBits = 64;
        if (medium.bitDepth && *medium.bitDepth >= 1 && *medium.bitDepth <= mostBits) {
            commandLine.push_back(std::to_string(*medium.bitDepth));
        }
        medium.sound.state = SoundState::refused;
        if (auto failure = runConverter(commandLine, made, whileWaiting)) {
            medium.sound.reason = std::move(*failure);
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
