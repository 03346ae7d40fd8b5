// SPDX-License-Identifier: Apache-2.0
// The field tables of the messages.
#pragma once

#include <trellant/json/record_traits.h>
#include <trellant/model/record_fields.h>
#include <trellant/protocol/messages.h>

#include <tuple>

namespace trellant {

template <>
struct RecordFields<AAFWorkerExtensions::LossPlace> {
    using R = AAFWorkerExtensions::LossPlace;
    static constexpr auto fields = std::tuple{field("kind", &R::kind),
                                              field("trackID", &R::trackID),
                                              field("trackName", &R::trackName),
                                              field("trackIndex", &R::trackIndex),
                                              field("start", &R::start),
                                              field("duration", &R::duration),
                                              field("cut", &R::cut),
                                              field("clipObject", &R::clipObject),
                                              field("clipName", &R::clipName)};
};

template <>
struct RecordFields<AAFWorkerExtensions::LossPlaces> {
    using R = AAFWorkerExtensions::LossPlaces;
    static constexpr auto fields = std::tuple{field("places", &R::places)};
};

template <>
struct RecordFields<AAFWorkerExtensions::Composition> {
    using R = AAFWorkerExtensions::Composition;
    static constexpr auto fields =
        std::tuple{field("object", &R::object), field("name", &R::name), field("mobID", &R::mobID),
                   field("slotCount", &R::slotCount), field("isRead", &R::isRead)};
};

template <>
struct RecordFields<AAFWorkerExtensions::Compositions> {
    using R = AAFWorkerExtensions::Compositions;
    static constexpr auto fields = std::tuple{field("compositions", &R::compositions)};
};

template <>
struct RecordFields<AAFWorkerExtensions::SeparateFile> {
    using R = AAFWorkerExtensions::SeparateFile;
    static constexpr auto fields =
        std::tuple{field("essenceID", &R::essenceID), field("path", &R::path)};
};

template <>
struct RecordFields<AAFWorkerExtensions::EmbeddedMedia> {
    using R = AAFWorkerExtensions::EmbeddedMedia;
    static constexpr auto fields =
        std::tuple{field("unusedCount", &R::unusedCount), field("unusedNames", &R::unusedNames),
                   field("separateFiles", &R::separateFiles)};
};

template <>
struct RecordFields<AAFWorkerExtensions::Dates> {
    using R = AAFWorkerExtensions::Dates;
    static constexpr auto fields = std::tuple{field("lastModified", &R::lastModified)};
};

template <>
struct RecordFields<AAFWorkerExtensions::ReelTimecode> {
    using R = AAFWorkerExtensions::ReelTimecode;
    static constexpr auto fields =
        std::tuple{field("start", &R::start), field("framesPerSecond", &R::framesPerSecond),
                   field("dropFrame", &R::dropFrame), field("editRate", &R::editRate)};
};

template <>
struct RecordFields<AAFWorkerExtensions::Reel> {
    using R = AAFWorkerExtensions::Reel;
    static constexpr auto fields = std::tuple{
        field("essenceID", &R::essenceID), field("mobID", &R::mobID), field("name", &R::name),
        field("start", &R::start), field("timecode", &R::timecode)};
};

template <>
struct RecordFields<AAFWorkerExtensions::Reels> {
    using R = AAFWorkerExtensions::Reels;
    static constexpr auto fields = std::tuple{field("reels", &R::reels)};
};

template <>
struct RecordFields<AAFWorkerExtensions::MasterMob> {
    using R = AAFWorkerExtensions::MasterMob;
    static constexpr auto fields = std::tuple{field("mobID", &R::mobID), field("name", &R::name)};
};

template <>
struct RecordFields<AAFWorkerExtensions::MasterMobs> {
    using R = AAFWorkerExtensions::MasterMobs;
    static constexpr auto fields =
        std::tuple{field("masterMobs", &R::masterMobs), field("ofEvents", &R::ofEvents)};
};

template <>
struct RecordFields<AAFWorkerExtensions::MediaLength> {
    using R = AAFWorkerExtensions::MediaLength;
    static constexpr auto fields =
        std::tuple{field("essenceID", &R::essenceID), field("frames", &R::frames)};
};

template <>
struct RecordFields<AAFWorkerExtensions::Contents> {
    using R = AAFWorkerExtensions::Contents;
    static constexpr auto fields = std::tuple{
        field("mediaLengths", &R::mediaLengths),       field("unusedMedia", &R::unusedMedia),
        field("unusedNames", &R::unusedNames),         field("unusedBytes", &R::unusedBytes),
        field("renderedEffects", &R::renderedEffects), field("nestedGroups", &R::nestedGroups)};
};

template <>
struct RecordFields<AAFWorkerExtensions::OlderModel> {
    using R = AAFWorkerExtensions::OlderModel;
    static constexpr auto fields = std::tuple{field("version", &R::version)};
};

template <>
struct RecordFields<AAFWorkerExtensions::Application> {
    using R = AAFWorkerExtensions::Application;
    static constexpr auto fields =
        std::tuple{field("company", &R::company), field("product", &R::product),
                   field("version", &R::version)};
};

template <>
struct RecordFields<AAFWorkerExtensions::Provenance> {
    using R = AAFWorkerExtensions::Provenance;
    static constexpr auto fields =
        std::tuple{field("containerVersion", &R::containerVersion),
                   field("modelVersion", &R::modelVersion), field("bigEndian", &R::bigEndian),
                   field("applications", &R::applications), field("peakMemory", &R::peakMemory)};
};

template <>
struct RecordFields<AAFWorkerExtensions::SamplePiece> {
    using R = AAFWorkerExtensions::SamplePiece;
    static constexpr auto fields =
        std::tuple{field("offset", &R::offset), field("length", &R::length)};
};

template <>
struct RecordFields<AAFWorkerExtensions::Samples> {
    using R = AAFWorkerExtensions::Samples;
    static constexpr auto fields =
        std::tuple{field("essenceID", &R::essenceID), field("sampleBytes", &R::sampleBytes),
                   field("bigEndian", &R::bigEndian), field("pieces", &R::pieces)};
};

template <>
struct RecordFields<AAFWorkerExtensions::SampleData> {
    using R = AAFWorkerExtensions::SampleData;
    static constexpr auto fields = std::tuple{field("samples", &R::samples)};
};

template <>
struct RecordFields<AAFWorkerExtensions> {
    using R = AAFWorkerExtensions;
    static constexpr auto fields = std::tuple{field("lossPlaces", &R::lossPlaces),
                                              field("compositions", &R::compositions),
                                              field("embeddedMedia", &R::embeddedMedia),
                                              field("dates", &R::dates),
                                              field("reels", &R::reels),
                                              field("contents", &R::contents),
                                              field("masterMobs", &R::masterMobs),
                                              field("omf1", &R::omf1),
                                              field("provenance", &R::provenance),
                                              field("sampleData", &R::sampleData)};
};

template <>
struct RecordFields<AAFWorkerProtocol::Request> {
    using R = AAFWorkerProtocol::Request;
    static constexpr auto fields =
        std::tuple{field("protocolVersion", &R::protocolVersion),
                   field("operation", &R::operation),
                   field("aafPath", &R::aafPath),
                   field("workDirectory", &R::workDirectory),
                   field("mediaSearchDirectory", &R::mediaSearchDirectory),
                   field("recoverProToolsTrueFades", &R::recoverProToolsTrueFades),
                   field("removeProToolsSampleAccurateEditFragments",
                         &R::removeProToolsSampleAccurateEditFragments),
                   field("extensions", &R::extensions),
                   field("memoryLimit", &R::memoryLimit)};
};

template <>
struct RecordFields<AAFWorkerProtocol::Progress> {
    using R = AAFWorkerProtocol::Progress;
    static constexpr auto fields = std::tuple{
        field("phase", &R::phase), field("fraction", &R::fraction), field("detail", &R::detail)};
};

template <>
struct RecordFields<AAFWorkerProtocol::Result> {
    using R = AAFWorkerProtocol::Result;
    static constexpr auto fields = std::tuple{
        field("protocolVersion", &R::protocolVersion), field("timeline", &R::timeline),
        field("diagnostics", &R::diagnostics),
        field("embeddedMediaSHA256", &R::embeddedMediaSHA256), field("extensions", &R::extensions)};
};

}  // namespace trellant
