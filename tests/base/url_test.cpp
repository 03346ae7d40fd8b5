// SPDX-License-Identifier: Apache-2.0
#include <trellant/base/url.h>

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <string_view>

namespace trellant {
namespace {

using namespace std::string_view_literals;

TEST(AbsolutePath, AbsoluteStaysAsWritten) {
    EXPECT_EQ(absolutePath("/a/./b/../c//d/", "/srv"), "/a/./b/../c//d/");
}

TEST(AbsolutePath, RelativeIsTakenAgainstTheCurrentDirectory) {
    EXPECT_EQ(absolutePath("film.omf", "/srv/jobs"), "/srv/jobs/film.omf");
    EXPECT_EQ(absolutePath("film.omf", "/"), "/film.omf");
}

TEST(AbsolutePath, EmptyIsTheCurrentDirectory) {
    EXPECT_EQ(absolutePath("", "/srv/jobs"), "/srv/jobs");
    EXPECT_EQ(absolutePath("", "/"), "/");
}

TEST(AbsolutePath, DotsAreRemovedFromRelativePaths) {
    EXPECT_EQ(absolutePath("./a/../b/.", "/srv"), "/srv/b");
    EXPECT_EQ(absolutePath("../../../x", "/srv/jobs"), "/x");
    EXPECT_EQ(absolutePath("..", "/srv"), "/");
    EXPECT_EQ(absolutePath("a//b/", "/srv"), "/srv/a/b");
    EXPECT_EQ(absolutePath(".hidden/...", "/srv"), "/srv/.hidden/...");
}

TEST(FileURL, KeepsUnreservedCharacters) {
    constexpr auto path = "/AZaz09!$&'()*+,-./:=@_~"sv;
    EXPECT_EQ(fileURL(path).text, "file:///AZaz09!$&'()*+,-./:=@_~");
}

TEST(FileURL, EncodesEverythingElseInUpperCaseHex) {
    EXPECT_EQ(fileURL("/a b;c%d?e#f\"g[h]").text, "file:///a%20b%3Bc%25d%3Fe%23f%22g%5Bh%5D");
    EXPECT_EQ(fileURL("/\xC3\xBC\xFF\x01\x7F").text, "file:///%C3%BC%FF%01%7F");
}

TEST(FileURL, PathOfFileURLIsItsInverse) {
    std::string path = "/";
    for (int byte = 1; byte < 256; ++byte) {
        path.push_back(static_cast<char>(byte));
    }
    EXPECT_EQ(pathOfFileURL(fileURL(path).text), path);
}

TEST(PathOfFileURL, AcceptsEmptyHostLocalhostAndNone) {
    EXPECT_EQ(pathOfFileURL("file:///a/b.wav"), "/a/b.wav");
    EXPECT_EQ(pathOfFileURL("file://localhost/a/b.wav"), "/a/b.wav");
    EXPECT_EQ(pathOfFileURL("file://LOCALHOST/a/b.wav"), "/a/b.wav");
    EXPECT_EQ(pathOfFileURL("file:/a/b.wav"), "/a/b.wav");
}

TEST(PathOfFileURL, AcceptsTheSchemeInAnyCase) {
    EXPECT_EQ(pathOfFileURL("FILE:///a"), "/a");
    EXPECT_EQ(pathOfFileURL("fIlE:///a"), "/a");
}

TEST(PathOfFileURL, DecodesEscapesAndAcceptsRawBlanks) {
    EXPECT_EQ(pathOfFileURL("file:///a%20b c%2f%C3%bc"), "/a b c/\xC3\xBC");
}

TEST(PathOfFileURL, CutsQueryAndFragment) {
    EXPECT_EQ(pathOfFileURL("file:///a.wav?x#y"), "/a.wav");
    EXPECT_EQ(pathOfFileURL("file:///a.wav#y?x"), "/a.wav");
    EXPECT_EQ(pathOfFileURL("file:///a%3Fb%23c"), "/a?b#c");
}

TEST(PathOfFileURL, RefusesOtherTexts) {
    EXPECT_EQ(pathOfFileURL(""), std::nullopt);
    EXPECT_EQ(pathOfFileURL("file"), std::nullopt);
    EXPECT_EQ(pathOfFileURL("file:"), std::nullopt);
    EXPECT_EQ(pathOfFileURL("file://"), std::nullopt);
    EXPECT_EQ(pathOfFileURL("file:a"), std::nullopt);
    EXPECT_EQ(pathOfFileURL("/a/b.wav"), std::nullopt);
    EXPECT_EQ(pathOfFileURL("http://localhost/a"), std::nullopt);
    EXPECT_EQ(pathOfFileURL("file://server/a"), std::nullopt);
    EXPECT_EQ(pathOfFileURL("file://localhost"), std::nullopt);
}

TEST(PathOfFileURL, RefusesBrokenEscapesAndNuls) {
    EXPECT_EQ(pathOfFileURL("file:///a%2"), std::nullopt);
    EXPECT_EQ(pathOfFileURL("file:///a%"), std::nullopt);
    EXPECT_EQ(pathOfFileURL("file:///a%g0"), std::nullopt);
    EXPECT_EQ(pathOfFileURL("file:///a%0g"), std::nullopt);
    EXPECT_EQ(pathOfFileURL("file:///a%00b"), std::nullopt);
    EXPECT_EQ(pathOfFileURL("file:///a\0b"sv), std::nullopt);
}

TEST(PathOfFileURL, LooksAtNothingBeyondItsView) {
    constexpr auto longer = "file:///a%41%42"sv;
    ASSERT_EQ(pathOfFileURL(longer), "/aAB");
    EXPECT_EQ(pathOfFileURL(longer.substr(0, longer.size() - 1)), std::nullopt);
    EXPECT_EQ(pathOfFileURL(longer.substr(0, longer.size() - 2)), std::nullopt);
    EXPECT_EQ(pathOfFileURL(longer.substr(0, longer.size() - 3)), "/aA");
    EXPECT_EQ(pathOfFileURL(longer.substr(0, 4)), std::nullopt);
}

TEST(RelativeFileURL, NamesAFileInTheSameFolderByItsName) {
    EXPECT_EQ(relativeFileURL("/srv/mix-audio/Rain_ garden.wav", "/srv/mix-audio").text,
              "Rain_%20garden.wav");
}

TEST(RelativeFileURL, GoesUpAndDownFromTheFolder) {
    EXPECT_EQ(relativeFileURL("/srv/mix.omf", "/srv/out/audio").text, "../../mix.omf");
    EXPECT_EQ(relativeFileURL("/srv/out/sub/a.wav", "/srv/out").text, "sub/a.wav");
    EXPECT_EQ(relativeFileURL("/a.wav", "/").text, "a.wav");
}

TEST(RelativeFileURL, IsNeverTakenForAScheme) {
    EXPECT_EQ(relativeFileURL("/srv/file:a.wav", "/srv").text, "./file:a.wav");
    EXPECT_EQ(relativeFileURL("/srv/b/file:a.wav", "/srv").text, "b/file:a.wav");
}

TEST(PathOfReference, LeadsBackToTheFile) {
    for (const auto path : {"/srv/out/Rain_ garden.wav"sv, "/srv/mix.omf"sv,
                            "/srv/out/file:a.wav"sv, "/x/100% \xC3\xA9?#.wav"sv}) {
        EXPECT_EQ(pathOfReference(relativeFileURL(path, "/srv/out").text, "/srv/out"), path);
        EXPECT_EQ(pathOfReference(fileURL(path).text, "/srv/out"), path);
    }
}

TEST(PathOfReference, IsAbsentForOtherSchemesAndBrokenTexts) {
    EXPECT_EQ(pathOfReference("http://host/a.wav", "/srv"), std::nullopt);
    EXPECT_EQ(pathOfReference("a%2.wav", "/srv"), std::nullopt);
    EXPECT_EQ(pathOfReference("a%00.wav", "/srv"), std::nullopt);
}

}  // namespace
}  // namespace trellant
