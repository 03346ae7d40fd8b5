// SPDX-License-Identifier: Apache-2.0
// Random plans, rendered and worked out anew by another implementation: slow, sample by sample, in
// fractions throughout. It knows the rules of sound.h, gain.h and pcm.h and shares no code with
// them. Curves are those that fractions can follow.
#include "file_making.h"
#include "rendered.h"

#include <trellant/audio/pcm.h>
#include <trellant/base/int128.h>

#include <gtest/gtest.h>

#include <array>
#include <random>

namespace trellant::testing {
namespace {

using Curve = AAFAutomationInterpolation;
using exchange::PlannedClip;
using exchange::PlannedTrack;
using exchange::Samples;

Int128 divisorOf(Int128 left, Int128 right) {
    left = left < 0 ? -left : left;
    while (right != 0) {
        const Int128 rest = left % right;
        left = right;
        right = rest;
    }
    return left;
}

/// Never beyond 128 bits here: lengths divide 5,040, and values are quarters.
struct Fraction {
    Int128 top = 0;
    Int128 bottom = 1;

    static Fraction of(Int128 top, Int128 bottom) {
        const Int128 common = divisorOf(top, bottom);
        return {top / common, bottom / common};
    }
    /// A quarter of a whole number.
    static Fraction quarters(double value) { return of(static_cast<Int128>(value * 4), 4); }

    friend Fraction operator*(const Fraction& a, const Fraction& b) {
        const Fraction left = of(a.top, b.bottom);
        const Fraction right = of(b.top, a.bottom);
        return {left.top * right.top, left.bottom * right.bottom};
    }
    friend Fraction operator+(const Fraction& a, const Fraction& b) {
        const Int128 common = divisorOf(a.bottom, b.bottom);
        return of(a.top * (b.bottom / common) + b.top * (a.bottom / common),
                  a.bottom / common * b.bottom);
    }
    friend Fraction operator-(const Fraction& a, const Fraction& b) {
        return a + Fraction{-b.top, b.bottom};
    }
    friend Fraction operator/(const Fraction& a, const Fraction& b) {
        return b.top < 0 ? a * Fraction{-b.bottom, -b.top} : a * Fraction{b.bottom, b.top};
    }
    friend bool operator<(const Fraction& a, const Fraction& b) { return (a - b).top < 0; }
};

Fraction offsetOf(const AAFAutomationPoint& point) {
    return Fraction::of(point.timelineOffset.numerator(), point.timelineOffset.denominator());
}

Fraction valueAt(const AAFAutomationEnvelope& envelope, const Fraction& place) {
    const auto& points = envelope.points;
    std::size_t next = 0;
    while (next < points.size() && !(place < offsetOf(points[next]))) {
        ++next;
    }
    if (next == 0 || next == points.size()) {
        return Fraction::quarters(points[next == 0 ? 0 : next - 1].value);
    }
    const Fraction before = Fraction::quarters(points[next - 1].value);
    if (std::holds_alternative<Curve::Constant>(envelope.interpolation.curve)) {
        return before;
    }
    const Fraction from = offsetOf(points[next - 1]);
    const Fraction way = (place - from) / (offsetOf(points[next]) - from);
    return before + (Fraction::quarters(points[next].value) - before) * way;
}

Fraction fadeIn(const exchange::PlannedFade& fade, Samples sample) {
    if (sample >= fade.length) {
        return {1, 1};
    }
    return std::holds_alternative<Curve::Constant>(fade.curve.curve)
               ? Fraction{0, 1}
               : Fraction::of(sample, fade.length);
}

Fraction fadeOut(const exchange::PlannedFade& fade, Samples left) {
    return left > fade.length || std::holds_alternative<Curve::Constant>(fade.curve.curve)
               ? Fraction{1, 1}
               : Fraction::of(left, fade.length);
}

Fraction factorOf(const PlannedClip& clip, Samples sample) {
    Fraction factor = Fraction::quarters(clip.gain);
    if (clip.gainAutomation) {
        factor = factor * valueAt(*clip.gainAutomation, Fraction::of(sample, clip.length));
    }
    if (clip.fadeIn) {
        factor = factor * fadeIn(*clip.fadeIn, sample);
    }
    if (clip.fadeOut) {
        factor = factor * fadeOut(*clip.fadeOut, clip.length - sample);
    }
    return factor;
}

/// To the nearest step of 24 bits, halves and what is 2^-20 short of them away from zero, within
/// the range. `value`: steps of 16 bits, which are 256 of them.
std::int64_t rounded(const Fraction& value) {
    const bool isNegative = value.top < 0;
    const Fraction size =
        (isNegative ? Fraction{-value.top, value.bottom} : value) * Fraction{256, 1} +
        Fraction::of((1 << 19) + 1, 1 << 20);
    const auto whole = static_cast<std::int64_t>(size.top / size.bottom);
    return isNegative ? std::max<std::int64_t>(-whole, -8'388'608)
                      : std::min<std::int64_t>(whole, 8'388'607);
}

class RandomPlan : public RenderedPlan {
  public:
    explicit RandomPlan(unsigned seed) : numbers_(seed) {
        for (int i = 0; i < 2; ++i) {
            samples_.emplace_back();
            for (int k = 0; k < 1'200; ++k) {
                samples_.back().push_back(static_cast<std::int16_t>(upTo(65'535) - 32'768));
            }
            addMedia(samples_.back(), static_cast<std::uint16_t>(i + 1));
        }
        PlannedTrack& track = addTrack();
        Samples start = 0;
        for (int i = 0; i < 6; ++i) {
            start += upTo(200);
            fill(addClip(track, static_cast<std::size_t>(upTo(1)), start, lengthUpTo(420)));
        }
        track.gain = upTo(1) == 0 ? 1 : quarters();
        // A length that divides 5,040.
        plan.length = 5'040;
        if (upTo(1) == 0) {
            track.gainAutomation = envelope();
        }
    }

    [[nodiscard]] std::vector<std::int64_t> workedOut(Samples frames) const {
        std::vector<std::int64_t> result;
        const PlannedTrack& track = plan.tracks.front();
        for (Samples at = 0; at < frames; ++at) {
            Fraction sum;
            for (const PlannedClip& clip : track.lanes.front().clips) {
                if (at >= clip.start && at < clip.end()) {
                    sum = sum + Fraction{sampleOf(clip, at - clip.start), 1} *
                                    factorOf(clip, at - clip.start);
                }
            }
            Fraction gain = Fraction::quarters(track.gain);
            if (track.gainAutomation) {
                gain = gain * valueAt(*track.gainAutomation, Fraction::of(at, plan.length));
            }
            result.push_back(rounded(sum * gain));
        }
        return result;
    }

    [[nodiscard]] int upTo(int most) {
        return std::uniform_int_distribution<int>(0, most)(numbers_);
    }

  private:
    [[nodiscard]] Int128 sampleOf(const PlannedClip& clip, Samples sample) const {
        const auto& samples = samples_[clip.media];
        const auto at = static_cast<std::size_t>(clip.sourceStart + sample);
        if (clip.media == 0) {
            return at < samples.size() ? samples[at] : 0;
        }
        const std::size_t channel = clip.channel ? static_cast<std::size_t>(*clip.channel) : 0;
        return 2 * at + channel < samples.size() ? samples[2 * at + channel] : 0;
    }
    [[nodiscard]] double quarters() { return (upTo(12) - 4) / 4.0; }
    [[nodiscard]] Samples lengthUpTo(Samples most) {
        constexpr std::array<Samples, 20> lengths{1,  2,  3,  5,  7,  8,   12,  15,  20,  24,
                                                  35, 42, 60, 72, 90, 105, 144, 210, 315, 420};
        Samples length = most + 1;
        while (length > most) {
            length = lengths[static_cast<std::size_t>(upTo(19))];
        }
        return length;
    }
    [[nodiscard]] Curve curve() { return upTo(3) == 0 ? Curve::constant() : Curve::linear(); }
    [[nodiscard]] AAFAutomationEnvelope envelope() {
        AAFAutomationEnvelope result{curve(), {}};
        for (int place = upTo(3); place <= 12; place += upTo(4)) {
            result.points.push_back({AAFRational(place, 12), quarters()});
            if (result.points.size() == 6) {
                break;
            }
        }
        return result;
    }
    void fill(PlannedClip& clip) {
        clip.sourceStart = upTo(900);
        clip.gain = upTo(1) == 0 ? 1 : quarters();
        clip.muted = false;
        if (clip.media == 1 && upTo(2) != 0) {
            clip.channel = upTo(1);
        }
        if (upTo(2) == 0) {
            clip.gainAutomation = envelope();
        }
        if (upTo(2) != 0) {
            clip.fadeIn =
                exchange::PlannedFade{.length = lengthUpTo(clip.length), .curve = curve()};
        }
        if (upTo(2) != 0) {
            clip.fadeOut =
                exchange::PlannedFade{.length = lengthUpTo(clip.length), .curve = curve()};
        }
    }

    std::mt19937 numbers_;
    std::vector<std::vector<std::int16_t>> samples_;
};

constexpr audio::PcmFormat twentyFour{24, false};

std::vector<std::int64_t> wholeNumbers(const Bytes& bytes) {
    std::vector<std::int64_t> numbers;
    for (std::size_t i = 0; i < bytes.size(); i += 3) {
        const auto at = [&](std::size_t k) { return std::to_integer<std::int64_t>(bytes[i + k]); };
        const std::int64_t number = at(0) | at(1) << 8 | at(2) << 16;
        numbers.push_back(number < 0x800000 ? number : number - 0x1000000);
    }
    return numbers;
}

/// The same by way of stretches: what is silent, and what is copied as it lies in the media.
TEST(ExactSound, SoAreTheirBytesFromAnyPlaceOn) {
    for (unsigned seed = 101; seed <= 180; ++seed) {
        RandomPlan random(seed);
        constexpr std::size_t frames = 1'700;
        render::SoundBytes sound(
            render::trackSound(random.plan, 0, render::Treatment::processed, 0), random.played,
            twentyFour);
        const auto some = [&](int most) { return static_cast<std::size_t>(random.upTo(most)); };
        const std::vector<std::int64_t> expected = random.workedOut(frames);
        for (std::size_t at = 0; at < frames;) {
            Bytes bytes(std::min(1 + some(300), frames - at) * 3);
            sound.goTo(at);
            static_cast<void>(sound.next(bytes));
            const std::vector<std::int64_t> numbers = wholeNumbers(bytes);
            for (std::size_t i = 0; i < numbers.size(); ++i) {
                ASSERT_EQ(numbers[i], expected[at + i]) << "plan " << seed << ", sample " << at + i;
            }
            // Every other time a part is left out.
            at += numbers.size() + some(1) * some(200);
        }
    }
}

TEST(ExactSound, RandomPlansAreWhatFractionsMakeOfThem) {
    for (unsigned seed = 1; seed <= 60; ++seed) {
        RandomPlan random(seed);
        constexpr std::size_t frames = 1'700;
        const auto sound = render::trackSound(random.plan, 0, render::Treatment::processed, 0);
        std::vector<double> samples =
            random.steps(*sound, frames, static_cast<std::size_t>(1 + random.upTo(300)));
        for (double& sample : samples) {
            sample /= 32'768;
        }
        Bytes bytes(frames * 3);
        static_cast<void>(audio::encodePcm({24, false}, samples, bytes));
        std::vector<double> steps(frames);
        audio::decodePcm({24, false}, bytes, 1, 0, steps);
        const std::vector<std::int64_t> expected = random.workedOut(frames);
        for (std::size_t i = 0; i < frames; ++i) {
            ASSERT_EQ(static_cast<std::int64_t>(steps[i] * 8'388'608), expected[i])
                << "plan " << seed << ", sample " << i;
        }
    }
}

}  // namespace
}  // namespace trellant::testing
