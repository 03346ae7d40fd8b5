// SPDX-License-Identifier: Apache-2.0
// A container for programs.
#include "dumped.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <string>
#include <trellant_testing/byte_writer.h>
#include <trellant_testing/omf_builder.h>
#include <vector>

namespace trellant::testing {

namespace {

using nlohmann::json;
using ::testing::Contains;
using ::testing::IsEmpty;

Bytes session() {
    OmfBuilder omf;
    omf.composition({.name = "Song"});
    return omf.build();
}

/// The lines of a dump, each read as JSON.
std::vector<json> linesOf(const Said& said) {
    std::vector<json> lines;
    std::size_t begin = 0;
    for (std::size_t end = said.out.find('\n'); end != std::string::npos;
         end = said.out.find('\n', begin)) {
        lines.push_back(json::parse(said.out.substr(begin, end - begin)));
        begin = end + 1;
    }
    EXPECT_EQ(begin, said.out.size());
    return lines;
}

json onlyLine(const Said& said) {
    const std::vector<json> lines = linesOf(said);
    EXPECT_EQ(lines.size(), 1U);
    return lines.at(0);
}

}  // namespace

TEST(DumpJsonOfASession, OverviewSaysWhatTheContainerIs) {
    const Bytes file = session();
    const Said said = dumped(file, {.json = true});
    EXPECT_EQ(said.status, 0);
    const json overview = onlyLine(said);
    EXPECT_EQ(overview.at("bytes"), file.size());
    EXPECT_EQ(overview.at("model"), "omf2");
    // The last 24 bytes of a file are its footer.
    EXPECT_EQ(overview.at("footer").at("offset"), file.size() - 24);
    EXPECT_EQ(overview.at("table").at("offset").get<std::size_t>() +
                  overview.at("table").at("bytes").get<std::size_t>(),
              file.size() - 24);
    EXPECT_TRUE(overview.at("damages").empty());
    std::vector<std::string> classes;
    for (const json& one : overview.at("classes")) {
        classes.push_back(one.at("class"));
        EXPECT_EQ(one.at("count"), one.at("objects").size());
    }
    EXPECT_THAT(classes, Contains("CMOB"));
    EXPECT_THAT(classes, Contains("HEAD"));
}

TEST(DumpJsonOfASession, ObjectHasItsProperties) {
    const Bytes file = session();
    const json overview = onlyLine(dumped(file, {.json = true}));
    std::uint32_t composition = 0;
    for (const json& one : overview.at("classes")) {
        if (one.at("class") == "CMOB") {
            composition = one.at("objects").at(0);
        }
    }
    const json object = onlyLine(dumped(file, {.object = composition, .json = true}));
    EXPECT_EQ(object.at("object"), composition);
    EXPECT_EQ(object.at("class"), "CMOB");
    EXPECT_EQ(object.at("propertyCount"), object.at("properties").size());
    bool isNamed = false;
    for (const json& property : object.at("properties")) {
        if (property.value("property", "") == "OMFI:MOBJ:Name") {
            isNamed = true;
            EXPECT_EQ(property.at("value"), "\"Song\"");
        }
    }
    EXPECT_TRUE(isNamed);
    const json byPath =
        onlyLine(dumped(file, {.path = "CMOB[" + std::to_string(composition) + "]", .json = true}));
    EXPECT_EQ(byPath.at("steps").size(), 1U);
    EXPECT_EQ(byPath.at("steps").at(0).at("object"), composition);
    EXPECT_EQ(byPath.at("properties"), object.at("properties"));
}

TEST(DumpJsonOfASession, WhatIsNotThereIsAnErrorForProgramsToo) {
    const Said said = dumped(session(), {.object = 4'000'000, .json = true});
    EXPECT_EQ(said.status, 1);
    EXPECT_EQ(onlyLine(said).at("error").get<std::string>().substr(0, 34),
              "there is no object 4000000; the ob");
    const Said path = dumped(session(), {.path = "CMOB[4000000]", .json = true});
    EXPECT_EQ(path.status, 1);
    EXPECT_TRUE(onlyLine(path).contains("error"));
}

TEST(DumpJsonOfASession, TableHasALineForEachItem) {
    const Bytes file = session();
    const json overview = onlyLine(dumped(file, {.json = true}));
    const std::vector<json> items = linesOf(dumped(file, {.toc = true, .json = true}));
    EXPECT_EQ(items.size(), overview.at("items").get<std::size_t>());
    for (const json& item : items) {
        const std::string kind = item.at("kind");
        if (kind == "range") {
            EXPECT_LE(item.at("offset").get<std::size_t>() + item.at("bytes").get<std::size_t>(),
                      file.size());
        } else {
            EXPECT_EQ(kind, "immediate");
        }
        EXPECT_FALSE(item.contains("leavesFile"));
    }
}

TEST(DumpJsonOfASession, AFileThatIsNoContainerSaysWhatItLooksLike) {
    const Said said = dumped(bytesOf("RIFF\x01\x01\x01\x01WAVEfmt and more of it"), {.json = true});
    EXPECT_EQ(said.status, 2);
    const json overview = onlyLine(said);
    EXPECT_EQ(overview.at("looksLike"), "a WAVE audio file, not a session");
    EXPECT_FALSE(overview.contains("footer"));
    EXPECT_FALSE(overview.at("damages").empty());
}

TEST(DumpJsonOfASession, DamagesAreListed) {
    // The table's place, 8 bytes before the end of the footer's 24, points beyond the file.
    Bytes file = session();
    file.erase(file.begin(), file.begin() + 100);
    const json overview = onlyLine(dumped(file, {.json = true}));
    EXPECT_THAT(overview.at("damages").get<std::vector<std::string>>(), ::testing::Not(IsEmpty()));
}

}  // namespace trellant::testing
