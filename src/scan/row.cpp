// SPDX-License-Identifier: Apache-2.0
#include <trellant/json/json_decode.h>
#include <trellant/json/json_encode.h>
#include <trellant/scan/row.h>

#include <tuple>

namespace trellant {

template <>
struct RecordFields<scan::ScanRow::Pronom> {
    using R = scan::ScanRow::Pronom;
    static constexpr auto fields = std::tuple{field("id", &R::id), field("basis", &R::basis)};
};

template <>
struct RecordFields<scan::ScanRow::Application> {
    using R = scan::ScanRow::Application;
    static constexpr auto fields =
        std::tuple{field("company", &R::company), field("product", &R::product),
                   field("version", &R::version)};
};

template <>
struct RecordFields<scan::ScanRow::Composition> {
    using R = scan::ScanRow::Composition;
    static constexpr auto fields = std::tuple{field("object", &R::object), field("name", &R::name),
                                              field("mobID", &R::mobID), field("read", &R::read)};
};

template <>
struct RecordFields<scan::ScanRow::Source> {
    using R = scan::ScanRow::Source;
    static constexpr auto fields = std::tuple{field("id", &R::id),
                                              field("name", &R::name),
                                              field("mobID", &R::mobID),
                                              field("state", &R::state),
                                              field("clips", &R::clips),
                                              field("sampleRate", &R::sampleRate),
                                              field("sampleRateExact", &R::sampleRateExact),
                                              field("codec", &R::codec),
                                              field("bitDepth", &R::bitDepth),
                                              field("channels", &R::channels),
                                              field("frames", &R::frames),
                                              field("sampleDigest", &R::sampleDigest),
                                              field("sampleBytes", &R::sampleBytes),
                                              field("recordedPath", &R::recordedPath),
                                              field("path", &R::path)};
};

template <>
struct RecordFields<scan::ScanRow::Loss> {
    using R = scan::ScanRow::Loss;
    static constexpr auto fields =
        std::tuple{field("kind", &R::kind), field("effect", &R::effect), field("count", &R::count),
                   field("sentence", &R::sentence)};
};

template <>
struct RecordFields<scan::ScanRow::Finding> {
    using R = scan::ScanRow::Finding;
    static constexpr auto fields =
        std::tuple{field("rule", &R::rule), field("severity", &R::severity),
                   field("count", &R::count), field("sentence", &R::sentence)};
};

template <>
struct RecordFields<scan::ScanRow::Verdict> {
    using R = scan::ScanRow::Verdict;
    static constexpr auto fields =
        std::tuple{field("profile", &R::profile),   field("errors", &R::errors),
                   field("warnings", &R::warnings), field("infos", &R::infos),
                   field("accepted", &R::accepted), field("findings", &R::findings)};
};

template <>
struct RecordFields<scan::ScanRow> {
    using R = scan::ScanRow;
    static constexpr auto fields = std::tuple{field("row", &R::row),
                                              field("path", &R::path),
                                              field("size", &R::size),
                                              field("modified", &R::modified),
                                              field("program", &R::program),
                                              field("status", &R::status),
                                              field("message", &R::message),
                                              field("pronom", &R::pronom),
                                              field("sha256", &R::sha256),
                                              field("containerVersion", &R::containerVersion),
                                              field("omfVersion", &R::omfVersion),
                                              field("byteOrder", &R::byteOrder),
                                              field("applications", &R::applications),
                                              field("compositions", &R::compositions),
                                              field("start", &R::start),
                                              field("timecodeRate", &R::timecodeRate),
                                              field("editRate", &R::editRate),
                                              field("lengthSeconds", &R::lengthSeconds),
                                              field("lengthSecondsExact", &R::lengthSecondsExact),
                                              field("tracks", &R::tracks),
                                              field("clips", &R::clips),
                                              field("sources", &R::sources),
                                              field("sourcesLeftOut", &R::sourcesLeftOut),
                                              field("clipNames", &R::clipNames),
                                              field("unusedMedia", &R::unusedMedia),
                                              field("unusedBytes", &R::unusedBytes),
                                              field("losses", &R::losses),
                                              field("changes", &R::changes),
                                              field("check", &R::check),
                                              field("scanned", &R::scanned),
                                              field("seconds", &R::seconds),
                                              field("peakMemory", &R::peakMemory)};
};

template <>
struct RecordFields<scan::ScanRowKey> {
    using R = scan::ScanRowKey;
    static constexpr auto fields = std::tuple{
        field("path", &R::path), field("size", &R::size), field("modified", &R::modified),
        field("program", &R::program), field("status", &R::status)};
};

namespace scan {

std::string rowLine(const ScanRow& row) {
    std::string line = declaredJson(row);
    if (line.size() >= longestRow) {
        ScanRow shorter = row;
        shorter.sourcesLeftOut =
            shorter.sourcesLeftOut.value_or(0) + static_cast<std::int64_t>(row.sources.size());
        shorter.sources.clear();
        shorter.clipNames.clear();
        line = declaredJson(shorter);
    }
    return line + "\n";
}

ScanRow decodeRow(std::string_view line) {
    return decodeJson<ScanRow>(line);
}

ScanRowKey decodeRowKey(std::string_view line) {
    return decodeJson<ScanRowKey>(line);
}

}  // namespace scan

}  // namespace trellant
