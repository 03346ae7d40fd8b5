// SPDX-License-Identifier: Apache-2.0
// The texts for a person, in the languages that are shipped. A program of its own shows them, so
// that the environment is nothing but what the test says.
#include "host_program.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <trellant_testing/temporary_directory.h>
#include <vector>

namespace trellant::testing {

namespace {

/// The whole output of the speaking host.
std::string spoken(const std::string& names, const std::string& failed,
                   const std::string& missing) {
    return names + failed + " | helper launch failed: no room\n" + failed +
           " | helper exited with 2: line\n" + failed +
           " | helper returned an invalid response: cut\n" + missing +
           " | bundled AAF helper missing\n";
}

std::string english() {
    return spoken("Music\nSounds\nVoice\nOther\nOther\n",
                  "The interchange file could not be read. The log has the details.",
                  "The part that reads interchange files is missing. Please install the "
                  "application again.");
}

std::string german() {
    return spoken("Musik\nGeräusche\nSprache\nSonstiges\nSonstiges\n",
                  "Die Austauschdatei konnte nicht gelesen werden. Einzelheiten stehen im "
                  "Protokoll.",
                  "Der Programmteil, der Austauschdateien liest, fehlt. Bitte installieren Sie "
                  "die Anwendung neu.");
}

/// A host that takes its language from the environment: a locale that every system has, so that
/// only LANGUAGE tells the language.
std::string spokenIn(const std::string& language,
                     const std::string& catalogues = TRELLANT_CATALOGUES) {
    return outputOfProgram({TRELLANT_SPEAKING_HOST, "locale", catalogues},
                           {"LC_ALL=C.UTF-8", "LANGUAGE=" + language});
}

TEST(Languages, GermanIsSpokenInGerman) {
    EXPECT_EQ(spokenIn("de"), german());
}

TEST(Languages, GermanOfAnyCountryIsSpokenInGerman) {
    EXPECT_EQ(spokenIn("de_AT.UTF-8"), german());
}

TEST(Languages, EnglishIsSpokenInEnglish) {
    EXPECT_EQ(spokenIn("en"), english());
}

TEST(Languages, LanguageWithoutCatalogueIsSpokenInEnglish) {
    EXPECT_EQ(spokenIn("fr"), english());
}

TEST(Languages, FirstLanguageWithACatalogueIsSpoken) {
    EXPECT_EQ(spokenIn("fr:de:en"), german());
    EXPECT_EQ(spokenIn("fr:en:de"), english());
}

TEST(Languages, EmptyCatalogueFolderSpeaksEnglish) {
    const TemporaryDirectory empty;
    EXPECT_EQ(spokenIn("de", empty.path().string()), english());
}

TEST(Languages, MissingCatalogueFolderSpeaksEnglish) {
    const TemporaryDirectory empty;
    EXPECT_EQ(spokenIn("de", empty.file("missing")), english());
}

TEST(Languages, HostThatSetsNoLocaleSpeaksEnglish) {
    EXPECT_EQ(outputOfProgram({TRELLANT_SPEAKING_HOST, "plain", TRELLANT_CATALOGUES},
                              {"LC_ALL=C.UTF-8", "LANGUAGE=de"}),
              english());
}

TEST(Languages, LocaleWithoutLanguageSpeaksEnglish) {
    EXPECT_EQ(outputOfProgram({TRELLANT_SPEAKING_HOST, "locale", TRELLANT_CATALOGUES},
                              {"LC_ALL=C", "LANGUAGE=de"}),
              english());
}

TEST(Languages, CataloguesOfAnyPrefixAreFoundFromItsExecutables) {
    const TemporaryDirectory prefix;
    std::filesystem::create_directory(prefix.file("bin"));
    std::filesystem::create_directory(prefix.file("share"));
    std::filesystem::copy_file(TRELLANT_SPEAKING_HOST, prefix.file("bin/host"));
    std::filesystem::copy(TRELLANT_CATALOGUES, prefix.file("share/locale"),
                          std::filesystem::copy_options::recursive);
    EXPECT_EQ(
        outputOfProgram({prefix.file("bin/host"), "locale"}, {"LC_ALL=C.UTF-8", "LANGUAGE=de"}),
        german());
}

}  // namespace

}  // namespace trellant::testing
