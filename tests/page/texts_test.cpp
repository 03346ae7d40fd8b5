// SPDX-License-Identifier: Apache-2.0
#include "say.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace trellant::page {

namespace {

/// All files that the page is made of, but the table of the texts itself.
std::string sources() {
    std::ostringstream all;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(TRELLANT_PAGE_SOURCES)) {
        const std::filesystem::path& path = entry.path();
        if (entry.is_regular_file() && path.filename() != "page_texts.cpp") {
            std::ifstream file(path, std::ios::binary);
            all << file.rdbuf();
        }
    }
    return all.str();
}

std::string nameOf(const PageText& text) {
    return std::string(text.key).substr(std::string_view("page.").size());
}

TEST(PageTexts, AreInOrderSoThatTheyAreFound) {
    const auto texts = pageTexts();
    EXPECT_TRUE(
        std::is_sorted(texts.begin(), texts.end(), [](const PageText& left, const PageText& right) {
            return std::string_view(left.key) < right.key;
        }));
}

TEST(PageTexts, EachIsSaidSomewhere) {
    const std::string all = sources();
    for (const PageText& text : pageTexts()) {
        const std::string name = nameOf(text);
        EXPECT_TRUE(all.find("\"" + name + "\"") != std::string::npos ||
                    all.find("{{say " + name + "}}") != std::string::npos)
            << name;
    }
}

TEST(PageTexts, ThoseOfTheScriptAreThere) {
    const std::string all = sources();
    constexpr std::string_view call = "say(\"";
    std::size_t found = 0;
    for (auto at = all.find(call); at != std::string::npos; at = all.find(call, at + 1)) {
        const auto begin = at + call.size();
        const std::string name = all.substr(begin, all.find('"', begin) - begin);
        const auto texts = pageTexts();
        EXPECT_TRUE(std::any_of(texts.begin(), texts.end(), [&name](const PageText& text) {
            return nameOf(text) == name;
        })) << name;
        ++found;
    }
    EXPECT_GT(found, 40U);
}

TEST(PageTexts, ValueTakesItsPlace) {
    EXPECT_EQ(say("bits", "24"), "24 bits");
}

TEST(PageTexts, SentenceWithoutATranslationStaysAsItIs) {
    EXPECT_EQ(saySentence("No catalogue has this."), "No catalogue has this.");
    EXPECT_EQ(saySentence(""), "");
}

}  // namespace

}  // namespace trellant::page
