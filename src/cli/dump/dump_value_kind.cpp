// SPDX-License-Identifier: Apache-2.0
#include "dump_value_kind.h"

#include <algorithm>
#include <array>
#include <optional>
#include <span>

namespace trellant::cli {

namespace {

struct KindOfName {
    std::string_view name;
    ValueKind kind;
};

/// Declared as plain numbers or bytes, but more than that.
constexpr auto misleading = std::to_array<KindOfName>({
    {"OMFI:HEAD:ByteOrder", ValueKind::byteOrder},
    {"OMFI:IDNT:IDByteOrder", ValueKind::byteOrder},
    {"OMFI:ByteOrder", ValueKind::byteOrder},
    {"OMFI:CVAL:Value", ValueKind::perhapsRational},
    {"OMFI:CTLP:Value", ValueKind::perhapsRational},
});

constexpr auto types = std::to_array<KindOfName>({
    {"omfi:ArgIDType", ValueKind::signedNumber},
    {"omfi:AttrKind", ValueKind::unsignedNumber},
    {"omfi:Boolean", ValueKind::boolean},
    {"omfi:ClassID", ValueKind::classID},
    {"omfi:EditHintType", ValueKind::unsignedNumber},
    {"omfi:FadeType", ValueKind::unsignedNumber},
    {"omfi:Int16", ValueKind::signedNumber},
    {"omfi:Int32", ValueKind::signedNumber},
    {"omfi:Int32Array", ValueKind::numbers},
    {"omfi:Int64", ValueKind::signedNumber},
    {"omfi:Int8", ValueKind::signedNumber},
    {"omfi:InterpKind", ValueKind::unsignedNumber},
    {"omfi:Length32", ValueKind::signedNumber},
    {"omfi:Length64", ValueKind::signedNumber},
    {"omfi:ObjRef", ValueKind::reference},
    {"omfi:ObjRefArray", ValueKind::references},
    {"omfi:ObjectTag", ValueKind::classID},
    {"omfi:Position32", ValueKind::signedNumber},
    {"omfi:Position64", ValueKind::signedNumber},
    {"omfi:Rational", ValueKind::rational},
    {"omfi:String", ValueKind::text},
    {"omfi:TimeStamp", ValueKind::timestamp},
    {"omfi:UID", ValueKind::uid},
    {"omfi:UInt16", ValueKind::unsignedNumber},
    {"omfi:UInt32", ValueKind::unsignedNumber},
    {"omfi:UInt64", ValueKind::unsignedNumber},
    {"omfi:UInt8", ValueKind::unsignedNumber},
    {"omfi:UniqueName", ValueKind::text},
    {"omfi:VersionType", ValueKind::version},
});

constexpr auto properties = std::to_array<KindOfName>({
    {"OMFI:AIFC:MobID", ValueKind::uid},
    {"OMFI:ATTB:Kind", ValueKind::unsignedNumber},
    {"OMFI:ATTB:Name", ValueKind::text},
    {"OMFI:ATTB:ObjAttribute", ValueKind::reference},
    {"OMFI:ATTB:StringAttribute", ValueKind::text},
    {"OMFI:ATTR:AttrRefs", ValueKind::references},
    {"OMFI:CLIP:Length", ValueKind::signedNumber},
    {"OMFI:CPNT:Attributes", ValueKind::reference},
    {"OMFI:CPNT:DataKind", ValueKind::reference},
    {"OMFI:CPNT:EditRate", ValueKind::rational},
    {"OMFI:CPNT:Length", ValueKind::signedNumber},
    {"OMFI:CPNT:Name", ValueKind::text},
    {"OMFI:CPNT:TrackKind", ValueKind::trackKind},
    {"OMFI:CTLP:Time", ValueKind::rational},
    {"OMFI:ClassDictionary", ValueKind::references},
    {"OMFI:CompositionMobs", ValueKind::mobIndex},
    {"OMFI:DDEF:DataKindID", ValueKind::text},
    {"OMFI:DOSL:PathName", ValueKind::text},
    {"OMFI:EDEF:EffectID", ValueKind::text},
    {"OMFI:EFFE:EffectKind", ValueKind::reference},
    {"OMFI:EFFE:EffectSlots", ValueKind::references},
    {"OMFI:EFFE:FinalRendering", ValueKind::reference},
    {"OMFI:ESLT:ArgID", ValueKind::signedNumber},
    {"OMFI:ESLT:ArgValue", ValueKind::reference},
    {"OMFI:HEAD:IdentificationList", ValueKind::references},
    {"OMFI:HEAD:MediaData", ValueKind::references},
    {"OMFI:HEAD:Mobs", ValueKind::references},
    {"OMFI:HEAD:PrimaryMobs", ValueKind::references},
    {"OMFI:HEAD:Version", ValueKind::version},
    {"OMFI:LastModified", ValueKind::timestamp},
    {"OMFI:MACL:FileName", ValueKind::text},
    {"OMFI:MDAT:MobID", ValueKind::uid},
    {"OMFI:MDES:Locator", ValueKind::references},
    {"OMFI:MDES:MobKind", ValueKind::unsignedNumber},
    {"OMFI:MDFL:IsOMFI", ValueKind::boolean},
    {"OMFI:MDFL:Length", ValueKind::signedNumber},
    {"OMFI:MDFL:Locator", ValueKind::references},
    {"OMFI:MDFL:Locators", ValueKind::references},
    {"OMFI:MDFL:SampleRate", ValueKind::rational},
    {"OMFI:MOBJ:CreationTime", ValueKind::timestamp},
    {"OMFI:MOBJ:LastModified", ValueKind::timestamp},
    {"OMFI:MOBJ:MobID", ValueKind::uid},
    {"OMFI:MOBJ:Name", ValueKind::text},
    {"OMFI:MOBJ:PhysicalMedia", ValueKind::reference},
    {"OMFI:MOBJ:Slots", ValueKind::references},
    {"OMFI:MOBJ:StartPosition", ValueKind::signedNumber},
    {"OMFI:MOBJ:UsageCode", ValueKind::signedNumber},
    {"OMFI:MSLT:EditRate", ValueKind::rational},
    {"OMFI:MSLT:Segment", ValueKind::reference},
    {"OMFI:MSLT:TrackDesc", ValueKind::reference},
    {"OMFI:MediaData", ValueKind::mobIndex},
    {"OMFI:NEST:Slots", ValueKind::references},
    {"OMFI:NETL:URLString", ValueKind::text},
    {"OMFI:OOBJ:ObjClass", ValueKind::classID},
    {"OMFI:ObjID", ValueKind::classID},
    {"OMFI:ObjectSpine", ValueKind::references},
    {"OMFI:SCLP:FadeInLength", ValueKind::signedNumber},
    {"OMFI:SCLP:FadeInType", ValueKind::unsignedNumber},
    {"OMFI:SCLP:FadeOutLength", ValueKind::signedNumber},
    {"OMFI:SCLP:FadeOutType", ValueKind::unsignedNumber},
    {"OMFI:SCLP:SourceID", ValueKind::uid},
    {"OMFI:SCLP:SourcePosition", ValueKind::signedNumber},
    {"OMFI:SCLP:SourceTrack", ValueKind::unsignedNumber},
    {"OMFI:SCLP:SourceTrackID", ValueKind::unsignedNumber},
    {"OMFI:SCLP:StartTime", ValueKind::signedNumber},
    {"OMFI:SEQU:Components", ValueKind::references},
    {"OMFI:SEQU:Sequence", ValueKind::references},
    {"OMFI:SLCT:Selected", ValueKind::reference},
    {"OMFI:SMOB:MediaDescription", ValueKind::reference},
    {"OMFI:SREF:RelativeScope", ValueKind::unsignedNumber},
    {"OMFI:SREF:RelativeSlot", ValueKind::unsignedNumber},
    {"OMFI:SourceMobs", ValueKind::mobIndex},
    {"OMFI:TCCP:Drop", ValueKind::boolean},
    {"OMFI:TCCP:FPS", ValueKind::unsignedNumber},
    {"OMFI:TCCP:Flags", ValueKind::unsignedNumber},
    {"OMFI:TCCP:Start", ValueKind::signedNumber},
    {"OMFI:TCCP:StartTC", ValueKind::signedNumber},
    {"OMFI:TRAK:LabelNumber", ValueKind::unsignedNumber},
    {"OMFI:TRAK:TrackComponent", ValueKind::reference},
    {"OMFI:TRAN:CutPoint", ValueKind::signedNumber},
    {"OMFI:TRAN:Effect", ValueKind::reference},
    {"OMFI:TRKD:Origin", ValueKind::signedNumber},
    {"OMFI:TRKD:PhysicalTrack", ValueKind::unsignedNumber},
    {"OMFI:TRKD:TrackID", ValueKind::unsignedNumber},
    {"OMFI:TRKD:TrackName", ValueKind::text},
    {"OMFI:TRKG:GroupLength", ValueKind::signedNumber},
    {"OMFI:TRKG:Tracks", ValueKind::references},
    {"OMFI:TXTL:Name", ValueKind::text},
    {"OMFI:ToolkitVersion", ValueKind::version},
    {"OMFI:UNXL:PathName", ValueKind::text},
    {"OMFI:VVAL:Interpolation", ValueKind::unsignedNumber},
    {"OMFI:VVAL:PointList", ValueKind::references},
    {"OMFI:Version", ValueKind::version},
    {"OMFI:WAVE:MobID", ValueKind::uid},
    {"OMFI:WINL:PathName", ValueKind::text},
});

std::optional<ValueKind> find(std::span<const KindOfName> table, std::string_view name) {
    const auto found = std::find_if(table.begin(), table.end(),
                                    [name](const KindOfName& entry) { return entry.name == name; });
    return found == table.end() ? std::nullopt : std::optional(found->kind);
}

}  // namespace

ValueKind valueKind(std::string_view type, std::string_view property) {
    if (const auto kind = find(misleading, property)) {
        return *kind;
    }
    if (const auto kind = find(types, type)) {
        return *kind;
    }
    return find(properties, property).value_or(ValueKind::bytes);
}

}  // namespace trellant::cli
