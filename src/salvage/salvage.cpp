// SPDX-License-Identifier: Apache-2.0
#include <trellant/io/random_access_file.h>
#include <trellant/omf/audio_probe.h>
#include <trellant/salvage/found_table.h>
#include <trellant/salvage/salvage.h>

#include <algorithm>
#include <cstdio>
#include <optional>
#include <string_view>

namespace trellant::salvage {

namespace {

/// Files are dearer than bytes: a file of nothing but tiny sounds would cost hours.
constexpr std::uint64_t soundsOfAnyFile = 10'000;
constexpr std::uint64_t bytesForOneMore = 65'536;
/// Of a copy, read back for what its header says.
constexpr std::size_t headerBytes = 65'536;

std::int64_t number(std::uint64_t value) {
    return static_cast<std::int64_t>(value);
}

std::string_view extensionOf(SoundKind kind) {
    switch (kind) {
        case SoundKind::aiff:
            return ".aiff";
        case SoundKind::aifc:
            return ".aifc";
        case SoundKind::wave:
        case SoundKind::rf64:
            return ".wav";
    }
    return {};
}

std::string nameOf(std::size_t count, const FoundSound& sound) {
    std::string digits = std::to_string(count);
    constexpr std::size_t fewestDigits = 3;
    digits.insert(0, fewestDigits - std::min(fewestDigits, digits.size()), '0');
    return "Sound " + digits + (sound.isWhole ? "" : " incomplete") +
           std::string(extensionOf(sound.kind));
}

std::string_view placeWord(TablePlace place) {
    switch (place) {
        case TablePlace::label:
            return "label";
        case TablePlace::earlierLabel:
            return "earlierLabel";
        case TablePlace::beforeLabel:
            return "beforeLabel";
        case TablePlace::byItsLook:
            return "byItsLook";
    }
    return {};
}

SalvageReport::Table described(const FoundTable& table) {
    SalvageReport::Table said{.place = std::string(placeWord(table.place())),
                              .offset = number(table.offset()),
                              .sensibleBytes = number(table.sensibleBytes()),
                              .entries = number(table.entries()),
                              .whole = table.isWhole()};
    if (table.claimedBytes() != 0) {
        said.claimedBytes = number(table.claimedBytes());
    }
    return said;
}

/// What the header of the copy says of its samples.
void describeFormat(const std::string& copy, SalvageReport::Sound& said) {
    const RandomAccessFile file(copy);
    Bytes header(std::min<std::uint64_t>(file.size(), headerBytes));
    header.resize(file.readAvailable(0, header));
    const auto format = AudioProbe::probe(header);
    if (!format) {
        return;
    }
    if (format->sampleRate) {
        said.sampleRate = format->sampleRate->numerator();
    }
    said.channels = format->channels;
    said.bitDepth = format->bitDepth;
    said.codec = format->codec;
    if (const auto frames = AudioProbe::frames(header, file.size())) {
        said.frames = number(*frames);
    }
}

std::string_view whatIsCertain(const FoundSound& sound) {
    if (sound.origin == SoundOrigin::table) {
        return "The table of contents of the file names exactly these bytes.";
    }
    if (sound.isWhole) {
        return "The sound's own header says how long it is, and all of that is there.";
    }
    return "The sound's own header says where it begins and what its samples are like; the copy's "
           "header says how long the copy is.";
}

SalvageReport::Sound described(const FoundSound& sound, std::string name, const std::string& copy) {
    SalvageReport::Sound said{.name = std::move(name),
                              .state = sound.isWhole ? "whole" : "incomplete",
                              .from = sound.origin == SoundOrigin::table ? "table" : "header",
                              .offset = number(sound.ranges.front().offset),
                              .bytes = number(sound.bytes())};
    if (sound.ranges.size() > 1) {
        for (const BentoRange& range : sound.ranges) {
            said.pieces.push_back({number(range.offset), number(range.length)});
        }
    }
    if (sound.claimedBytes != 0) {
        said.claimedBytes = number(sound.claimedBytes);
    }
    describeFormat(copy, said);
    std::vector<Doubt> doubts = sound.doubts;
    const bool isSaid =
        std::find(doubts.begin(), doubts.end(), Doubt::formatMissing) != doubts.end();
    if (!isSaid && !said.sampleRate) {
        doubts.push_back(Doubt::formatMissing);
    }
    for (const Doubt doubt : doubts) {
        said.doubts.emplace_back(doubtWord(doubt));
        said.uncertain.emplace_back(doubtSentence(doubt));
    }
    said.certain.emplace_back(whatIsCertain(sound));
    return said;
}

}  // namespace

SalvageReport salvageSounds(const std::string& path, const std::string& directory,
                            const SoundSearch::Progress& progress) {
    const RandomAccessFile file(path);
    const std::optional<FoundTable> table = FoundTable::in(file);
    SalvageReport report;
    report.bytes = number(file.size());
    if (table) {
        report.table = described(*table);
    }
    const std::uint64_t mostSounds = soundsOfAnyFile + file.size() / bytesForOneMore;
    SoundSearch search(file, table ? &*table : nullptr, progress);
    while (report.sounds.size() < mostSounds) {
        const auto sound = search.next();
        if (!sound) {
            report.searchedBytes = report.bytes;
            return report;
        }
        std::string name = nameOf(report.sounds.size() + 1, *sound);
        const std::string copy = directory + "/" + name;
        file.copy(sound->copied(), copy);
        report.sounds.push_back(described(*sound, std::move(name), copy));
        if (progress) {
            progress(search.position());
        }
    }
    report.searchedBytes = number(search.position());
    return report;
}

}  // namespace trellant::salvage
