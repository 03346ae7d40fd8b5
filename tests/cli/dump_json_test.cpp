// SPDX-License-Identifier: Apache-2.0
// A container for programs, whole lines of it.
#include "dumped.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <limits>
#include <string_view>
#include <trellant_testing/byte_writer.h>
#include <trellant_testing/container_builder.h>
#include <trellant_testing/omf_builder.h>

namespace trellant::testing {

namespace {

using ::testing::EndsWith;
using ::testing::HasSubstr;

constexpr std::string_view noContainer = "a text without a session";

/// In JSON a slash has a backslash before it; "mix.omf" stands for the whole path here too.
Said dumpedLines(ByteView file, cli::DumpOptions options) {
    options.json = true;
    Said said = dumped(file, options);
    constexpr std::string_view key = "\"file\":\"";
    for (std::size_t at = said.out.find(key); at != std::string::npos;
         at = said.out.find(key, at + key.size())) {
        const std::size_t begin = at + key.size();
        said.out.replace(begin, said.out.find('"', begin) - begin, "mix.omf");
    }
    return said;
}

}  // namespace

TEST(DumpJson, FileWithoutAFooterIsToldByWhatItLooksLike) {
    const Said said = dumpedLines(bytesOf(noContainer), {});
    EXPECT_EQ(said.out,
              "{\"file\":\"mix.omf\",\"bytes\":24,\"looksLike\":\"a text\","
              "\"damages\":[\"no container footer at the end\"]}\n");
    EXPECT_EQ(said.status, 2);
}

TEST(DumpJson, FileWithoutATableHasOneLineThatSaysSo) {
    const Said said = dumpedLines(bytesOf(noContainer), {.toc = true});
    EXPECT_EQ(said.out, "{\"file\":\"mix.omf\",\"error\":\"no container footer at the end\"}\n");
    EXPECT_EQ(said.errors, "trellant: \"mix.omf\": no container footer at the end\n");
    EXPECT_EQ(said.status, 2);
}

TEST(DumpJson, PositionsReachBeyondSignedNumbers) {
    constexpr auto most = std::numeric_limits<std::uint64_t>::max();
    ContainerBuilder container;
    container.addItem(2, "Other:Thing", BentoRange{.offset = most - 1, .length = most});
    const Said said = dumpedLines(container.build(), {.toc = true});
    EXPECT_THAT(said.out, HasSubstr("{\"file\":\"mix.omf\",\"object\":2,\"generation\":0,"
                                    "\"property\":\"Other:Thing\",\"typeNumber\":0,"
                                    "\"kind\":\"range\",\"offset\":18446744073709551614,"
                                    "\"bytes\":18446744073709551615,\"leavesFile\":true,"
                                    "\"continued\":false}\n"));
    EXPECT_EQ(said.status, 2);
}

TEST(DumpJson, ObjectHasItsPropertiesInWords) {
    ContainerBuilder container;
    container.set(2, "OMFI:OOBJ:ObjClass", bytesOf("FILL"));
    container.set(2, "OMFI:CPNT:Length", hex("05 00 00 00"));
    EXPECT_THAT(dumpedLines(container.build(), {.object = 2}).out,
                EndsWith("\"object\":2,\"class\":\"FILL\",\"propertyCount\":2,\"properties\":["
                         "{\"number\":65536,\"property\":\"OMFI:OOBJ:ObjClass\",\"typeNumber\":0,"
                         "\"bytes\":4,\"value\":\"FILL\"},"
                         "{\"number\":65537,\"property\":\"OMFI:CPNT:Length\",\"typeNumber\":0,"
                         "\"bytes\":4,\"value\":\"5\"}]}\n"));
}

TEST(DumpJson, PathHasItsStepsBeforeTheObject) {
    OmfBuilder omf;
    const ObjectID filler = omf.filler(5);
    const ObjectID slot = omf.slot({.editRate = Ratio{25}, .segment = filler});
    const ObjectID song = omf.composition({.name = "Song", .slots = {slot}});
    const std::string first = "CMOB[" + std::to_string(song) + "]";
    const std::string second = "slot[" + std::to_string(slot) + "]";
    EXPECT_THAT(dumpedLines(omf.build(), {.path = first + "/" + second}).out,
                HasSubstr("{\"file\":\"mix.omf\",\"steps\":[{\"step\":\"" + first +
                          "\",\"object\":" + std::to_string(song) + "},{\"step\":\"" + second +
                          "\",\"object\":" + std::to_string(slot) +
                          ",\"by\":\"OMFI:MOBJ:Slots\"}],\"object\":" + std::to_string(slot) +
                          ",\"class\":\"MSLT\","));
}

TEST(DumpJson, WhatIsCutIsToldBesideTheLines) {
    ContainerBuilder container;
    for (ObjectID object = 1; object <= 10'001; ++object) {
        container.set(object, "Other:Thing", bytesOf("x"));
    }
    const Bytes file = container.build();
    const Said said = dumpedLines(file, {.toc = true});
    EXPECT_EQ(std::count(said.out.begin(), said.out.end(), '\n'), 10'000);
    EXPECT_EQ(said.errors, "trellant: \"mix.omf\": shown in part; --all shows everything\n");
    EXPECT_EQ(said.status, 0);
    EXPECT_EQ(dumpedLines(file, {.toc = true, .all = true}).errors, "");
}

}  // namespace trellant::testing
