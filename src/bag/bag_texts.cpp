// SPDX-License-Identifier: Apache-2.0
#include "bag_texts.h"

#include <trellant/version.h>
#include <trellant/xml/xml_text.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <ctime>

namespace trellant::bag {

namespace {

void addLine(std::string& text, std::string_view label, std::string_view value) {
    // In one line and UTF-8, as XML has it too.
    text.append(label).append(": ").append(xml::xmlText(value)).append("\n");
}

}  // namespace

std::string escapedPath(std::string_view path) {
    std::string text;
    for (const char byte : path) {
        switch (byte) {
            case '%':
                text += "%25";
                break;
            case '\r':
                text += "%0D";
                break;
            case '\n':
                text += "%0A";
                break;
            default:
                text += byte;
        }
    }
    return text;
}

std::string manifestText(const Digests& digests) {
    std::string text;
    for (const auto& [path, digest] : digests) {
        text.append(digest).append("  ").append(escapedPath(path)).append("\n");
    }
    return text;
}

std::string infoText(const BagInfo& info) {
    constexpr std::size_t dateLength = 10;
    std::string text;
    if (info.organization && !info.organization->empty()) {
        addLine(text, "Source-Organization", *info.organization);
    }
    if (!info.identifier.empty()) {
        addLine(text, "External-Identifier", info.identifier);
    }
    addLine(text, "Bagging-Date", dateTimeText(info.date).substr(0, dateLength));
    addLine(text, "Payload-Oxum",
            std::to_string(info.payloadBytes) + "." + std::to_string(info.payloadFiles));
    addLine(text, "Bag-Software-Agent", "trellant " + std::string(versionText));
    return text;
}

std::string dateTimeText(std::int64_t seconds) {
    // 0000-01-01 00:00:00 and 9999-12-31 23:59:59.
    constexpr std::int64_t first = -62'167'219'200;
    constexpr std::int64_t last = 253'402'300'799;
    const auto time = static_cast<std::time_t>(std::clamp(seconds, first, last));
    struct tm date {};
    ::gmtime_r(&time, &date);
    std::array<char, 64> text{};
    static_cast<void>(std::snprintf(text.data(), text.size(), "%04d-%02d-%02dT%02d:%02d:%02dZ",
                                    date.tm_year + 1900, date.tm_mon + 1, date.tm_mday,
                                    date.tm_hour, date.tm_min, date.tm_sec));
    return text.data();
}

}  // namespace trellant::bag
