// SPDX-License-Identifier: Apache-2.0
#include <trellant/audio/broadcast_chunks.h>
#include <trellant/base/precondition.h>
#include <trellant/base/text.h>
#include <trellant/base/utf8.h>
#include <trellant/xml/xml_text.h>
#include <trellant/xml/xml_tree.h>

#include <algorithm>
#include <chrono>
#include <limits>
#include <span>

namespace trellant::audio {

namespace {

constexpr std::size_t descriptionBytes = 256;
constexpr std::size_t originatorBytes = 32;
constexpr std::size_t dateBytes = 10;
constexpr std::size_t timeBytes = 8;
constexpr std::uint16_t broadcastVersion = 1;
constexpr std::size_t mostHistoryBytes = 65'536;
constexpr std::size_t mostTextBytes = 4'096;

template <class Unsigned>
void appendNumber(Bytes& bytes, Unsigned number) {
    for (std::size_t i = 0; i < sizeof number; ++i) {
        bytes.push_back(static_cast<std::byte>((std::uint64_t{number} >> (8 * i)) & 0xFFU));
    }
}

void appendText(Bytes& bytes, std::string_view text) {
    const auto view = std::as_bytes(std::span(text));
    bytes.insert(bytes.end(), view.begin(), view.end());
}

/// Every character that is not ASCII as "?", at most `most` characters.
std::string asciiText(std::string_view text, std::size_t most) {
    std::string ascii;
    for (std::size_t at = 0; at < text.size() && ascii.size() < most;) {
        const UTF8Step step = utf8Step(text, at);
        ascii += step.scalar < 0x80 ? static_cast<char>(step.scalar) : '?';
        at += step.length;
    }
    return ascii;
}

void appendField(Bytes& bytes, std::string_view text, std::size_t width) {
    const std::string written = asciiText(text, width);
    appendText(bytes, written);
    bytes.resize(bytes.size() + width - written.size());
}

/// `text` with its lines and no other control characters.
std::string historyText(std::string_view text) {
    std::string lines = asciiText(text, mostHistoryBytes);
    const auto isOther = [](char letter) {
        const bool endsLine = letter == '\r' || letter == '\n';
        return !endsLine && (letter < ' ' || letter == '\x7F');
    };
    std::replace_if(lines.begin(), lines.end(), isOther, ' ');
    return lines;
}

std::string digits(std::int64_t number, std::size_t width) {
    const std::string text = std::to_string(number);
    return std::string(width - std::min(width, text.size()), '0') + text;
}

struct DateAndTime {
    std::string date{};
    std::string time{};
};

DateAndTime dateAndTime(const std::optional<std::int64_t>& secondsSince1970) {
    using namespace std::chrono;
    constexpr sys_seconds first = sys_days{year{1} / January / 1};
    constexpr sys_seconds end = sys_days{year{10'000} / January / 1};
    const sys_seconds moment{seconds{secondsSince1970.value_or(0)}};
    if (!secondsSince1970 || moment < first || moment >= end) {
        return {};
    }
    const sys_days midnight = floor<days>(moment);
    const year_month_day date{midnight};
    const hh_mm_ss time{moment - midnight};
    return {.date = digits(static_cast<int>(date.year()), 4) + '-' +
                    digits(static_cast<unsigned>(date.month()), 2) + '-' +
                    digits(static_cast<unsigned>(date.day()), 2),
            .time = digits(time.hours().count(), 2) + ':' + digits(time.minutes().count(), 2) +
                    ':' + digits(time.seconds().count(), 2)};
}

void addText(const xml::XmlElement& parent, const char* name, std::string_view text) {
    parent.add(name).setText(xml::xmlText(
        prefixOfClusters(text, std::numeric_limits<std::size_t>::max(), mostTextBytes)));
}

void addOptional(const xml::XmlElement& parent, const char* name,
                 const std::optional<std::string>& text) {
    if (text) {
        addText(parent, name, *text);
    }
}

/// "30000/1001", "25/1".
std::string rateFraction(const AAFRational& rate) {
    return std::to_string(rate.numerator()) + '/' + std::to_string(rate.denominator());
}

void addSpeed(const xml::XmlElement& root, const ProductionValues& values) {
    const xml::XmlElement speed = root.add("SPEED");
    const std::string sampleRate = std::to_string(values.sampleRate);
    if (values.timecode) {
        const std::string rate = rateFraction(values.timecode->rate);
        addText(speed, "MASTER_SPEED", rate);
        addText(speed, "CURRENT_SPEED", rate);
        addText(speed, "TIMECODE_RATE", rate);
        addText(speed, "TIMECODE_FLAG", values.timecode->dropFrame ? "DF" : "NDF");
    }
    addText(speed, "FILE_SAMPLE_RATE", sampleRate);
    if (values.bitDepth) {
        addText(speed, "AUDIO_BIT_DEPTH", std::to_string(*values.bitDepth));
    }
    addText(speed, "DIGITIZER_SAMPLE_RATE", sampleRate);
    if (values.timeReference) {
        constexpr unsigned lowBits = 32;
        addText(speed, "TIMESTAMP_SAMPLES_SINCE_MIDNIGHT_HI",
                std::to_string(*values.timeReference >> lowBits));
        addText(speed, "TIMESTAMP_SAMPLES_SINCE_MIDNIGHT_LO",
                std::to_string(*values.timeReference & 0xFFFF'FFFFU));
        addText(speed, "TIMESTAMP_SAMPLE_RATE", sampleRate);
    }
}

void addTracks(const xml::XmlElement& root, const std::vector<std::string>& names) {
    if (names.empty()) {
        return;
    }
    const xml::XmlElement list = root.add("TRACK_LIST");
    addText(list, "TRACK_COUNT", std::to_string(names.size()));
    for (std::size_t i = 0; i < names.size(); ++i) {
        const std::string number = std::to_string(i + 1);
        const xml::XmlElement track = list.add("TRACK");
        addText(track, "CHANNEL_INDEX", number);
        addText(track, "INTERLEAVE_INDEX", number);
        if (!names[i].empty()) {
            addText(track, "NAME", names[i]);
        }
    }
}

}  // namespace

Bytes broadcastChunk(const BroadcastValues& values) {
    Bytes bytes;
    appendField(bytes, plainLine(values.description), descriptionBytes);
    appendField(bytes, plainLine(values.originator), originatorBytes);
    appendField(bytes, plainLine(values.originatorReference), originatorBytes);
    const DateAndTime originated = dateAndTime(values.originated);
    appendField(bytes, originated.date, dateBytes);
    appendField(bytes, originated.time, timeBytes);
    appendNumber(bytes, values.timeReference);
    appendNumber(bytes, broadcastVersion);
    bytes.resize(broadcastHeadBytes);
    appendText(bytes, historyText(values.codingHistory));
    return bytes;
}

Bytes productionChunk(const ProductionValues& values) {
    const xml::XmlTree tree("BWFXML");
    const xml::XmlElement root = tree.root();
    addText(root, "IXML_VERSION", "1.61");
    addOptional(root, "PROJECT", values.project);
    addOptional(root, "SCENE", values.scene);
    addOptional(root, "TAKE", values.take);
    addOptional(root, "TAPE", values.tape);
    addOptional(root, "NOTE", values.note);
    addSpeed(root, values);
    addTracks(root, values.trackNames);
    Bytes bytes;
    tree.write([&bytes](ByteView piece) { bytes.insert(bytes.end(), piece.begin(), piece.end()); });
    return bytes;
}

Bytes riffChunk(std::string_view id, ByteView content) {
    constexpr std::size_t idBytes = 4;
    precondition(id.size() == idBytes, "riffChunk needs an id of four characters");
    precondition(content.size() <= std::numeric_limits<std::uint32_t>::max(),
                 "riffChunk content is too large");
    Bytes bytes;
    appendText(bytes, id);
    appendNumber(bytes, static_cast<std::uint32_t>(content.size()));
    bytes.insert(bytes.end(), content.begin(), content.end());
    bytes.resize(bytes.size() + content.size() % 2);
    return bytes;
}

}  // namespace trellant::audio
