// SPDX-License-Identifier: Apache-2.0
// What properties mean, by the names of types and properties.
#include "dump/dump_value_kind.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace trellant::testing {

namespace {

using cli::ValueKind;
using cli::valueKind;
using Names = std::vector<std::string>;

void expectOfType(ValueKind kind, const Names& types) {
    for (const std::string& type : types) {
        EXPECT_EQ(valueKind("omfi:" + type, ""), kind) << type;
        EXPECT_EQ(valueKind("omfi:" + type, "Other:Thing"), kind) << type;
    }
}

void expectOfProperty(ValueKind kind, const Names& properties) {
    for (const std::string& property : properties) {
        EXPECT_EQ(valueKind("", "OMFI:" + property), kind) << property;
        EXPECT_EQ(valueKind("example:Odd", "OMFI:" + property), kind) << property;
    }
}

}  // namespace

TEST(DumpValueKind, OfTypesThatAreNumbers) {
    expectOfType(ValueKind::signedNumber, {"Int8", "Int16", "Int32", "Int64", "Length32",
                                           "Length64", "Position32", "Position64", "ArgIDType"});
    expectOfType(ValueKind::unsignedNumber, {"UInt8", "UInt16", "UInt32", "UInt64", "AttrKind",
                                             "EditHintType", "FadeType", "InterpKind"});
    expectOfType(ValueKind::numbers, {"Int32Array"});
    expectOfType(ValueKind::rational, {"Rational"});
}

TEST(DumpValueKind, OfTypesThatAreNames) {
    expectOfType(ValueKind::text, {"String", "UniqueName"});
    expectOfType(ValueKind::classID, {"ClassID", "ObjectTag"});
    expectOfType(ValueKind::uid, {"UID"});
    expectOfType(ValueKind::reference, {"ObjRef"});
    expectOfType(ValueKind::references, {"ObjRefArray"});
}

TEST(DumpValueKind, OfOtherTypes) {
    expectOfType(ValueKind::boolean, {"Boolean"});
    expectOfType(ValueKind::timestamp, {"TimeStamp"});
    expectOfType(ValueKind::version, {"VersionType"});
    expectOfType(ValueKind::bytes, {"DataValue", "VarLenBytes", "int32", ""});
}

TEST(DumpValueKind, OfPropertiesThatAreTimesOfAClip) {
    expectOfProperty(ValueKind::signedNumber,
                     {"CPNT:Length", "SCLP:StartTime", "SCLP:FadeInLength", "SCLP:FadeOutLength",
                      "TCCP:Start", "TRAN:CutPoint", "TRKD:Origin", "MDFL:Length", "ESLT:ArgID"});
    expectOfProperty(ValueKind::rational, {"MSLT:EditRate", "MDFL:SampleRate", "CTLP:Time"});
    expectOfProperty(ValueKind::timestamp, {"MOBJ:CreationTime", "MOBJ:LastModified"});
}

TEST(DumpValueKind, OfPropertiesThatCount) {
    expectOfProperty(ValueKind::unsignedNumber,
                     {"ATTB:Kind", "SCLP:FadeInType", "SCLP:FadeOutType", "SCLP:SourceTrackID",
                      "SREF:RelativeScope", "SREF:RelativeSlot", "TCCP:FPS", "TRKD:PhysicalTrack",
                      "TRKD:TrackID", "VVAL:Interpolation"});
    expectOfProperty(ValueKind::boolean, {"TCCP:Drop"});
    expectOfProperty(ValueKind::version, {"HEAD:Version"});
}

TEST(DumpValueKind, OfPropertiesThatName) {
    expectOfProperty(
        ValueKind::text,
        {"ATTB:Name", "ATTB:StringAttribute", "CPNT:Name", "DDEF:DataKindID", "DOSL:PathName",
         "EDEF:EffectID", "MACL:FileName", "MOBJ:Name", "NETL:URLString", "TRKD:TrackName",
         "TXTL:Name", "UNXL:PathName", "WINL:PathName"});
    expectOfProperty(ValueKind::classID, {"OOBJ:ObjClass", "ObjID"});
    expectOfProperty(ValueKind::uid, {"MDAT:MobID", "MOBJ:MobID", "SCLP:SourceID"});
}

TEST(DumpValueKind, OfPropertiesThatLeadToAnObject) {
    expectOfProperty(ValueKind::reference,
                     {"ATTB:ObjAttribute", "CPNT:Attributes", "CPNT:DataKind", "EFFE:EffectKind",
                      "EFFE:FinalRendering", "ESLT:ArgValue", "MSLT:Segment", "MSLT:TrackDesc",
                      "SLCT:Selected", "SMOB:MediaDescription", "TRAN:Effect"});
}

TEST(DumpValueKind, OfPropertiesThatLeadToMany) {
    expectOfProperty(ValueKind::references,
                     {"ATTR:AttrRefs", "EFFE:EffectSlots", "HEAD:MediaData", "HEAD:Mobs",
                      "HEAD:PrimaryMobs", "MDES:Locator", "MDFL:Locator", "MDFL:Locators",
                      "MOBJ:Slots", "NEST:Slots", "SEQU:Components", "VVAL:PointList"});
}

TEST(DumpValueKind, FollowsTheTypeRatherThanTheProperty) {
    EXPECT_EQ(valueKind("omfi:String", "OMFI:CPNT:Length"), ValueKind::text);
    EXPECT_EQ(valueKind("omfi:Int32", "OMFI:MOBJ:Name"), ValueKind::signedNumber);
}

TEST(DumpValueKind, FollowsThePropertyWhereTypesMislead) {
    for (const char* const type : {"", "omfi:Int16", "omfi:String"}) {
        EXPECT_EQ(valueKind(type, "OMFI:HEAD:ByteOrder"), ValueKind::byteOrder);
        EXPECT_EQ(valueKind(type, "OMFI:IDNT:IDByteOrder"), ValueKind::byteOrder);
        EXPECT_EQ(valueKind(type, "OMFI:ByteOrder"), ValueKind::byteOrder);
        EXPECT_EQ(valueKind(type, "OMFI:CVAL:Value"), ValueKind::perhapsRational);
        EXPECT_EQ(valueKind(type, "OMFI:CTLP:Value"), ValueKind::perhapsRational);
    }
}

TEST(DumpValueKind, OfTheUnknownIsBytes) {
    EXPECT_EQ(valueKind("", ""), ValueKind::bytes);
    EXPECT_EQ(valueKind("example:Odd", "Other:Thing"), ValueKind::bytes);
    EXPECT_EQ(valueKind("", "OMFI:MOBJ:Name2"), ValueKind::bytes);
    EXPECT_EQ(valueKind("OMFI:MOBJ:Name", "omfi:String"), ValueKind::bytes);
}

}  // namespace trellant::testing
