#include <trellant/model/enum_names.h>
#include <trellant/model/precondition.h>
#include <trellant/model/printable_text.h>
#include <trellant/model/stem_role.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <optional>
#include <string>
#include <string_view>

namespace trellant {
namespace {

using namespace std::string_view_literals;
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

TEST(PrintableText, CleanTextStays) {
    EXPECT_EQ(printableText("a \"b\" \xC3\xBC \xE2\x82\xAC \xF0\x9F\x8E\xB5"),
              "a \"b\" \xC3\xBC \xE2\x82\xAC \xF0\x9F\x8E\xB5");
}

TEST(PrintableText, ControlCharactersAreSpelledOut) {
    EXPECT_EQ(printableText("a\nb\x01\x1f\x7f\0c"sv), "a\\u000ab\\u0001\\u001f\\u007f\\u0000c");
}

TEST(PrintableText, BrokenBytesAreReplacedOneByOne) {
    EXPECT_EQ(printableText("a\xFF\xC3"), "a\xEF\xBF\xBD\xEF\xBF\xBD");
}

TEST(PrintableText, LongTextIsCutAtACharacter) {
    EXPECT_EQ(printableText("abcdef", 6), "abcdef");
    EXPECT_EQ(printableText("abcdef", 5), "abcde...");
    EXPECT_EQ(printableText("abcd\xC3\xBC", 5), "abcd...");
}

TEST(WellFormedText, AcceptsTheBordersOfEveryForm) {
    EXPECT_TRUE(
        isWellFormedText("\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xED\x9F\xBF\xEE\x80\x80"
                         "\xEF\xBF\xBF\xF0\x90\x80\x80\xF4\x8F\xBF\xBF"));
    EXPECT_TRUE(isWellFormedText(""));
}

TEST(WellFormedText, RefusesWhatLiesOutside) {
    for (const std::string_view text :
         {"\x80"sv, "\xC0\x80"sv, "\xC1\xBF"sv, "\xC2"sv, "\xC2\x7F"sv, "\xE0\x9F\xBF"sv,
          "\xED\xA0\x80"sv, "\xE2\x82"sv, "\xE2\x82\xC0"sv, "\xF0\x8F\xBF\xBF"sv,
          "\xF4\x90\x80\x80"sv, "\xF5\x80\x80\x80"sv, "\xF0\x9F\x8E"sv, "\xFF"sv}) {
        EXPECT_FALSE(isWellFormedText(text)) << printableText(text);
        EXPECT_EQ(utf8SequenceLength(text), 0U);
    }
}

TEST(PreconditionDeathTest, WritesItsMessageAndAborts) {
    EXPECT_EXIT(precondition(false, "the reason"), testing::KilledBySignal(SIGABRT),
                testing::Eq("precondition failed: the reason\n"));
    precondition(true, "never seen");
}

TEST(EnumNamesDeathTest, ANumberThatIsNoCaseStopsTheProcess) {
    EXPECT_DEATH((void)rawValue(static_cast<AAFStemRole>(5)),
                 testing::Eq("precondition failed: enumeration value outside its cases\n"));
}

}  // namespace
}  // namespace trellant
