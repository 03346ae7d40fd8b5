// SPDX-License-Identifier: Apache-2.0
// The overview of sound containers, and the list of their tables.
#include "dumped.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <trellant_testing/byte_writer.h>
#include <trellant_testing/omf_builder.h>

namespace trellant::testing {

namespace {

ContainerBuilder smallContainer(const ContainerBuilder::Options& options = {}) {
    ContainerBuilder container(options);
    container.set(1, "OMFI:OOBJ:ObjClass", bytesOf("HEAD"));
    container.set(1, "OMFI:HEAD:ByteOrder", bytesOf("MM"));
    container.set(2, "OMFI:OOBJ:ObjClass", bytesOf("CMOB"));
    container.set(2, "OMFI:MOBJ:Name", hex("53 6F 6E 67 00"), "omfi:String");
    return container;
}

/// What a dump says about the objects' model.
std::string modelLine(const ContainerBuilder& container) {
    const std::string out = dumped(container.build()).out;
    const std::size_t start = out.find("Model ");
    return start == std::string::npos ? "" : out.substr(start, out.find('\n', start) - start);
}

}  // namespace

// Names fill 19 + 20 + 15 + 12 bytes, the one value in the file 5: the table begins at byte 71.
// Its 8 items take 18 + 14 + 18 + 18 for the two objects and 22 for each of the four names.
TEST(DumpOverview, TellsFooterTableModelAndClasses) {
    const Said said = dumped(smallContainer().build());
    EXPECT_EQ(said.out,
              "File       mix.omf\n"
              "Size       251 bytes\n"
              "Footer     at byte 227, version 2.0, little-endian\n"
              "Table      compressed, blocks of 1024, 156 bytes at byte 71\n"
              "Items      8\n"
              "Objects    6, 2 of them with a class\n"
              "Names      3 of properties, 1 of types\n"
              "Model      OMF 2.x, header is object 1, values big-endian\n"
              "\n"
              "Class  Count  Objects\n"
              "CMOB       1  2\n"
              "HEAD       1  1\n");
    EXPECT_EQ(said.errors, "");
    EXPECT_EQ(said.status, 0);
}

// The same values; 8 entries of 24 bytes.
TEST(DumpOverview, TellsEntriesAndTheExtendedFooter) {
    const Said said =
        dumped(smallContainer(
                   {.byteOrder = OMFByteOrder::big, .form = TocForm::v1, .extendedFooter = true})
                   .build());
    EXPECT_EQ(said.out.substr(0, said.out.find("Items")),
              "File       mix.omf\n"
              "Size       311 bytes\n"
              "Footer     at byte 287, version 1.1, big-endian, extended\n"
              "Table      entries of 24 bytes, 192 bytes at byte 71\n");
    EXPECT_EQ(said.status, 0);
}

TEST(DumpOverview, TakesTheValuesOrderFromTheFooterWithoutAMark) {
    ContainerBuilder container({.byteOrder = OMFByteOrder::big});
    container.set(7, "OMFI:OOBJ:ObjClass", bytesOf("HEAD"));
    EXPECT_EQ(modelLine(container), "Model      OMF 2.x, header is object 7, values big-endian");
}

TEST(DumpOverview, NamesAnOlderModel) {
    ContainerBuilder container;
    container.set(5, "OMFI:ObjID", bytesOf("HEAD"));
    container.set(5, "OMFI:ByteOrder", bytesOf("MM"));
    EXPECT_EQ(modelLine(container),
              "Model      OMF 1.x, header is object 5, values big-endian; read as far as "
              "its structure is known");
    EXPECT_EQ(dumped(container.build()).status, 0);
}

TEST(DumpOverview, SaysThatAContainerHoldsNoModel) {
    ContainerBuilder container;
    container.set(1, "Other:Thing", bytesOf("ab"));
    EXPECT_EQ(modelLine(container),
              "Model      no OMF: the container names no property for the classes of its objects");
}

TEST(DumpOverview, BoundsTheObjectsOfAClass) {
    ContainerBuilder container;
    container.set(1, "OMFI:OOBJ:ObjClass", bytesOf("HEAD"));
    for (ObjectID object = 11; object <= 20; ++object) {
        container.set(object, "OMFI:OOBJ:ObjClass", bytesOf("FILL"));
    }
    const std::string cut = dumped(container.build()).out;
    EXPECT_EQ(cut.substr(cut.find("Class ")),
              "Class  Count  Objects\n"
              "FILL      10  11 12 13 14 15 16 17 18 and 2 more\n"
              "HEAD       1  1\n"
              "\n"
              "Shown in part: --all shows everything.\n");
    const std::string whole = dumped(container.build(), {.all = true}).out;
    EXPECT_EQ(whole.substr(whole.find("Class ")),
              "Class  Count  Objects\n"
              "FILL      10  11 12 13 14 15 16 17 18 19 20\n"
              "HEAD       1  1\n");
}

TEST(DumpOverview, BoundsTheClasses) {
    ContainerBuilder container;
    container.set(1, "OMFI:OOBJ:ObjClass", bytesOf("HEAD"));
    for (ObjectID object = 2; object <= 202; ++object) {
        container.set(object, "OMFI:OOBJ:ObjClass", bytesOf("I" + std::to_string(object)));
    }
    const std::string cut = dumped(container.build()).out;
    EXPECT_NE(cut.find("\nand 2 more classes\n"), std::string::npos);
    EXPECT_EQ(dumped(container.build(), {.all = true}).out.find("more"), std::string::npos);
}

TEST(DumpOverview, ShowsNamesOfStrangersHarmlessly) {
    ContainerBuilder container;
    container.set(1, "OMFI:OOBJ:ObjClass", bytesOf("A\x1b\nB"));
    const std::string out = dumped(container.build()).out;
    EXPECT_EQ(out.substr(out.find("Class ")), "Class  Count  Objects\nA\uFFFD\uFFFDB       1  1\n");
}

TEST(DumpOverview, PaintsHeadingsOnATerminal) {
    const std::string out = dumped(smallContainer().build(), {}, {.out = Listener::terminal}).out;
    EXPECT_EQ(out.substr(out.find("\x1b[")),
              "\x1b[1mClass  Count  Objects\x1b[0m\n"
              "CMOB       1  2\n"
              "HEAD       1  1\n");
}

TEST(DumpToc, ListsItemsInTheirOrder) {
    ContainerBuilder container;
    container.set(1, "OMFI:OOBJ:ObjClass", bytesOf("HEAD"));
    container.set(1, "OMFI:MOBJ:Name", hex("53 6F 6E 67 00"), "omfi:String");
    container.addItem({.object = 9,
                       .property = 77,
                       .type = 5,
                       .generation = 3,
                       .segment = {BentoReferenceList{131'072}, false}});
    container.addItem({.object = 9,
                       .property = 77,
                       .type = 5,
                       .generation = 0,
                       .segment = {BentoRange{2, 3}, true}});
    container.addItem({.object = 9, .property = 78, .type = 5, .generation = 0, .segment = {}});
    const Said said = dumped(container.build(), {.toc = true});
    EXPECT_EQ(said.out,
              "    Object    Gen  Value                                     Property  Type\n"
              "         1      0  immediate 48 45 41 44                     "
              "OMFI:OOBJ:ObjClass  type 0\n"
              "         1      0  5 bytes at 46                             "
              "OMFI:MOBJ:Name  omfi:String\n"
              "     65536      0  19 bytes at 0                             property 24  type 21\n"
              "     65537      0  12 bytes at 19                            property 23  type 21\n"
              "     65538      0  15 bytes at 31                            property 24  type 21\n"
              "         9      3  reference list 131072                     property 77  type 5\n"
              "         9      0  3 bytes at 2, continued                   property 77  type 5\n"
              "         9      0  empty                                     property 78  type 5\n");
    EXPECT_EQ(said.status, 0);
}

TEST(DumpToc, IsBoundedUnlessAllIsAskedFor) {
    ContainerBuilder container;
    for (ObjectID object = 1; object <= 10'001; ++object) {
        container.addItem({.object = object, .segment = {BentoImmediate{}, false}});
    }
    const std::string cut = dumped(container.build(), {.toc = true}).out;
    EXPECT_EQ(std::count(cut.begin(), cut.end(), '\n'), 10'004);
    EXPECT_EQ(cut.substr(cut.find("and ")),
              "and 1 more items\n\nShown in part: --all shows everything.\n");
    const std::string whole = dumped(container.build(), {.toc = true, .all = true}).out;
    EXPECT_EQ(std::count(whole.begin(), whole.end(), '\n'), 10'002);
}

}  // namespace trellant::testing
