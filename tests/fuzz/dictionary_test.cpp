// SPDX-License-Identifier: Apache-2.0
#include "seeds.h"
#include "targets.h"

#include <trellant/omf/names.h>

#include <gtest/gtest.h>

#include <set>
#include <sstream>
#include <string>

namespace trellant::fuzzing {
namespace {

std::set<std::string> linesOf(std::string_view target) {
    std::istringstream text(dictionaryOf(target));
    std::set<std::string> lines;
    for (std::string line; std::getline(text, line);) {
        lines.insert(line);
    }
    return lines;
}

TEST(FuzzDictionary, HoldsEveryPropertyAndClass) {
    for (const auto* const target : {"container", "document", "mapping"}) {
        const auto lines = linesOf(target);
        for (const std::string_view name : omfPropertyNames) {
            EXPECT_TRUE(lines.contains("\"" + std::string(name) + "\"")) << name;
        }
        EXPECT_TRUE(lines.contains("\"OMFI:TRAK:LabelNumber\""));
        EXPECT_TRUE(lines.contains("\"MOBJ\""));
        for (const std::string_view name : omfClassIDs) {
            EXPECT_TRUE(lines.contains("\"" + std::string(name) + "\"")) << name;
        }
    }
}

TEST(FuzzDictionary, HoldsKeysWithTheirQuotes) {
    const auto request = linesOf("request");
    EXPECT_TRUE(request.contains(R"("\"aafPath\"")"));
    EXPECT_TRUE(request.contains(R"("\"verifyExport\"")"));
    EXPECT_TRUE(request.contains("\"null\""));
    const auto timeline = linesOf("timeline");
    EXPECT_TRUE(timeline.contains(R"("\"sourceStartSample\"")"));
    EXPECT_TRUE(timeline.contains(R"("\"leftSurround\"")"));
    EXPECT_TRUE(timeline.contains(R"("\"denominator\"")"));
}

TEST(FuzzDictionary, HasWordsInQuotesForEveryTarget) {
    for (const Target& target : targets) {
        const auto lines = linesOf(target.name);
        EXPECT_FALSE(lines.empty()) << target.name;
        for (const std::string& line : lines) {
            // The fuzzer refuses a dictionary with an empty word.
            ASSERT_GT(line.size(), 2U) << target.name;
            EXPECT_EQ(line.front(), '"') << line;
            EXPECT_EQ(line.back(), '"') << line;
        }
    }
}

}  // namespace
}  // namespace trellant::fuzzing
