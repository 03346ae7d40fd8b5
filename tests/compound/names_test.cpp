// SPDX-License-Identifier: Apache-2.0
#include "written.h"

#include <trellant_testing/byte_writer.h>

namespace trellant::compound {
namespace {

using ::testing::ElementsAre;
using Fault = CompoundError::Fault;
using NameProblem = CompoundError::NameProblem;

Fault invalid(std::u16string name, NameProblem problem) {
    return CompoundError::InvalidName{std::move(name), problem};
}

Fault faultOfName(std::u16string_view name) {
    CompoundFile file = newFile();
    return faultOf([&] { file.addStorage(Storage::root, name); });
}

/// The names in the order that a reader finds them in.
std::vector<std::u16string> sorted(const std::vector<std::u16string>& names) {
    CompoundFile file = newFile();
    for (const std::u16string& name : names) {
        file.addStorage(Storage::root, name);
    }
    return Written(file).namesIn(0);
}

/// Whether two siblings may be called so.
bool mayStandTogether(std::u16string_view one, std::u16string_view other) {
    CompoundFile file = newFile();
    file.addStorage(Storage::root, one);
    file.addStream(Storage::root, other, Bytes{});
    try {
        file.write([](ByteView) {});
    } catch (const CompoundError& error) {
        EXPECT_TRUE(std::holds_alternative<CompoundError::DuplicateName>(error.fault()));
        return false;
    }
    return true;
}

TEST(CompoundNames, MayHaveThirtyOneUnits) {
    const std::u16string name(31, u'n');
    EXPECT_THAT(sorted({name}), ElementsAre(name));
}

TEST(CompoundNames, OfThirtyTwoUnitsAreRefused) {
    const std::u16string name(32, u'n');
    EXPECT_EQ(faultOfName(name), invalid(name, NameProblem::moreThan31Units));
}

TEST(CompoundNames, EmptyOnesAreRefused) {
    EXPECT_EQ(faultOfName(u""), invalid(u"", NameProblem::empty));
}

TEST(CompoundNames, ForbiddenCharactersAreRefused) {
    const std::u16string zero(u"a\0b", 3);
    for (const std::u16string& name : {std::u16string(u"/"), std::u16string(u"a\\b"),
                                       std::u16string(u"b:"), std::u16string(u"!c"), zero}) {
        EXPECT_EQ(faultOfName(name), invalid(name, NameProblem::forbiddenCharacter));
    }
}

TEST(CompoundNames, ControlCharactersAndBlanksAreAllowed) {
    EXPECT_THAT(sorted({u"\x05Information", u" "}), ElementsAre(u" ", u"\x05Information"));
}

TEST(CompoundNames, SurrogatePairsCountAsTwoUnits) {
    std::u16string fifteenPairs;
    for (int index = 0; index < 15; ++index) {
        fifteenPairs += u"\U0001F3B5";
    }
    EXPECT_THAT(sorted({fifteenPairs + u"n"}), ElementsAre(fifteenPairs + u"n"));
    EXPECT_EQ(faultOfName(fifteenPairs + u"\U0001F3B5"),
              invalid(fifteenPairs + u"\U0001F3B5", NameProblem::moreThan31Units));
}

TEST(CompoundNames, HalvesOfSurrogatePairsAreRefused) {
    const std::u16string high(1, char16_t{0xD83C});
    const std::u16string low(1, char16_t{0xDFB5});
    for (const std::u16string& name : {high, low, u"a" + high + u"b", low + high, high + high}) {
        EXPECT_EQ(faultOfName(name), invalid(name, NameProblem::unpairedSurrogate));
    }
}

TEST(CompoundNames, ShorterOnesComeFirst) {
    EXPECT_THAT(sorted({u"aaa", u"zz", u"m", u"{10}", u"{9}"}),
                ElementsAre(u"m", u"zz", u"aaa", u"{9}", u"{10}"));
}

TEST(CompoundNames, OfOneLengthAreInTheOrderOfTheirCapitals) {
    // An underscore stands after the capitals and before the small letters.
    EXPECT_THAT(sorted({u"b", u"C", u"_", u"a", u"1"}), ElementsAre(u"1", u"a", u"b", u"C", u"_"));
}

TEST(CompoundNames, OrderOfPairsIsThatOfTheirUnits) {
    // The pair begins with D83C, before the unit FF21, though its scalar comes after it.
    EXPECT_THAT(sorted({u"\uFF21\uFF21", u"\U0001F3B5"}),
                ElementsAre(u"\U0001F3B5", u"\uFF21\uFF21"));
}

TEST(CompoundNames, DuplicatesAreRefusedWhenTheFileIsWritten) {
    CompoundFile file = newFile();
    file.addStorage(Storage::root, u"same");
    file.addStorage(Storage::root, u"other");
    file.addStream(Storage::root, u"same", Bytes{});
    bool wrote = false;
    EXPECT_EQ(faultOf([&] { file.write([&](ByteView) { wrote = true; }); }),
              Fault(CompoundError::DuplicateName{u"same"}));
    EXPECT_FALSE(wrote);
}

TEST(CompoundNames, DifferenceInCaseAloneIsNone) {
    EXPECT_FALSE(mayStandTogether(u"Properties", u"pROPERTIES"));
    EXPECT_FALSE(mayStandTogether(u"\u00E9t\u00E9", u"\u00C9T\u00C9"));
    EXPECT_FALSE(mayStandTogether(u"\u044F", u"\u042F"));
}

TEST(CompoundNames, SharpSHasNoCapitalOfOneUnit) {
    EXPECT_TRUE(mayStandTogether(u"\u00DF", u"\u1E9E"));
}

TEST(CompoundNames, AccentsMakeADifference) {
    EXPECT_TRUE(mayStandTogether(u"ete", u"\u00E9t\u00E9"));
}

TEST(CompoundNames, ErrorsNameThemForAPerson) {
    EXPECT_STREQ(CompoundError(invalid(u"a/\u00E9", NameProblem::forbiddenCharacter)).what(),
                 "compound file: the name \"a/\xC3\xA9\" contains one of / \\ : ! or a zero");
    EXPECT_STREQ(CompoundError(invalid(u"", NameProblem::empty)).what(),
                 "compound file: the name \"\" is empty");
    EXPECT_STREQ(CompoundError(invalid(u"long", NameProblem::moreThan31Units)).what(),
                 "compound file: the name \"long\" is longer than 31 units of UTF-16");
    EXPECT_STREQ(
        CompoundError(invalid(std::u16string(1, char16_t{0xD800}), NameProblem::unpairedSurrogate))
            .what(),
        "compound file: the name \"(not Unicode)\" contains half of a surrogate pair");
    EXPECT_STREQ(CompoundError(CompoundError::DuplicateName{u"x"}).what(),
                 "compound file: two entries of a storage are called \"x\"");
}

}  // namespace
}  // namespace trellant::compound
