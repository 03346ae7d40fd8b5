// SPDX-License-Identifier: Apache-2.0
#include <trellant/json/json_decode.h>
#include <trellant/json/json_encode.h>
#include <trellant/salvage/salvage_report.h>

#include <algorithm>

namespace trellant {

using salvage::SalvageReport;

template <>
struct RecordFields<SalvageReport::Range> {
    using R = SalvageReport::Range;
    static constexpr auto fields =
        std::tuple{field("offset", &R::offset), field("bytes", &R::bytes)};
};

template <>
struct RecordFields<SalvageReport::Table> {
    using R = SalvageReport::Table;
    static constexpr auto fields = std::tuple{field("place", &R::place),
                                              field("offset", &R::offset),
                                              field("claimedBytes", &R::claimedBytes),
                                              field("sensibleBytes", &R::sensibleBytes),
                                              field("entries", &R::entries),
                                              field("whole", &R::whole)};
};

template <>
struct RecordFields<SalvageReport::Sound> {
    using R = SalvageReport::Sound;
    static constexpr auto fields = std::tuple{field("name", &R::name),
                                              field("state", &R::state),
                                              field("from", &R::from),
                                              field("offset", &R::offset),
                                              field("bytes", &R::bytes),
                                              field("pieces", &R::pieces),
                                              field("claimedBytes", &R::claimedBytes),
                                              field("sampleRate", &R::sampleRate),
                                              field("channels", &R::channels),
                                              field("bitDepth", &R::bitDepth),
                                              field("codec", &R::codec),
                                              field("frames", &R::frames),
                                              field("doubts", &R::doubts),
                                              field("certain", &R::certain),
                                              field("uncertain", &R::uncertain)};
};

template <>
struct RecordFields<SalvageReport> {
    using R = SalvageReport;
    static constexpr auto fields =
        std::tuple{field("file", &R::file),     field("record", &R::record),
                   field("bytes", &R::bytes),   field("table", &R::table),
                   field("sounds", &R::sounds), field("searchedBytes", &R::searchedBytes)};
};

}  // namespace trellant

namespace trellant::salvage {

std::size_t SalvageReport::incompleteCount() const noexcept {
    return static_cast<std::size_t>(std::count_if(
        sounds.begin(), sounds.end(), [](const Sound& sound) { return sound.state != "whole"; }));
}

std::string encodeSalvage(const SalvageReport& report) {
    return declaredJson(report);
}

SalvageReport decodeSalvage(std::string_view json) {
    return decodeJson<SalvageReport>(json);
}

}  // namespace trellant::salvage
