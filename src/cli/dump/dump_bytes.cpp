// SPDX-License-Identifier: Apache-2.0
#include "dump_bytes.h"

#include "terminal/shown_text.h"

#include <trellant/base/text.h>
#include <trellant/omf/values.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <string_view>

namespace trellant::cli {

namespace {

std::string asciiText(ByteView bytes) {
    std::string text;
    for (const std::byte byte : bytes) {
        const auto code = std::to_integer<unsigned char>(byte);
        text += code >= 0x20 && code < 0x7F ? static_cast<char>(code) : '.';
    }
    return "|" + text + "|";
}

std::optional<std::string> numberText(ByteView bytes, OMFByteOrder order, bool isSigned) {
    switch (bytes.size()) {
        case 1: {
            const auto value = std::to_integer<std::uint8_t>(bytes[0]);
            return isSigned ? std::to_string(static_cast<std::int8_t>(value))
                            : std::to_string(value);
        }
        case 2: {
            const std::uint16_t value = u16(bytes, 0, order);
            return isSigned ? std::to_string(static_cast<std::int16_t>(value))
                            : std::to_string(value);
        }
        case 4:
            return isSigned ? std::to_string(i32(bytes, 0, order))
                            : std::to_string(u32(bytes, 0, order));
        case 8:
            return isSigned ? std::to_string(i64(bytes, 0, order))
                            : std::to_string(u64(bytes, 0, order));
        default:
            return std::nullopt;
    }
}

std::optional<std::string> booleanText(ByteView bytes) {
    if (bytes.empty() || bytes.size() > 4) {
        return std::nullopt;
    }
    const auto isZero = [](std::byte byte) { return byte == std::byte{0}; };
    return std::all_of(bytes.begin(), bytes.end(), isZero) ? "false" : "true";
}

std::optional<std::string> classText(ByteView bytes) {
    if (bytes.empty() || bytes.size() > hexRowBytes) {
        return std::nullopt;
    }
    return shownText(asciiCString(bytes));
}

std::optional<std::string> rationalText(ByteView bytes, OMFByteOrder order) {
    if (bytes.size() != 8) {
        return std::nullopt;
    }
    return std::to_string(i32(bytes, 0, order)) + "/" + std::to_string(i32(bytes, 4, order));
}

std::optional<std::string> uidText(ByteView bytes, OMFByteOrder order) {
    if (bytes.size() != 12) {
        return std::nullopt;
    }
    return OMFUID{u32(bytes, 0, order), u32(bytes, 4, order), u32(bytes, 8, order)}.description();
}

std::optional<std::string> versionText(ByteView bytes) {
    if (bytes.size() != 2) {
        return std::nullopt;
    }
    return std::to_string(std::to_integer<unsigned>(bytes[0])) + "." +
           std::to_string(std::to_integer<unsigned>(bytes[1]));
}

std::optional<std::string> timestampText(ByteView bytes, OMFByteOrder order) {
    if (bytes.size() != 4 && bytes.size() != 5) {
        return std::nullopt;
    }
    using namespace std::chrono;
    const sys_seconds time{seconds{u32(bytes, 0, order)}};
    const auto day = floor<days>(time);
    const year_month_day date{day};
    const hh_mm_ss clock{time - day};
    std::array<char, 40> text{};
    static_cast<void>(std::snprintf(
        text.data(), text.size(), "%04d-%02u-%02u %02d:%02d:%02d", static_cast<int>(date.year()),
        static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
        static_cast<int>(clock.hours().count()), static_cast<int>(clock.minutes().count()),
        static_cast<int>(clock.seconds().count())));
    std::string result = text.data();
    if (bytes.size() > 4) {
        result += bytes[4] == std::byte{0} ? " local time" : " world time";
    }
    return result + " (" + std::to_string(u32(bytes, 0, order)) + ")";
}

std::optional<std::string> byteOrderText(ByteView bytes) {
    const std::string mark = asciiCString(bytes);
    if (mark == "II") {
        return "II, little-endian";
    }
    return mark == "MM" ? std::optional<std::string>("MM, big-endian") : std::nullopt;
}

std::optional<std::string> trackKindText(ByteView bytes, OMFByteOrder order) {
    constexpr std::array<std::string_view, 4> names{"none", "picture", "sound", "timecode"};
    const auto number = bytes.size() == 2 ? numberText(bytes, order, false) : std::nullopt;
    if (!number) {
        return std::nullopt;
    }
    const std::uint16_t kind = u16(bytes, 0, order);
    return kind < names.size() ? *number + ", " + std::string(names.at(kind)) : *number;
}

std::optional<std::string> numbersText(ByteView bytes, OMFByteOrder order) {
    if (bytes.empty() || bytes.size() % 4 != 0) {
        return std::nullopt;
    }
    std::string text;
    for (std::size_t place = 0; place < bytes.size(); place += 4) {
        text += text.empty() ? "" : " ";
        text += std::to_string(i32(bytes, static_cast<std::int64_t>(place), order));
    }
    return text;
}

}  // namespace

std::string hexText(ByteView bytes) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string text;
    for (const std::byte byte : bytes) {
        const auto code = std::to_integer<unsigned>(byte);
        text += text.empty() ? "" : " ";
        text += digits[code >> 4U];
        text += digits[code & 15U];
    }
    return text;
}

std::string hexAndText(ByteView bytes) {
    return hexText(bytes) + "  " + asciiText(bytes);
}

std::vector<std::string> hexListing(ByteView bytes) {
    std::vector<std::string> rows;
    for (std::size_t place = 0; place < bytes.size(); place += hexRowBytes) {
        const ByteView row = bytes.subspan(place, std::min(hexRowBytes, bytes.size() - place));
        std::array<char, 24> offset{};
        static_cast<void>(std::snprintf(offset.data(), offset.size(), "%08zX  ", place));
        std::string hex = hexText(row);
        hex.resize(hexRowBytes * 3 - 1, ' ');
        rows.push_back(offset.data() + hex + "  " + asciiText(row));
    }
    return rows;
}

std::optional<std::string> plainText(ValueKind kind, ByteView bytes, OMFByteOrder order) {
    switch (kind) {
        case ValueKind::signedNumber:
            return numberText(bytes, order, true);
        case ValueKind::unsignedNumber:
            return numberText(bytes, order, false);
        case ValueKind::boolean:
            return booleanText(bytes);
        case ValueKind::classID:
            return classText(bytes);
        case ValueKind::byteOrder:
            return byteOrderText(bytes);
        case ValueKind::rational:
        case ValueKind::perhapsRational:
            return rationalText(bytes, order);
        case ValueKind::uid:
            return uidText(bytes, order);
        case ValueKind::timestamp:
            return timestampText(bytes, order);
        case ValueKind::version:
            return versionText(bytes);
        case ValueKind::numbers:
            return numbersText(bytes, order);
        case ValueKind::trackKind:
            return trackKindText(bytes, order);
        case ValueKind::text:
        case ValueKind::reference:
        case ValueKind::references:
        case ValueKind::mobIndex:
        case ValueKind::bytes:
            break;
    }
    return std::nullopt;
}

std::string storedText(ByteView bytes, OMFByteOrder order) {
    // UTF-16 where odd bytes are zero, else up to the first zero byte.
    int zeros = 0;
    for (std::size_t place = 1; place < std::min<std::size_t>(bytes.size(), 64); place += 2) {
        zeros += bytes[place] == std::byte{0} ? 1 : 0;
    }
    if (bytes.size() >= 4 && zeros >= 2) {
        if (const auto text = fromUTF16(bytes, order)) {
            return shownText(trimmedOfControls(*text));
        }
    }
    return shownText(asciiCString(bytes));
}

}  // namespace trellant::cli
