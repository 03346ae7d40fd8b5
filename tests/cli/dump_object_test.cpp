// SPDX-License-Identifier: Apache-2.0
// Objects with their properties, and values by their types.
#include "dump/dump_values.h"
#include "dumped.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <trellant_testing/byte_writer.h>
#include <trellant_testing/container_builder.h>

namespace trellant::testing {

namespace {

/// How the value of object 2 is shown; objects 5 (FILL) and 6 (no class) are there to refer to.
std::string shown(const std::string& property, const Bytes& value, const std::string& type = {},
                  OMFByteOrder order = OMFByteOrder::little) {
    ContainerBuilder container({.byteOrder = order});
    container.set(5, "OMFI:OOBJ:ObjClass", bytesOf("FILL"));
    container.set(6, "Other:Thing", bytesOf("x"));
    container.set(2, property, value, type);
    std::string line;
    withContents(container.build(), [&](const cli::DumpContents& contents) {
        const auto text =
            cli::valueText(contents, 2, contents.propertyID(property).value_or(0), {});
        line = text.line;
        for (const std::string& row : text.listing) {
            line += "\n" + row;
        }
    });
    return line;
}

std::string typed(const std::string& type, const Bytes& value) {
    return shown("Other:Value", value, type);
}

std::string dumpedObject(const ContainerBuilder& container, ObjectID object, bool all = false) {
    return dumped(container.build(), {.object = object, .all = all}).out;
}

}  // namespace

TEST(DumpObject, OfValuesOverOneAnotherShowsAsManyWholeAsTheFileCanHold) {
    // Ten properties with the same 300,000 bytes: a mebibyte and the file's own size hold four.
    ContainerBuilder container;
    container.setInFile(2, "Other:Value 0", Bytes(300'000));
    for (int i = 1; i < 10; ++i) {
        container.addItem(2, "Other:Value " + std::to_string(i), BentoRange{0, 300'000});
    }
    const std::string text = dumpedObject(container, 2, true);
    EXPECT_NE(text.find("\n  values lie over one another: 6 of them are shown in part\n"),
              std::string::npos);
    // A row of the listing shows 16 bytes.
    EXPECT_LT(std::count(text.begin(), text.end(), '\n'), 5 * 300'000 / 16);
    EXPECT_GT(std::count(text.begin(), text.end(), '\n'), 4 * 300'000 / 16);
}

TEST(DumpValue, ShowsNumbersByTheirLength) {
    EXPECT_EQ(typed("omfi:Int8", hex("FF")), "-1");
    EXPECT_EQ(typed("omfi:UInt8", hex("FF")), "255");
    EXPECT_EQ(typed("omfi:Int16", hex("FE FF")), "-2");
    EXPECT_EQ(typed("omfi:UInt16", hex("FE FF")), "65534");
    EXPECT_EQ(typed("omfi:Int32", hex("FF FF FF FF")), "-1");
    EXPECT_EQ(typed("omfi:UInt32", hex("FF FF FF FF")), "4294967295");
    EXPECT_EQ(typed("omfi:Length64", hex("00 00 00 00 01 00 00 00")), "4294967296");
    EXPECT_EQ(typed("omfi:UInt64", hex("FF FF FF FF FF FF FF FF")), "18446744073709551615");
    EXPECT_EQ(typed("omfi:Int32", hex("01 02 03")), "01 02 03  |...|");
}

TEST(DumpValue, HeedsTheByteOrder) {
    EXPECT_EQ(shown("OMFI:CPNT:Length", hex("00 00 00 05"), {}, OMFByteOrder::big), "5");
    EXPECT_EQ(shown("OMFI:CPNT:Length", hex("05 00 00 00")), "5");
}

TEST(DumpValue, ShowsBooleansAndVersions) {
    EXPECT_EQ(typed("omfi:Boolean", hex("00")), "false");
    EXPECT_EQ(typed("omfi:Boolean", hex("01")), "true");
    EXPECT_EQ(shown("OMFI:TCCP:Drop", hex("01 00")), "true");
    EXPECT_EQ(typed("omfi:VersionType", hex("02 01")), "2.1");
    EXPECT_EQ(typed("omfi:VersionType", hex("02")), "02  |.|");
}

TEST(DumpValue, ShowsRationalsAndIdentifiers) {
    EXPECT_EQ(typed("omfi:Rational", hex("30 75 00 00 E9 03 00 00")), "30000/1001");
    EXPECT_EQ(typed("omfi:Rational", hex("FF FF FF FF 00 00 00 00")), "-1/0");
    EXPECT_EQ(typed("omfi:Rational", hex("01 00 00 00")), "01 00 00 00  |....|");
    EXPECT_EQ(typed("omfi:UID", hex("2A 00 00 00 01 00 00 00 FF FF FF FF")),
              "0000002A-00000001-FFFFFFFF");
}

TEST(DumpValue, ShowsValuesOfControlsAsRationalsWhereTheyCanBe) {
    EXPECT_EQ(shown("OMFI:CVAL:Value", hex("01 00 00 00 02 00 00 00"), "omfi:DataValue"), "1/2");
    EXPECT_EQ(shown("OMFI:CVAL:Value", hex("4E 6F 6E 65 00"), "omfi:DataValue"),
              "4E 6F 6E 65 00  |None.|");
}

TEST(DumpValue, ShowsTexts) {
    EXPECT_EQ(typed("omfi:String", bytesOf("Song")), "\"Song\"");
    EXPECT_EQ(typed("omfi:String", hex("53 6F 00 6E 67")), "\"So\"");
    EXPECT_EQ(typed("omfi:String", hex("4B 00 69 00 63 00 6B 00")), "\"Kick\"");
    EXPECT_EQ(typed("omfi:UniqueName", hex("61 0A 62")), "\"a\uFFFDb\"");
    EXPECT_EQ(typed("omfi:String", {}), "\"\"");
}

TEST(DumpValue, BoundsTexts) {
    EXPECT_EQ(typed("omfi:String", bytesOf(std::string(257, 'x'))),
              "\"" + std::string(256, 'x') + "\" and more, 257 bytes in all");
}

TEST(DumpValue, ShowsClassesAndByteOrders) {
    EXPECT_EQ(typed("omfi:ClassID", bytesOf("CMOB")), "CMOB");
    EXPECT_EQ(shown("OMFI:HEAD:ByteOrder", bytesOf("II"), "omfi:Int16"), "II, little-endian");
    EXPECT_EQ(shown("OMFI:HEAD:ByteOrder", bytesOf("MM"), "omfi:Int16"), "MM, big-endian");
    EXPECT_EQ(shown("OMFI:HEAD:ByteOrder", bytesOf("XY"), "omfi:Int16"), "58 59  |XY|");
}

// 1656034508 = 19167 days and 5708 seconds after 1970 began.
TEST(DumpValue, ShowsTimes) {
    EXPECT_EQ(typed("omfi:TimeStamp", hex("CC 14 B5 62 00")),
              "2022-06-24 01:35:08 local time (1656034508)");
    EXPECT_EQ(typed("omfi:TimeStamp", hex("CC 14 B5 62 01")),
              "2022-06-24 01:35:08 world time (1656034508)");
    EXPECT_EQ(typed("omfi:TimeStamp", hex("00 00 00 00")), "1970-01-01 00:00:00 (0)");
    EXPECT_EQ(typed("omfi:TimeStamp", hex("FF FF FF FF")), "2106-02-07 06:28:15 (4294967295)");
}

TEST(DumpValue, ShowsReferencesWithTheirClasses) {
    EXPECT_EQ(typed("omfi:ObjRef", hex("05 00 00 00")), "object 5, FILL");
    EXPECT_EQ(typed("omfi:ObjRef", hex("06 00 00 00")), "object 6, no class");
    EXPECT_EQ(typed("omfi:ObjRef", hex("63 00 00 00")), "object 99, not in the file");
    EXPECT_EQ(typed("omfi:ObjRef", hex("00 00 00 00")), "no object");
    EXPECT_EQ(typed("omfi:ObjRef", hex("05 00")), "05 00  |..|");
}

TEST(DumpValue, ShowsListsOfReferences) {
    EXPECT_EQ(typed("omfi:ObjRefArray", hex("02 00 05 00 00 00 06 00 00 00")),
              "2 objects: 5 FILL, 6 no class");
    EXPECT_EQ(typed("omfi:ObjRefArray", hex("05 00 00 00 63 00 00 00")),
              "2 objects: 5 FILL, 99 not in the file");
    EXPECT_EQ(typed("omfi:ObjRefArray", hex("02 00 05 00 00 00 00 00 00 00")),
              "1 object: 5 FILL, 1 to none");
    EXPECT_EQ(typed("omfi:ObjRefArray", hex("00 00")), "0 objects");
    EXPECT_EQ(typed("omfi:ObjRefArray", hex("05 00 00 00 06")), "05 00 00 00 06  |.....|");
}

TEST(DumpValue, BoundsListsOfReferences) {
    ByteWriter list(OMFByteOrder::little);
    list.u16(33);
    std::string expected = "33 objects: 5 FILL";
    list.u32(5);
    for (int i = 1; i < 33; ++i) {
        list.u32(5);
        expected += i < 32 ? ", 5 FILL" : "";
    }
    EXPECT_EQ(typed("omfi:ObjRefArray", list.written()), expected + " and 1 more");
}

TEST(DumpValue, ShowsListsOfNumbers) {
    EXPECT_EQ(typed("omfi:Int32Array", hex("02 00 00 00 FF FF FF FF")), "2 -1");
}

TEST(DumpValue, ShowsTheUnknownAsHexadecimal) {
    EXPECT_EQ(typed("", {}), "empty");
    EXPECT_EQ(typed("", hex("00 41 7F FF")), "00 41 7F FF  |.A..|");
    EXPECT_EQ(typed("example:Odd", bytesOf("0123456789abcdefX")),
              "17 bytes:\n"
              "00000000  30 31 32 33 34 35 36 37 38 39 61 62 63 64 65 66  |0123456789abcdef|\n"
              "00000010  58                                               |X|");
}

TEST(DumpValue, BoundsTheUnknown) {
    const std::string text = typed("", Bytes(300));
    EXPECT_EQ(text.substr(0, text.find('\n')), "300 bytes, the first 256:");
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 16);
}

TEST(DumpValue, PutsPiecesTogether) {
    ContainerBuilder container;
    container.setPieces(2, "Other:Value", {Bytes(10), bytesOf("abcdefghij")});
    EXPECT_EQ(dumpedObject(container, 2),
              "Object 2, no class, 1 property\n"
              "  Other:Value  20 bytes in 2 pieces:\n"
              "    00000000  00 00 00 00 00 00 00 00 00 00 61 62 63 64 65 66  "
              "|..........abcdef|\n"
              "    00000010  67 68 69 6A                                      |ghij|\n");
}

TEST(DumpValue, EndsWhereTheFileDoes) {
    ContainerBuilder container;
    container.set(1, "OMFI:OOBJ:ObjClass", bytesOf("HEAD"));
    container.addItem(2, "OMFI:MOBJ:Name", BentoRange{0, 1'000'000});
    const Said said = dumped(container.build(), {.object = 2});
    EXPECT_EQ(said.out.substr(0, said.out.find(":\n")),
              "Object 2, no class, 1 property\n"
              "  OMFI:MOBJ:Name  1000000 bytes, not all of them in the file, the first " +
                  std::to_string(container.build().size()));
    EXPECT_EQ(said.status, 2);
}

TEST(DumpObject, ShowsClassAndProperties) {
    ContainerBuilder container;
    container.set(2, "OMFI:OOBJ:ObjClass", bytesOf("CMOB"));
    container.set(2, "OMFI:MOBJ:Name", bytesOf("Song"));
    EXPECT_EQ(dumpedObject(container, 2),
              "Object 2, class CMOB, 2 properties\n"
              "  OMFI:OOBJ:ObjClass  CMOB\n"
              "  OMFI:MOBJ:Name      \"Song\"\n");
}

TEST(DumpObject, ShowsTheNamesOfNamingObjects) {
    ContainerBuilder container;
    container.set(2, "OMFI:MOBJ:Name", bytesOf("Song"));
    EXPECT_EQ(dumpedObject(container, 65'536),
              "Object 65536, no class, 1 property\n"
              "  property 24  \"OMFI:MOBJ:Name\"\n");
}

TEST(DumpObject, BoundsProperties) {
    ContainerBuilder container;
    for (int i = 1; i <= 202; ++i) {
        container.set(2, "P" + std::to_string(i), bytesOf("x"));
    }
    const std::string cut = dumpedObject(container, 2);
    EXPECT_EQ(cut.substr(cut.find("  and ")),
              "  and 2 more properties\n\nShown in part: --all shows everything.\n");
    const std::string whole = dumpedObject(container, 2, true);
    EXPECT_EQ(std::count(whole.begin(), whole.end(), '\n'), 203);
}

TEST(DumpObject, ShowsWholeValuesWhenAskedForAll) {
    ContainerBuilder container;
    container.set(2, "Other:Value", Bytes(300));
    const std::string cut = dumpedObject(container, 2);
    EXPECT_EQ(cut.substr(cut.rfind("\n\n")), "\n\nShown in part: --all shows everything.\n");
    const std::string whole = dumpedObject(container, 2, true);
    EXPECT_EQ(std::count(whole.begin(), whole.end(), '\n'), 21);
}

TEST(DumpObject, SaysWhichObjectsThereAre) {
    ContainerBuilder container;
    container.set(2, "OMFI:MOBJ:Name", bytesOf("Song"));
    const Said said = dumped(container.build(), {.object = 3});
    EXPECT_EQ(said.out, "");
    EXPECT_EQ(said.errors,
              "trellant: there is no object 3; the objects are numbered from 2 to 65536\n");
    EXPECT_EQ(said.status, 1);
}

TEST(DumpObject, SaysThatThereAreNone) {
    const Said said = dumped(bytesOf("hello"), {.object = 3});
    EXPECT_EQ(said.errors,
              "trellant: there is no object 3: the file holds none that can be read\n"
              "trellant: \"mix.omf\": shorter than the 24 bytes that end a container\n");
    EXPECT_EQ(said.status, 2);
}

}  // namespace trellant::testing
