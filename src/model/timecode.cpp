// SPDX-License-Identifier: Apache-2.0
// Drop-frame counting. At 30 frames per second the labels ;00 and ;01 of each minute that is no
// multiple of ten do not exist, at 60 the labels ;00 to ;03. So ten minutes hold 18 (36) frames
// fewer than their labels suggest, an hour 108 (216), and 00:01:00;02 is frame 1800.
#include <trellant/base/precondition.h>
#include <trellant/model/timecode.h>

#include <array>
#include <charconv>
#include <limits>

namespace trellant {

namespace {

constexpr std::int64_t largest = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t secondsPerDay = 86400;
constexpr const char* overflowMessage = "AAFTimecodeAddress frame number overflow";

[[nodiscard]] std::int64_t product(std::int64_t left, std::int64_t right) noexcept {
    std::int64_t result = 0;
    precondition(!__builtin_mul_overflow(left, right, &result), overflowMessage);
    return result;
}

[[nodiscard]] std::int64_t sum(std::int64_t left, std::int64_t right) noexcept {
    std::int64_t result = 0;
    precondition(!__builtin_add_overflow(left, right, &result), overflowMessage);
    return result;
}

[[nodiscard]] std::int64_t difference(std::int64_t left, std::int64_t right) noexcept {
    std::int64_t result = 0;
    precondition(!__builtin_sub_overflow(left, right, &result), overflowMessage);
    return result;
}

/// The frame number counted in labels: skipped labels are added back. `nominal` is at most
/// largest / 86400, so that a day's labels fit 64 bits.
[[nodiscard]] std::int64_t labelNumber(std::int64_t frameNumber, std::int64_t nominal,
                                       std::int64_t dropped) noexcept {
    if (dropped == 0) {
        return frameNumber % (nominal * secondsPerDay);
    }
    const std::int64_t tenMinuteDrop = nominal == 60 ? 36 : 18;
    const std::int64_t framesPerDay = (nominal * 3600 - tenMinuteDrop * 6) * 24;
    const std::int64_t framesPerTenMinutes = nominal * 600 - tenMinuteDrop;
    const std::int64_t frameOfDay = frameNumber % framesPerDay;
    const std::int64_t blocks = frameOfDay / framesPerTenMinutes;
    const std::int64_t rest = frameOfDay - blocks * framesPerTenMinutes;
    std::int64_t added = tenMinuteDrop * blocks;
    if (rest >= dropped) {
        added += dropped * ((rest - dropped) / (nominal * 60 - dropped));
    }
    return frameOfDay + added;
}

}  // namespace

AAFTimecodeRate::AAFTimecodeRate(AAFRational rate, std::int64_t nominal, bool drop)
    : exactRate(rate), nominalFramesPerSecond(nominal), dropFrame(drop) {
    precondition(nominal >= 1, "AAFTimecodeRate needs at least one frame per second");
    precondition(!drop || nominal == 30 || nominal == 60,
                 "AAFTimecodeRate drops frames at 30 or 60 only");
}

std::int64_t AAFTimecodeRate::droppedFramesPerMinute() const noexcept {
    if (!dropFrame) {
        return 0;
    }
    return nominalFramesPerSecond == 60 ? 4 : 2;
}

AAFTimecodeRate AAFTimecodeRate::fps24() {
    return {AAFRational(24, 1), 24, false};
}
AAFTimecodeRate AAFTimecodeRate::fps25() {
    return {AAFRational(25, 1), 25, false};
}
AAFTimecodeRate AAFTimecodeRate::fps23976() {
    return {AAFRational(24000, 1001), 24, false};
}
AAFTimecodeRate AAFTimecodeRate::fps2997DF() {
    return {AAFRational(30000, 1001), 30, true};
}
AAFTimecodeRate AAFTimecodeRate::fps5994DF() {
    return {AAFRational(60000, 1001), 60, true};
}

AAFTimecodeAddress::AAFTimecodeAddress(std::int64_t hoursOfDay, std::int64_t minutesOfHour,
                                       std::int64_t secondsOfMinute, std::int64_t framesOfSecond,
                                       const AAFTimecodeRate& timecodeRate)
    : hours(hoursOfDay),
      minutes(minutesOfHour),
      seconds(secondsOfMinute),
      frames(framesOfSecond),
      rate(timecodeRate) {
    precondition(hours >= 0 && hours < 24, "AAFTimecodeAddress hours out of range");
    precondition(minutes >= 0 && minutes < 60, "AAFTimecodeAddress minutes out of range");
    precondition(seconds >= 0 && seconds < 60, "AAFTimecodeAddress seconds out of range");
    precondition(frames >= 0 && frames < rate.nominalFramesPerSecond,
                 "AAFTimecodeAddress frames out of range");
    precondition(!isSkipped(), "AAFTimecodeAddress label is skipped by drop-frame counting");
}

AAFTimecodeAddress AAFTimecodeAddress::fromAbsoluteFrameNumber(std::int64_t frameNumber,
                                                               const AAFTimecodeRate& rate) {
    const std::int64_t nominal = rate.nominalFramesPerSecond;
    precondition(frameNumber >= 0, "AAFTimecodeAddress frame number must not be negative");
    precondition(nominal >= 1, "AAFTimecodeRate needs at least one frame per second");
    precondition(nominal <= largest / secondsPerDay, overflowMessage);
    const std::int64_t label = labelNumber(frameNumber, nominal, rate.droppedFramesPerMinute());
    const std::int64_t totalSeconds = label / nominal;
    AAFTimecodeAddress address;
    address.hours = totalSeconds / 3600 % 24;
    address.minutes = totalSeconds / 60 % 60;
    address.seconds = totalSeconds % 60;
    address.frames = label - totalSeconds * nominal;
    address.rate = rate;
    return address;
}

std::string AAFTimecodeAddress::description() const {
    // Four numbers of 64 bits and what parts them.
    std::array<char, 96> text{};
    char* end = text.data();
    const auto add = [&text, &end](std::int64_t number, char separator) {
        if (number >= 0 && number < 10) {
            *end++ = '0';
        }
        end = std::to_chars(end, text.data() + text.size(), number).ptr;
        *end++ = separator;
    };
    add(hours, ':');
    add(minutes, ':');
    add(seconds, rate.dropFrame ? ';' : ':');
    add(frames, '\0');
    return {text.data(), end - 1};
}

std::int64_t AAFTimecodeAddress::absoluteFrameNumber() const {
    const std::int64_t totalSeconds = sum(sum(product(hours, 3600), product(minutes, 60)), seconds);
    const std::int64_t count = sum(product(totalSeconds, rate.nominalFramesPerSecond), frames);
    if (!rate.dropFrame) {
        return count;
    }
    const std::int64_t totalMinutes = sum(product(hours, 60), minutes);
    const std::int64_t droppingMinutes = difference(totalMinutes, totalMinutes / 10);
    return difference(count, product(droppingMinutes, rate.droppedFramesPerMinute()));
}

AAFTimecodeAddress AAFTimecodeAddress::startOfCurrentTimecodeMinute() const {
    AAFTimecodeAddress start = *this;
    start.seconds = 0;
    start.frames = minutes % 10 == 0 ? 0 : rate.droppedFramesPerMinute();
    return start;
}

bool AAFTimecodeAddress::isAtStartOfTimecodeMinute() const {
    return *this == startOfCurrentTimecodeMinute();
}

bool AAFTimecodeAddress::isSkipped() const noexcept {
    return seconds == 0 && minutes % 10 != 0 && frames < rate.droppedFramesPerMinute();
}

AAFTimecodeAddress AAFProgramClock::address(const AAFRational& time) const {
    const std::int64_t frames = (time * timecodeRate.exactRate).roundedInt64();
    std::int64_t target = 0;
    if (__builtin_add_overflow(timelineZero.absoluteFrameNumber(), frames, &target)) {
        target = frames < 0 ? 0 : largest;
    }
    if (target < 0) {
        target = 0;
    }
    return AAFTimecodeAddress::fromAbsoluteFrameNumber(target, timecodeRate);
}

AAFTimecodeAddress AAFProgramClock::bounceStart(
    const AAFRational& firstAudibleEvent,
    const std::optional<AAFTimecodeAddress>& explicitProgramStart) const {
    const AAFTimecodeAddress first = address(firstAudibleEvent);
    if (explicitProgramStart &&
        first.absoluteFrameNumber() >= explicitProgramStart->absoluteFrameNumber()) {
        return *explicitProgramStart;
    }
    return first.startOfCurrentTimecodeMinute();
}

}  // namespace trellant
