// SPDX-License-Identifier: Apache-2.0
#include <trellant/aaf/values.h>

#include <algorithm>
#include <chrono>

namespace trellant::aaf {

TimeStamp timeStampOf(std::int64_t secondsSince1970) noexcept {
    using namespace std::chrono;
    constexpr sys_seconds first = sys_days{year{1} / January / 1};
    constexpr sys_seconds last = sys_days{year{10000} / January / 1} - seconds{1};
    const sys_seconds moment{seconds{std::clamp<std::int64_t>(
        secondsSince1970, first.time_since_epoch().count(), last.time_since_epoch().count())}};
    const sys_days midnight = floor<days>(moment);
    const year_month_day date{midnight};
    const hh_mm_ss time{moment - midnight};
    return {.year = static_cast<std::int16_t>(static_cast<int>(date.year())),
            .month = static_cast<std::uint8_t>(static_cast<unsigned>(date.month())),
            .day = static_cast<std::uint8_t>(static_cast<unsigned>(date.day())),
            .hour = static_cast<std::uint8_t>(time.hours().count()),
            .minute = static_cast<std::uint8_t>(time.minutes().count()),
            .second = static_cast<std::uint8_t>(time.seconds().count())};
}

}  // namespace trellant::aaf
