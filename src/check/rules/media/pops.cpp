// SPDX-License-Identifier: Apache-2.0
#include "pops.h"

#include "played_sound.h"

#include <algorithm>

namespace trellant::check {

namespace {

/// Timeline seconds.
struct Window {
    AAFRational first{};
    AAFRational last{};
    AAFRational shortest{};
    AAFRational longest{};
};

bool playsPop(const CheckedHandOff& checked, const CheckedClip& clip, const HeardChannel& channel,
              const Window& window) {
    const AAFRational& rate = checked.sourceOf(clip).essence->sampleRate;
    const std::int64_t begin = clip.event->sourceStartSample;
    const auto tones = rangesIn(channel.tones, begin, clip.sourceEnd);
    return std::any_of(tones.begin(), tones.end(), [&](const SampleRange& tone) {
        const std::int64_t first = std::max(tone.first, begin);
        const AAFRational length = AAFRational(std::min(tone.end(), clip.sourceEnd) - first) / rate;
        const AAFRational at = clip.event->timelineStart + AAFRational(first - begin) / rate;
        return window.first <= at && at <= window.last && window.shortest <= length &&
               length <= window.longest;
    });
}

}  // namespace

bool hasPopAt(const CheckedHandOff& checked, const AAFRational& time) {
    const AAFRational frame = AAFRational::one() / checked.frameRate();
    const Window window{.first = time - frame,
                        .last = time + frame,
                        .shortest = frame / AAFRational(2),
                        .longest = frame * AAFRational(3)};
    const auto& clips = checked.clips();
    return std::any_of(clips.begin(), clips.end(), [&](const CheckedClip& clip) {
        if (window.last < clip.event->timelineStart || clip.end <= window.first) {
            return false;
        }
        const auto channels = playedChannels(checked, clip);
        return std::any_of(channels.begin(), channels.end(), [&](const HeardChannel* channel) {
            return playsPop(checked, clip, *channel, window);
        });
    });
}

}  // namespace trellant::check
