// SPDX-License-Identifier: Apache-2.0
// The properties of OMF 1.x that are read. Classes stand in OMFI:ObjID; most names are those that
// OMF 2.x has too, with other values behind them.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace trellant {

enum class OlderProperty : std::uint8_t {
    objectClass,
    byteOrder,
    version,
    lastModified,
    compositionMobs,
    sourceMobs,
    mediaData,
    mobID,
    usageCode,
    startPosition,
    physicalMedia,
    editRate,
    name,
    trackKind,
    effectID,
    precomputed,
    attributes,
    trackAttributes,
    fillerProxy,
    groupLength,
    tracks,
    labelNumber,
    trackComponent,
    sequence,
    clipLength,
    sourceID,
    sourceTrack,
    sourcePosition,
    fadeInLength,
    fadeInType,
    fadeOutLength,
    fadeOutType,
    cutPoint,
    timecodeStart,
    timecodeFPS,
    timecodeFlags,
    isInFile,
    sampleRate,
    sd2Bits,
    sd2Channels,
    locator,
    macFileName,
    unixPath,
    dosPath,
    textName,
    aifcMobID,
    aifcData,
    waveMobID,
    waveData,
};

/// The full names, in the order of OlderProperty.
inline constexpr std::array<std::string_view, 49> olderPropertyNames{
    "OMFI:ObjID",
    "OMFI:ByteOrder",
    "OMFI:Version",
    "OMFI:LastModified",
    "OMFI:CompositionMobs",
    "OMFI:SourceMobs",
    "OMFI:MediaData",
    "OMFI:MOBJ:MobID",
    "OMFI:MOBJ:UsageCode",
    "OMFI:MOBJ:StartPosition",
    "OMFI:MOBJ:PhysicalMedia",
    "OMFI:CPNT:EditRate",
    "OMFI:CPNT:Name",
    "OMFI:CPNT:TrackKind",
    "OMFI:CPNT:EffectID",
    "OMFI:CPNT:Precomputed",
    "OMFI:CPNT:Attributes",
    "OMFI:TRAK:Attributes",
    "OMFI:TRAK:FillerProxy",
    "OMFI:TRKG:GroupLength",
    "OMFI:TRKG:Tracks",
    "OMFI:TRAK:LabelNumber",
    "OMFI:TRAK:TrackComponent",
    "OMFI:SEQU:Sequence",
    "OMFI:CLIP:Length",
    "OMFI:SCLP:SourceID",
    "OMFI:SCLP:SourceTrack",
    "OMFI:SCLP:SourcePosition",
    "OMFI:SCLP:FadeInLength",
    "OMFI:SCLP:FadeInType",
    "OMFI:SCLP:FadeOutLength",
    "OMFI:SCLP:FadeOutType",
    "OMFI:TRAN:CutPoint",
    "OMFI:TCCP:StartTC",
    "OMFI:TCCP:FPS",
    "OMFI:TCCP:Flags",
    "OMFI:MDFL:IsOMFI",
    "OMFI:MDFL:SampleRate",
    "OMFI:SD2D:BitsPerSample",
    "OMFI:SD2D:NumberOfChannels",
    "OMFI:MDES:Locator",
    "OMFI:MACL:FileName",
    "OMFI:UNXL:PathName",
    "OMFI:DOSL:PathName",
    "OMFI:TXTL:Name",
    "OMFI:AIFC:MobID",
    "OMFI:AIFC:Data",
    "OMFI:WAVE:MobID",
    "OMFI:WAVE:Data",
};

inline constexpr std::size_t olderPropertyCount =
    static_cast<std::size_t>(OlderProperty::waveData) + 1;
static_assert(olderPropertyNames.size() == olderPropertyCount);

[[nodiscard]] constexpr std::string_view nameOf(OlderProperty property) {
    return olderPropertyNames[static_cast<std::size_t>(property)];
}

}  // namespace trellant
