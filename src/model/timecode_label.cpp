// SPDX-License-Identifier: Apache-2.0
#include <trellant/model/timecode_label.h>

#include <array>
#include <cstddef>

namespace trellant {

namespace {

using Parts = std::array<std::int64_t, 4>;

std::optional<Parts> partsOf(std::string_view text) noexcept {
    constexpr std::string_view form = "00:00:00:00";
    if (text.size() != form.size()) {
        return std::nullopt;
    }
    Parts parts{};
    for (std::size_t i = 0; i < form.size(); ++i) {
        if (form[i] == ':') {
            const bool isFrameMark = i == 8 && text[i] == ';';
            if (text[i] != ':' && !isFrameMark) {
                return std::nullopt;
            }
        } else if (text[i] < '0' || text[i] > '9') {
            return std::nullopt;
        } else {
            parts[i / 3] = parts[i / 3] * 10 + (text[i] - '0');
        }
    }
    const bool isInRange = parts[0] < 24 && parts[1] < 60 && parts[2] < 60;
    return isInRange ? std::optional(parts) : std::nullopt;
}

}  // namespace

bool isTimecodeText(std::string_view text) noexcept {
    return partsOf(text).has_value();
}

std::optional<std::int64_t> frameOfLabel(std::string_view text, const AAFTimecodeRate& rate) {
    const auto parts = partsOf(text);
    if (!parts || (*parts)[3] >= rate.nominalFramesPerSecond) {
        return std::nullopt;
    }
    AAFTimecodeAddress label;
    label.hours = (*parts)[0];
    label.minutes = (*parts)[1];
    label.seconds = (*parts)[2];
    label.frames = (*parts)[3];
    label.rate = rate;
    return label.isSkipped() ? std::nullopt : std::optional(label.absoluteFrameNumber());
}

}  // namespace trellant
