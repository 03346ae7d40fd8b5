// SPDX-License-Identifier: Apache-2.0
// What a scan tells of one file: a row, which is one line of JSON in a shard. The schema
// schema/command/scan.schema.json describes it for others.
#pragma once

#include <trellant/json/named_enum.h>

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace [[gnu::visibility("default")]] trellant {
namespace scan {

enum class FileStatus {
    /// Read.
    ok,
    /// What is there makes no sense.
    damaged,
    /// Of the older object model, of a structure that is not known.
    omf1,
    /// Sound perhaps, but not read: beyond what is read here, or the system or the worker failed.
    refused,
    /// Reading took longer than it may.
    timeout,
    /// Reading took more memory than it may.
    memory
};

/// Texts are UTF-8. Seconds are seconds, rates are per second, sizes are bytes.
struct ScanRow {
    struct Pronom {
        std::string id{};
        /// "read" (the object model was), or "signature" (names of it stand near an end of the
        /// file).
        std::string basis{};
        bool operator==(const Pronom&) const = default;
    };
    struct Application {
        std::optional<std::string> company{};
        std::optional<std::string> product{};
        std::optional<std::string> version{};
        bool operator==(const Application&) const = default;
    };
    struct Composition {
        std::int64_t object = 0;
        std::optional<std::string> name{};
        std::optional<std::string> mobID{};
        bool read = false;
        bool operator==(const Composition&) const = default;
    };
    struct Source {
        std::string id{};
        std::string name{};
        std::optional<std::string> mobID{};
        /// As SourceState's words.
        std::string state{};
        std::int64_t clips = 0;
        double sampleRate = 0;
        /// "48000", "48000/1001".
        std::string sampleRateExact{};
        std::optional<std::string> codec{};
        std::optional<std::int64_t> bitDepth{};
        std::int64_t channels = 0;
        /// Samples of one channel.
        std::optional<std::int64_t> frames{};
        /// SHA-256 of the samples as a WAVE file has them, and how many bytes those are.
        std::optional<std::string> sampleDigest{};
        std::optional<std::int64_t> sampleBytes{};
        std::optional<std::string> recordedPath{};
        /// Where the audio file was found.
        std::optional<std::string> path{};
        bool operator==(const Source&) const = default;
    };
    struct Loss {
        std::string kind{};
        /// "dropped" or "soundsDifferent".
        std::string effect{};
        std::int64_t count = 0;
        /// What it means, in a sentence.
        std::string sentence{};
        bool operator==(const Loss&) const = default;
    };
    struct Finding {
        std::string rule{};
        std::string severity{};
        std::int64_t count = 0;
        /// The first of them.
        std::string sentence{};
        bool operator==(const Finding&) const = default;
    };
    struct Verdict {
        std::string profile{};
        std::int64_t errors = 0;
        std::int64_t warnings = 0;
        std::int64_t infos = 0;
        std::int64_t accepted = 0;
        /// Rules that found something that counts.
        std::vector<Finding> findings{};
        bool operator==(const Verdict&) const = default;
    };

    /// Of the row's own form.
    static constexpr std::int64_t currentForm = 1;

    std::int64_t row = currentForm;
    /// Absolute; bytes that are no UTF-8 as `\xNN`.
    std::string path{};
    std::int64_t size = 0;
    /// "2026-11-22T22:38:42.123456789Z"; empty for what is not there.
    std::string modified{};
    /// Version of the program that made the row.
    std::string program{};
    FileStatus status = FileStatus::ok;
    /// Why the file was not read.
    std::optional<std::string> message{};
    std::optional<Pronom> pronom{};
    /// SHA-256 of the file.
    std::optional<std::string> sha256{};
    std::optional<std::string> containerVersion{};
    std::optional<std::string> omfVersion{};
    /// "big" or "little".
    std::optional<std::string> byteOrder{};
    std::vector<Application> applications{};
    std::vector<Composition> compositions{};
    /// Of the composition that was read.
    std::optional<std::string> start{};
    /// Frames in a second of its timecode, and edit units.
    std::optional<std::string> timecodeRate{};
    std::optional<std::string> editRate{};
    std::optional<double> lengthSeconds{};
    std::optional<std::string> lengthSecondsExact{};
    std::optional<std::int64_t> tracks{};
    std::optional<std::int64_t> clips{};
    std::vector<Source> sources{};
    /// Sources beyond those that a row lists.
    std::optional<std::int64_t> sourcesLeftOut{};
    /// Names of clips that are no names of sources, each once, as far as a row lists them.
    std::vector<std::string> clipNames{};
    /// Audio inside the file that no source is.
    std::optional<std::int64_t> unusedMedia{};
    std::optional<std::int64_t> unusedBytes{};
    /// By kind and effect.
    std::vector<Loss> losses{};
    /// What had to be changed to make the timeline valid.
    std::optional<std::int64_t> changes{};
    std::optional<Verdict> check{};
    /// When it was read, as `modified`; how long that took, and the memory of the worker.
    std::string scanned{};
    double seconds = 0;
    std::optional<std::int64_t> peakMemory{};
    bool operator==(const ScanRow&) const = default;
};

/// What a later call needs to know of a row.
struct ScanRowKey {
    std::string path{};
    std::int64_t size = 0;
    std::string modified{};
    std::string program{};
    FileStatus status = FileStatus::ok;
};

/// Sources and names of clips that a row lists.
inline constexpr std::size_t mostRowSources = 20'000;
inline constexpr std::size_t mostRowClipNames = 1'000;
/// Bytes of a line with its line feed; what would be longer is told without sources and names.
inline constexpr std::size_t longestRow = 33'554'432;

/// One line with its line feed.
[[nodiscard]] std::string rowLine(const ScanRow& row);
/// A line without its line feed. Throws JsonDecodingError for what is no row.
[[nodiscard]] ScanRow decodeRow(std::string_view line);
/// The same, its head only: quicker.
[[nodiscard]] ScanRowKey decodeRowKey(std::string_view line);

}  // namespace scan

template <>
struct EnumNames<scan::FileStatus> {
    static constexpr std::array<std::string_view, 6> names{"ok",      "damaged", "omf1",
                                                           "refused", "timeout", "memory"};
};

}  // namespace trellant
