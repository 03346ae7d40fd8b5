// SPDX-License-Identifier: Apache-2.0
#include "sound.h"

#include <trellant/audio/gain.h>
#include <trellant/audio/gain_runs.h>

#include <algorithm>

namespace trellant::render {

namespace {

using exchange::ExportPlan;
using exchange::PlannedClip;
using exchange::PlannedTrack;
using exchange::Samples;

constexpr double middle = 0.5;

std::size_t sizeOf(Samples count) noexcept {
    return static_cast<std::size_t>(count);
}

/// The first channel where it does not say which one it plays.
std::size_t channelOf(const PlannedClip& clip) noexcept {
    return sizeOf(std::max<std::int64_t>(clip.channel.value_or(0), 0));
}

/// Multiplies by a fade whose place is `from` to `from` + its length, counted as `first` is.
template <class Fade>
void applyFade(const exchange::PlannedFade& fade, Samples from, Samples first,
               std::span<double> factors, Fade multiply) {
    const Samples end = first + static_cast<Samples>(factors.size());
    const Samples begin = std::max(first, from);
    const Samples last = std::min(end, from + fade.length);
    if (begin < last) {
        multiply(fade.curve, fade.shape, audio::OwnerRun{begin - from, fade.length},
                 factors.subspan(sizeOf(begin - first), sizeOf(last - begin)));
    }
}

/// Whether [first, end) of a clip has another factor than its gain.
bool isShaped(const PlannedClip& clip, Samples first, Samples end) {
    return clip.gainAutomation || (clip.fadeIn && first < clip.fadeIn->length) ||
           (clip.fadeOut && end > clip.length - clip.fadeOut->length);
}

/// One clip's samples, and what they are multiplied by.
class ClipPart {
  public:
    /// Samples of the clip from its `first` on, as the media have them.
    std::span<double> samples(MediaReader& media, const PlannedClip& clip, Samples first,
                              std::size_t count) {
        samples_.resize(count);
        media.read(clip.media, channelOf(clip), clip.sourceStart + first, samples_);
        return samples_;
    }
    /// Their factors.
    std::span<const double> factors(const PlannedClip& clip, Samples first, std::size_t count) {
        factors_.assign(count, clip.gain);
        if (clip.gainAutomation) {
            audio::multiplyByEnvelope(*clip.gainAutomation, {first, clip.length}, factors_);
        }
        return factors_;
    }
    std::span<const double> fadedFactors(const PlannedClip& clip, Samples first,
                                         std::size_t count) {
        static_cast<void>(factors(clip, first, count));
        if (clip.fadeIn) {
            applyFade(*clip.fadeIn, 0, first, factors_, audio::multiplyByFadeIn);
        }
        if (clip.fadeOut) {
            applyFade(*clip.fadeOut, clip.length - clip.fadeOut->length, first, factors_,
                      audio::multiplyByFadeOut);
        }
        return factors_;
    }

  private:
    std::vector<double> samples_;
    std::vector<double> factors_;
};

class TrackSound final : public Sound {
  public:
    TrackSound(const ExportPlan& plan, const PlannedTrack& track, Treatment treatment, Samples from)
        : plan_(plan),
          track_(track),
          clips_(track.lanes.front().clips),
          treatment_(treatment),
          isTrackPlain_(treatment == Treatment::edits ||
                        (track.gain == 1 && !track.gainAutomation)),
          place_(from) {}

    [[nodiscard]] std::size_t channels() const noexcept override { return 1; }

    void next(MediaReader& media, std::span<double> samples) override {
        std::fill(samples.begin(), samples.end(), 0.0);
        const Samples end = place_ + static_cast<Samples>(samples.size());
        takeUp(media, end);
        for (const std::size_t number : playing_) {
            add(media, clips_[number], samples);
        }
        applyTrack(samples);
        goTo(end);
    }

    [[nodiscard]] Stretch ahead(const MediaReader& media, std::size_t frames) override {
        takeUp(media, place_ + 1);
        if (playing_.size() > 1 || (playing_.size() == 1 && !isTrackPlain_)) {
            return {Stretch::Kind::workedOut, frames};
        }
        Samples end = place_ + static_cast<Samples>(frames);
        if (next_ < clips_.size()) {
            end = std::min(end, clips_[next_].start);
        }
        return playing_.empty() ? Stretch{Stretch::Kind::silent, sizeOf(end - place_)}
                                : ofOneClip(clips_[playing_.front()], frames, end);
    }

    void skip(const MediaReader& media, Samples frames) override {
        goTo(place_ + frames);
        takeUp(media, place_);
    }

  private:
    /// Takes up the clips that are heard and begin before `end`.
    void takeUp(const MediaReader& media, Samples end) {
        for (; next_ < clips_.size() && clips_[next_].start < end; ++next_) {
            const PlannedClip& clip = clips_[next_];
            if (clip.end() > place_ && !clip.muted && media.has(clip.media)) {
                playing_.push_back(next_);
            }
        }
    }

    void goTo(Samples place) {
        place_ = place;
        std::erase_if(playing_, [&](std::size_t number) { return clips_[number].end() <= place; });
    }

    /// Nothing else is heard before `end`.
    [[nodiscard]] Stretch ofOneClip(const PlannedClip& clip, std::size_t frames,
                                    Samples end) const {
        const Samples first = place_ - clip.start;
        Samples last = std::min(end - clip.start, clip.length);
        if (treatment_ == Treatment::processed) {
            if (clip.gain != 1 || clip.gainAutomation) {
                return {Stretch::Kind::workedOut, frames};
            }
            if (clip.fadeIn && first < clip.fadeIn->length) {
                const Samples fading = std::min(clip.fadeIn->length, last) - first;
                return {Stretch::Kind::workedOut, sizeOf(fading)};
            }
            if (clip.fadeOut) {
                const Samples fade = clip.length - clip.fadeOut->length;
                if (first >= fade) {
                    return {Stretch::Kind::workedOut, sizeOf(last - first)};
                }
                last = std::min(last, fade);
            }
        }
        return {Stretch::Kind::copied, sizeOf(last - first), clip.media, channelOf(clip),
                clip.sourceStart + first};
    }

    void add(MediaReader& media, const PlannedClip& clip, std::span<double> samples) {
        const Samples begin = std::max(place_, clip.start);
        const Samples end = std::min(place_ + static_cast<Samples>(samples.size()), clip.end());
        const auto target = samples.subspan(sizeOf(begin - place_), sizeOf(end - begin));
        const auto source = part_.samples(media, clip, begin - clip.start, target.size());
        if (treatment_ == Treatment::edits) {
            for (std::size_t i = 0; i < target.size(); ++i) {
                target[i] += source[i];
            }
        } else if (!isShaped(clip, begin - clip.start, end - clip.start)) {
            const double gain = clip.gain;
            for (std::size_t i = 0; i < target.size(); ++i) {
                target[i] += source[i] * gain;
            }
        } else {
            const auto factors = part_.fadedFactors(clip, begin - clip.start, target.size());
            for (std::size_t i = 0; i < target.size(); ++i) {
                target[i] += source[i] * factors[i];
            }
        }
    }

    void applyTrack(std::span<double> samples) {
        if (isTrackPlain_) {
            return;
        }
        factors_.assign(samples.size(), track_.gain);
        if (track_.gainAutomation) {
            audio::multiplyByEnvelope(*track_.gainAutomation,
                                      {place_, std::max<Samples>(plan_.length, 1)}, factors_);
        }
        for (std::size_t i = 0; i < samples.size(); ++i) {
            samples[i] *= factors_[i];
        }
    }

    const ExportPlan& plan_;
    const PlannedTrack& track_;
    const std::vector<PlannedClip>& clips_;
    Treatment treatment_;
    /// The track leaves the sum of its clips as it is.
    bool isTrackPlain_;
    Samples place_;
    /// The first clip that has not begun.
    std::size_t next_ = 0;
    /// Clips that are heard, have begun and not ended, by ascending start.
    std::vector<std::size_t> playing_;
    ClipPart part_;
    std::vector<double> factors_;
};

class MixSound final : public Sound {
  public:
    MixSound(const ExportPlan& plan, Samples from) : plan_(plan), place_(from) {
        for (const std::size_t number : heardTracks(plan)) {
            const PlannedTrack& track = plan.tracks[number];
            tracks_.push_back(
                {&track, std::make_unique<TrackSound>(plan, track, Treatment::processed, from)});
        }
    }

    [[nodiscard]] std::size_t channels() const noexcept override { return 2; }

    void next(MediaReader& media, std::span<double> samples) override {
        std::fill(samples.begin(), samples.end(), 0.0);
        const std::size_t frames = samples.size() / 2;
        mono_.resize(frames);
        for (const Track& track : tracks_) {
            const Stretch stretch = track.sound->ahead(media, frames);
            if (stretch.kind == Stretch::Kind::silent && stretch.frames == frames) {
                track.sound->skip(media, static_cast<Samples>(frames));
                continue;
            }
            track.sound->next(media, mono_);
            add(*track.planned, samples);
        }
        place_ += static_cast<Samples>(frames);
    }

    [[nodiscard]] Stretch ahead(const MediaReader& /*media*/, std::size_t frames) override {
        return {Stretch::Kind::workedOut, frames};
    }

    void skip(const MediaReader& media, Samples frames) override {
        for (const Track& track : tracks_) {
            track.sound->skip(media, frames);
        }
        place_ += frames;
    }

  private:
    struct Track {
        const PlannedTrack* planned;
        std::unique_ptr<TrackSound> sound;
    };

    void add(const PlannedTrack& track, std::span<double> samples) {
        const double pan = track.pan.value_or(middle);
        if (!track.panAutomation) {
            const audio::PanGains gains = audio::panGains(pan);
            for (std::size_t i = 0; i < mono_.size(); ++i) {
                samples[2 * i] += mono_[i] * gains.left;
                samples[2 * i + 1] += mono_[i] * gains.right;
            }
            return;
        }
        pans_.resize(mono_.size());
        audio::fillWithEnvelope(*track.panAutomation, {place_, std::max<Samples>(plan_.length, 1)},
                                pan, pans_);
        for (std::size_t i = 0; i < mono_.size(); ++i) {
            const audio::PanGains gains = audio::panGains(pans_[i]);
            samples[2 * i] += mono_[i] * gains.left;
            samples[2 * i + 1] += mono_[i] * gains.right;
        }
    }

    const ExportPlan& plan_;
    Samples place_;
    std::vector<Track> tracks_;
    std::vector<double> mono_;
    std::vector<double> pans_;
};

class ClipSound final : public Sound {
  public:
    ClipSound(const PlannedClip& clip, Treatment treatment, Samples head)
        : clip_(clip), treatment_(treatment), place_(-head) {}

    [[nodiscard]] std::size_t channels() const noexcept override { return 1; }

    void next(MediaReader& media, std::span<double> samples) override {
        const auto source = part_.samples(media, clip_, place_, samples.size());
        if (treatment_ == Treatment::edits) {
            std::copy(source.begin(), source.end(), samples.begin());
        } else {
            const auto factors = part_.factors(clip_, place_, samples.size());
            for (std::size_t i = 0; i < samples.size(); ++i) {
                samples[i] = source[i] * factors[i];
            }
        }
        place_ += static_cast<Samples>(samples.size());
    }

    [[nodiscard]] Stretch ahead(const MediaReader& /*media*/, std::size_t frames) override {
        const bool isPlain =
            treatment_ == Treatment::edits || (clip_.gain == 1 && !clip_.gainAutomation);
        return isPlain ? Stretch{Stretch::Kind::copied, frames, clip_.media, channelOf(clip_),
                                 clip_.sourceStart + place_}
                       : Stretch{Stretch::Kind::workedOut, frames};
    }

    void skip(const MediaReader& /*media*/, Samples frames) override { place_ += frames; }

  private:
    const PlannedClip& clip_;
    Treatment treatment_;
    /// From the clip's start.
    Samples place_;
    ClipPart part_;
};

}  // namespace

std::unique_ptr<Sound> trackSound(const ExportPlan& plan, std::size_t track, Treatment treatment,
                                  Samples from) {
    return std::make_unique<TrackSound>(plan, plan.tracks.at(track), treatment, from);
}

std::unique_ptr<Sound> mixSound(const ExportPlan& plan, Samples from) {
    return std::make_unique<MixSound>(plan, from);
}

std::unique_ptr<Sound> clipSound(const PlannedClip& clip, Treatment treatment, Samples head) {
    return std::make_unique<ClipSound>(clip, treatment, head);
}

std::vector<std::size_t> heardTracks(const ExportPlan& plan) {
    const bool anySolo = std::any_of(plan.tracks.begin(), plan.tracks.end(),
                                     [](const PlannedTrack& track) { return track.solo; });
    std::vector<std::size_t> heard;
    for (std::size_t i = 0; i < plan.tracks.size(); ++i) {
        const PlannedTrack& track = plan.tracks[i];
        if (!track.lanes.front().clips.empty() && !track.muted && (!anySolo || track.solo)) {
            heard.push_back(i);
        }
    }
    return heard;
}

}  // namespace trellant::render
