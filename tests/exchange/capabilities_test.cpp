// SPDX-License-Identifier: Apache-2.0
#include <trellant/exchange/capabilities.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace trellant::exchange {
namespace {

TEST(Capabilities, FormatsHaveTheWordsOfTheCommandLine) {
    EXPECT_EQ(formatWord(ExportFormat::aaf), "aaf");
    EXPECT_EQ(formatWord(ExportFormat::otioz), "otioz");
    EXPECT_EQ(formatWord(ExportFormat::markers), "markers");
    EXPECT_EQ(formatOfWord("reaper"), ExportFormat::reaper);
    EXPECT_EQ(formatOfWord("dawproject"), ExportFormat::dawproject);
    EXPECT_EQ(formatOfWord("AAF"), std::nullopt);
    EXPECT_EQ(formatOfWord(""), std::nullopt);
}

TEST(Capabilities, AnArchiveCarriesWhatItsSessionCarries) {
    for (std::size_t i = 0; i < featureCount; ++i) {
        const auto feature = static_cast<Feature>(i);
        EXPECT_EQ(capability(ExportFormat::otio, feature).carriage,
                  capability(ExportFormat::otioz, feature).carriage)
            << featureText(feature);
    }
}

TEST(Capabilities, EveryLimitAndDetourIsExplained) {
    for (std::size_t i = 0; i < featureCount; ++i) {
        for (std::size_t k = 0; k < exportFormatCount; ++k) {
            const auto feature = static_cast<Feature>(i);
            const auto format = static_cast<ExportFormat>(k);
            const Capability& cell = capability(format, feature);
            if (cell.carriage == Carriage::limited || cell.carriage == Carriage::detour) {
                EXPECT_FALSE(cell.note.empty())
                    << formatWord(format) << ' ' << featureText(feature);
            }
        }
    }
}

TEST(Capabilities, TheTableHasARowForEachFeature) {
    const std::string table = capabilityTable();
    for (std::size_t i = 0; i < featureCount; ++i) {
        const std::string head = "\n| " + std::string(featureText(static_cast<Feature>(i))) + " |";
        EXPECT_THAT(table, ::testing::HasSubstr(head));
    }
    EXPECT_THAT(table,
                ::testing::StartsWith("| | AAF | OTIO, otioz | REAPER | DAWproject | Markers |\n"));
    EXPECT_THAT(table, ::testing::HasSubstr(
                           "| soloed tracks | lost: all tracks sound | metadata only | "
                           "carried | carried | lost: places and names of clips only |\n"));
}

}  // namespace
}  // namespace trellant::exchange
