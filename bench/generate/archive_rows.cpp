// SPDX-License-Identifier: Apache-2.0
// Writes the shard of an archive that is not there: rows of files with sources, names and losses in
// amounts as archives have them. The same number of rows is always the same bytes.
#include <trellant/base/write_all.h>
#include <trellant/scan/row.h>

#include <array>
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>
#include <string_view>
#include <unistd.h>

namespace trellant::bench {

namespace {

using scan::ScanRow;

constexpr std::uint64_t sourcesOfFile = 4;
/// Every so manieth source has the audio of another one.
constexpr std::uint64_t repeated = 8;
constexpr std::array<std::string_view, 12> words{"Kick",  "Snare", "Atmo", "Dialog",
                                                 "Foley", "Door",  "Rain", "Music",
                                                 "Voice", "Steps", "Wind", "Room"};
constexpr std::array<std::string_view, 5> programs{"Pro Tools", "Media Composer", "Fairlight",
                                                   "AudioVision", "Studio"};

/// A number that has nothing to do with `number` but is always the same (splitmix64).
std::uint64_t mixed(std::uint64_t number) {
    number += 0x9E3779B97F4A7C15U;
    number = (number ^ (number >> 30U)) * 0xBF58476D1CE4E5B9U;
    number = (number ^ (number >> 27U)) * 0x94D049BB133111EBU;
    return number ^ (number >> 31U);
}

std::string digestOf(std::uint64_t number) {
    constexpr std::string_view digits = "0123456789abcdef";
    std::string text;
    for (std::uint64_t part = 0; part < 4; ++part) {
        std::uint64_t bits = mixed(number * 4 + part);
        for (int digit = 0; digit < 16; ++digit, bits >>= 4U) {
            text += digits[bits & 0xFU];
        }
    }
    return text;
}

std::string nameOf(std::uint64_t number) {
    const std::uint64_t bits = mixed(number);
    return std::string(words.at(bits % words.size())) + " " +
           std::string(words.at((bits >> 8U) % words.size())) + " " +
           std::to_string((bits >> 16U) % 10'000);
}

ScanRow::Source sourceOf(std::uint64_t number) {
    const std::uint64_t audio = number % repeated == 0 ? mixed(number) % (number / 2 + 1) : number;
    const std::int64_t frames = static_cast<std::int64_t>(48'000 + mixed(audio) % 4'800'000);
    ScanRow::Source source{.id = "essence-" + std::to_string(number % sourcesOfFile),
                           .name = nameOf(audio),
                           .mobID = digestOf(audio).substr(0, 26),
                           .state = number % 20 == 0 ? "missing" : "embedded",
                           .clips = static_cast<std::int64_t>(1 + number % 7),
                           .sampleRate = number % 10 == 0 ? 44'100.0 : 48'000.0,
                           .sampleRateExact = number % 10 == 0 ? "44100" : "48000",
                           .codec = "PCM",
                           .bitDepth = number % 3 == 0 ? 24 : 16,
                           .channels = 1,
                           .frames = frames};
    if (source.state == "embedded") {
        source.sampleDigest = digestOf(audio);
        source.sampleBytes = frames * 2;
    } else {
        source.recordedPath = "/Volumes/Audio/" + source.name + ".wav";
    }
    return source;
}

ScanRow rowOf(std::uint64_t number) {
    ScanRow row{.path = "/archive/" + std::to_string(number / 10'000) + "/reel " +
                        std::to_string(number / 100 % 100) + "/mix " + std::to_string(number) +
                        ".omf",
                .size = static_cast<std::int64_t>(1'000'000 + mixed(number) % 100'000'000),
                .modified = "2004-05-06T07:08:09.000000000Z",
                .program = "0.2.0",
                .sha256 = digestOf(number % 50 == 0 ? ~(number / 2) : ~number),
                .scanned = "2026-11-23T00:00:00.000000000Z",
                .seconds = 0.004};
    if (number % 40 == 39) {
        row.status = scan::FileStatus::damaged;
        row.message = "Malformed OMF/Bento file: Bento footer signature not found";
        return row;
    }
    row.pronom = ScanRow::Pronom{.id = "fmt/1855", .basis = "read"};
    row.containerVersion = "1.0";
    row.omfVersion = "2.0";
    row.byteOrder = number % 2 == 0 ? "little" : "big";
    row.applications = {{.company = "Company",
                         .product = std::string(programs.at(number % programs.size())),
                         .version = "5.1"}};
    row.compositions = {
        {.object = 7, .name = "Song " + std::to_string(number), .mobID = "1-2-3", .read = true}};
    row.start = "01:00:00:00";
    row.timecodeRate = "25";
    row.editRate = "25";
    row.lengthSeconds = 180.5;
    row.lengthSecondsExact = "361/2";
    row.tracks = 8;
    row.clips = 64;
    for (std::uint64_t source = 0; source < sourcesOfFile; ++source) {
        row.sources.push_back(sourceOf(number * sourcesOfFile + source));
    }
    row.clipNames = {nameOf(~number), nameOf(~number + 1)};
    row.losses = {{.kind = "effect",
                   .effect = "soundsDifferent",
                   .count = 3,
                   .sentence = "An effect was left out."}};
    row.changes = 0;
    row.peakMemory = 1'900'000;
    return row;
}

int writeRows(std::uint64_t count) {
    constexpr std::size_t pieceBytes = 1'048'576;
    std::string piece;
    for (std::uint64_t number = 0; number < count; ++number) {
        piece += scan::rowLine(rowOf(number));
        if (piece.size() >= pieceBytes || number + 1 == count) {
            if (const int reason = writeAll(STDOUT_FILENO, piece); reason != 0) {
                static_cast<void>(std::fprintf(stderr, "bench_rows: %s\n", std::strerror(reason)));
                return 1;
            }
            piece.clear();
        }
    }
    return 0;
}

}  // namespace

}  // namespace trellant::bench

int main(int argc, char** argv) {
    std::uint64_t count = 0;
    const std::string_view text = argc == 2 ? argv[1] : "";
    const auto read = std::from_chars(text.data(), text.data() + text.size(), count);
    if (text.empty() || read.ec != std::errc() || read.ptr != text.data() + text.size()) {
        static_cast<void>(std::fputs("usage: bench_rows COUNT > SHARD.ndjson\n", stderr));
        return 1;
    }
    return trellant::bench::writeRows(count);
}
