// SPDX-License-Identifier: Apache-2.0
// Names that a stranger gave to embedded audio, and the files that they become.
#include "places_fixture.h"

#include <gmock/gmock.h>

namespace trellant::testing {

namespace {

using ::testing::ElementsAre;

struct Naming {
    std::optional<std::string> name{};
    std::string file{};
};

class EmbeddedNames : public PlacesTest {
  protected:
    /// All sources in one composition, in this order: each becomes its file, and nothing else is
    /// made.
    void expectNames(const std::vector<Naming>& namings) {
        std::map<std::string, Bytes> expected;
        for (const Naming& naming : namings) {
            addEmbedded(naming.name);
            const bool isNew =
                expected
                    .emplace(naming.file, audioOf(static_cast<std::uint32_t>(expected.size() + 1)))
                    .second;
            EXPECT_TRUE(isNew) << naming.file;
        }
        EXPECT_EQ(extract().timeline.essences.size(), namings.size());
        EXPECT_EQ(filesInWork(), expected);
        EXPECT_THAT(besideWork(), ElementsAre("places.omf", "search", "work"));
    }
};

TEST_F(EmbeddedNames, ThatTryToLeaveTheWorkDirectoryStayInIt) {
    expectNames({{"../../up", "up.wav"},
                 {"/etc/passwd", "passwd.wav"},
                 {"//host/share/x", "x.wav"},
                 {"file:///etc/shadow", "shadow.wav"},
                 {"folder/..", "...wav"},
                 {"..", ".._2.wav"},
                 {".", "..wav"},
                 {"/", "_.wav"},
                 {"~", "__2.wav"},
                 {"name/", "name.wav"},
                 // What follows the last dot goes as an extension.
                 {"..\\..\\up", ".._..wav"},
                 {"C:\\Windows\\system.ini", "C__Windows_system.wav"}});
}

TEST_F(EmbeddedNames, ThatLookLikeSeparatorsAreNone) {
    // Full-width, division and fraction slash.
    expectNames({{"a\uFF0Fb", "a_b.wav"}, {"a\u2215b", "a_b_2.wav"}, {"a\u2044b", "a_b_3.wav"}});
}

TEST_F(EmbeddedNames, EndAtANul) {
    expectNames({{std::string("Kick\0/../../up", 14), "Kick.wav"}});
}

TEST_F(EmbeddedNames, LoseControlCharactersAndMarksOfDirection) {
    expectNames({{"\x01\x1B[2J\x7F", "___2J_.wav"},
                 {"line\nTRELLANT-AAF-PROGRESS {}", "line_TRELLANT-AAF-PROGRESS __.wav"},
                 // Shown from right to left, the tail reads as another extension.
                 {"Kick\u202Evaw.exe", "Kick_vaw.wav"},
                 {"\u2066Kick\u2069", "_Kick_.wav"},
                 {"zero\u200Bwidth", "zero_width.wav"}});
}

TEST_F(EmbeddedNames, OfOtherSystemsDevicesAreNamesLikeOthers) {
    expectNames({{"CON", "CON.wav"},
                 {"NUL.txt", "NUL.wav"},
                 {"COM1", "COM1.wav"},
                 {"aux ", "aux .wav"},
                 {"Kick.", "Kick..wav"},
                 {"stream:data", "stream_data.wav"}});
}

TEST_F(EmbeddedNames, MeanNothingToAShell) {
    expectNames({{"-rf", "-rf.wav"},
                 {"$(reboot)", "__reboot_.wav"},
                 {"`a`;b|c&d", "_a__b_c_d.wav"},
                 {"*", "_.wav"}});
}

TEST_F(EmbeddedNames, ThatDifferInCaseOrNormalFormAreDifferentFiles) {
    expectNames({{"KICK", "KICK.wav"},
                 {"Kick", "Kick.wav"},
                 {"kick", "kick.wav"},
                 {"caf\u00E9", "caf\u00E9.wav"},
                 {"cafe\u0301", "cafe\u0301.wav"}});
}

TEST_F(EmbeddedNames, ThatAreNoUtf8AreLatin1) {
    expectNames({{"\xFF\xFE", "\u00FF\u00FE.wav"}, {"\xC3/\xE9", "\u00E9.wav"}});
}

TEST_F(EmbeddedNames, ThatAreMissingOrEmptyAreIdentifiers) {
    expectNames({{std::nullopt, "OMF_00000001-00000000-00000000.wav"},
                 {"", "OMF_00000002-00000000-00000000.wav"}});
}

TEST_F(EmbeddedNames, TwoThousandOfOneNameAreNumberedTo999AndThenReplaceTheFirst) {
    constexpr std::uint32_t sources = 2'000;
    constexpr std::uint32_t lastNumber = 999;
    for (std::uint32_t source = 0; source < sources; ++source) {
        addEmbedded("Same.wav");
    }
    std::map<std::string, Bytes> expected{{"Same.wav", audioOf(sources)}};
    for (std::uint32_t number = 2; number <= lastNumber; ++number) {
        expected["Same_" + std::to_string(number) + ".wav"] = audioOf(number);
    }
    const auto result = extract();
    EXPECT_EQ(filesInWork(), expected);
    ASSERT_EQ(result.timeline.essences.size(), sources);
    EXPECT_EQ(result.timeline.essences[lastNumber - 1].fileURL,
              AAFURL{"file://" + work("Same_999.wav")});
    for (std::size_t essence = lastNumber; essence < sources; ++essence) {
        EXPECT_EQ(result.timeline.essences[essence].fileURL, AAFURL{"file://" + work("Same.wav")});
    }
}

}  // namespace

}  // namespace trellant::testing
