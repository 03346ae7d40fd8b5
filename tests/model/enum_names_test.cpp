// SPDX-License-Identifier: Apache-2.0
#include <trellant/model/enum_names.h>
#include <trellant/model/stem_role.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace trellant {
namespace {

using testing::ElementsAre;

TEST(EnumNames, StemRolesHaveTheirRawValues) {
    std::vector<std::string_view> names;
    for (const AAFStemRole role : allStemRoles) {
        names.push_back(rawValue(role));
        EXPECT_EQ(stemRole(rawValue(role)), role);
    }
    EXPECT_THAT(names, ElementsAre("music", "sounds", "voice", "other", "unclassified"));
    EXPECT_EQ(stemRole("Music"), std::nullopt);
    EXPECT_EQ(stemRole(""), std::nullopt);
}

TEST(EnumNames, ChannelRolesHaveTheirRawValues) {
    EXPECT_EQ(rawValue(AAFChannelRole::mono), "mono");
    EXPECT_EQ(rawValue(AAFChannelRole::left), "left");
    EXPECT_EQ(rawValue(AAFChannelRole::right), "right");
    EXPECT_EQ(rawValue(AAFChannelRole::center), "center");
    EXPECT_EQ(rawValue(AAFChannelRole::lfe), "lfe");
    EXPECT_EQ(rawValue(AAFChannelRole::leftSurround), "leftSurround");
    EXPECT_EQ(rawValue(AAFChannelRole::rightSurround), "rightSurround");
    EXPECT_EQ(rawValue(AAFChannelRole::unknown), "unknown");
    EXPECT_EQ(channelRole("lfe"), AAFChannelRole::lfe);
    EXPECT_EQ(channelRole("LFE"), std::nullopt);
}

TEST(EnumNames, DirectionsAndSeveritiesHaveTheirRawValues) {
    EXPECT_EQ(rawValue(AAFFade::Direction::fadeIn), "fadeIn");
    EXPECT_EQ(rawValue(AAFFade::Direction::fadeOut), "fadeOut");
    EXPECT_EQ(fadeDirection("crossfade"), AAFFade::Direction::crossfade);
    EXPECT_EQ(fadeDirection("crossfade "), std::nullopt);
    EXPECT_EQ(rawValue(AAFUnsupportedFeature::Severity::informational), "informational");
    EXPECT_EQ(featureSeverity("renderAffecting"), AAFUnsupportedFeature::Severity::renderAffecting);
    EXPECT_EQ(featureSeverity("fatal"), std::nullopt);
}

TEST(StemRole, UnclassifiedIsNoOutputRole) {
    EXPECT_THAT(ausgaberollen, ElementsAre(AAFStemRole::music, AAFStemRole::sounds,
                                           AAFStemRole::voice, AAFStemRole::other));
}

TEST(StemRole, UnclassifiedSharesTheDisplayNameOfOther) {
    EXPECT_EQ(anzeigenameKey(AAFStemRole::music), "aaf.stem.music");
    EXPECT_EQ(anzeigenameKey(AAFStemRole::sounds), "aaf.stem.sounds");
    EXPECT_EQ(anzeigenameKey(AAFStemRole::voice), "aaf.stem.voice");
    EXPECT_EQ(anzeigenameKey(AAFStemRole::other), "aaf.stem.other");
    EXPECT_EQ(anzeigenameKey(AAFStemRole::unclassified), "aaf.stem.other");
    EXPECT_EQ(anzeigename(AAFStemRole::music), "Music");
    EXPECT_EQ(anzeigename(AAFStemRole::sounds), "Sounds");
    EXPECT_EQ(anzeigename(AAFStemRole::voice), "Voice");
    EXPECT_EQ(anzeigename(AAFStemRole::other), "Other");
    EXPECT_EQ(anzeigename(AAFStemRole::unclassified), "Other");
}

TEST(StemRole, NamesAreTheSameInEnglish) {
    EXPECT_EQ(&outputRoles, &ausgaberollen);
    for (const AAFStemRole role : allStemRoles) {
        EXPECT_EQ(displayNameKey(role), anzeigenameKey(role));
        EXPECT_EQ(displayName(role), anzeigename(role));
    }
}

TEST(EnumNamesDeathTest, ANumberThatIsNoCaseStopsTheProcess) {
    EXPECT_DEATH((void)rawValue(static_cast<AAFStemRole>(5)),
                 testing::Eq("precondition failed: enumeration value outside its cases\n"));
}

}  // namespace
}  // namespace trellant
