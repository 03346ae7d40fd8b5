// SPDX-License-Identifier: Apache-2.0
#include "resampled_media.h"

#include <trellant/base/printable_text.h>
#include <trellant/exporter/plain_wave.h>
#include <trellant/extraction/wave_conversion.h>
#include <trellant/handoff/jobs.h>

#include <optional>

namespace trellant::render {

namespace {

/// Why there is no new file; absent when there is one, which is played from then on.
std::optional<std::string> resampleOne(const exchange::PlannedMedia& media, std::int64_t rate,
                                       std::optional<sessions::WaveFile>& played,
                                       const std::string& made, const ResamplingPlaces& places,
                                       const std::function<void()>& whileWaiting) {
    const std::vector<std::string> commandLine{places.waveConverter,
                                               "--resample",
                                               played->path,
                                               made,
                                               std::to_string(media.sampleRate.numerator()),
                                               std::to_string(media.sampleRate.denominator()),
                                               std::to_string(rate)};
    auto failure = runConverter(commandLine, made, whileWaiting);
    played = failure ? std::nullopt : plainWave(made);
    if (!failure && !played) {
        failure = "the conversion gave no answer that makes sense";
    }
    return failure;
}

/// Clips count in samples of the new file now.
void moveSourceStarts(exchange::ExportPlan& plan, const std::vector<std::size_t>& media) {
    std::vector<bool> isNew(plan.media.size());
    for (const std::size_t number : media) {
        isNew[number] = true;
    }
    for (exchange::PlannedTrack& track : plan.tracks) {
        for (exchange::Lane& lane : track.lanes) {
            for (exchange::PlannedClip& clip : lane.clips) {
                if (isNew[clip.media]) {
                    clip.sourceStart = clip.sourceStartAtSessionRate;
                }
            }
        }
    }
}

}  // namespace

std::vector<SessionMediaMaker::Difference> resample(exchange::ExportPlan& plan, PlayedFiles& played,
                                                    const std::vector<std::size_t>& media,
                                                    const ResamplingPlaces& places,
                                                    WorkProgress& progress) {
    std::vector<std::optional<std::string>> failures(media.size());
    std::uint64_t bytes = 0;
    for (const std::size_t number : media) {
        bytes += played[number] ? played[number]->dataByteCount : 0;
    }
    progress.begin("Converting sample rates", bytes);
    runJobs(
        media.size(),
        [&](std::size_t number, const std::function<void()>& whileWaiting) {
            auto& file = played[media[number]];
            if (!file) {
                return std::uint64_t{0};
            }
            const std::uint64_t size = file->dataByteCount;
            failures[number] =
                resampleOne(plan.media[media[number]], plan.rate, file,
                            places.folder + "/resampled-" + std::to_string(number) + ".wav", places,
                            whileWaiting);
            return size;
        },
        progress);
    std::vector<SessionMediaMaker::Difference> differences;
    for (std::size_t i = 0; i < media.size(); ++i) {
        if (failures[i]) {
            progress.say(WorkProgress::Remark::problem,
                         printableText(plan.media[media[i]].name) +
                             " could not be converted to the session's sample rate, its clips are "
                             "silent: " +
                             *failures[i]);
            differences.push_back({media[i], true, *failures[i]});
        }
    }
    moveSourceStarts(plan, media);
    return differences;
}

}  // namespace trellant::render
