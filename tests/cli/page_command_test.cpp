// SPDX-License-Identifier: Apache-2.0
// `trellant page` as people meet it: the real executable with worker and converter.
#include "said.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <trellant_testing/temporary_directory.h>
#include <unistd.h>
#include <vector>

namespace trellant::testing {
namespace {

namespace fs = std::filesystem;

using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;
using ::testing::UnorderedElementsAre;

class PageCommand : public ::testing::Test {
  protected:
    /// Runs the command in the folder of the examples.
    static Said run(const std::vector<std::string>& arguments) {
        return saidWithStatus({}, [&arguments](cli::Console&) {
            std::vector<std::string> all{TRELLANT_COMMAND};
            all.insert(all.end(), arguments.begin(), arguments.end());
            std::vector<char*> pointers;
            for (std::string& argument : all) {
                pointers.push_back(argument.data());
            }
            pointers.push_back(nullptr);
            if (::chdir(TRELLANT_EXAMPLES) == 0) {
                ::execv(TRELLANT_COMMAND, pointers.data());
            }
            return 127;
        });
    }
    [[nodiscard]] std::string path(const std::string& name) const { return folder_.file(name); }
    [[nodiscard]] std::string content(const std::string& name) const {
        std::ifstream file(path(name), std::ios::binary);
        std::ostringstream text;
        text << file.rdbuf();
        return text.str();
    }
    [[nodiscard]] std::vector<std::string> names(const std::string& folder) const {
        std::vector<std::string> found;
        for (const auto& entry : fs::directory_iterator(path(folder))) {
            found.push_back(entry.path().filename().native());
        }
        return found;
    }

    TemporaryDirectory folder_;
};

TEST_F(PageCommand, WritesAPageAndSaysWhere) {
    const Said said = run({"page", "session.omf", "-o", path("a.html")});
    EXPECT_EQ(said.status, 0);
    EXPECT_EQ(said.errors, "");
    EXPECT_THAT(said.out, StartsWith("session.omf -> " + path("a.html") + " ("));
    EXPECT_THAT(said.out, EndsWith(" kB)\n"));
    const std::string page = content("a.html");
    EXPECT_THAT(page, StartsWith("<!DOCTYPE html>\n<html lang=\"en\">\n"));
    EXPECT_THAT(page, EndsWith("</html>\n"));
    EXPECT_THAT(page, HasSubstr("<h1>Scene 12</h1><p class=\"file\">session.omf</p>"));
    // By sha256sum.
    EXPECT_THAT(page,
                HasSubstr("84ab116ea3bc40d22a741a6e7166117f33840ceebc6e73ed2077bdc7c8712901"));
    EXPECT_THAT(names("."), UnorderedElementsAre("a.html"));
}

TEST_F(PageCommand, SameFileGivesTheSameBytes) {
    EXPECT_EQ(run({"page", "session.omf", "-o", path("a.html")}).status, 0);
    EXPECT_EQ(run({"page", "session.omf", "-o", path("b.html")}).status, 0);
    EXPECT_TRUE(content("a.html") == content("b.html"));
}

TEST_F(PageCommand, GoesToStandardOutputWhenAsked) {
    const Said said = run({"page", "session.omf", "-o", "-", "--no-audio"});
    EXPECT_EQ(said.status, 0);
    EXPECT_THAT(said.out, StartsWith("<!DOCTYPE html>"));
    EXPECT_THAT(said.out, EndsWith("</html>\n"));
}

TEST_F(PageCommand, ReplacesNothingUnasked) {
    std::ofstream(path("a.html")) << "mine";
    const Said refused = run({"page", "session.omf", "-o", path("a.html")});
    EXPECT_EQ(refused.status, 1);
    EXPECT_EQ(refused.errors, "trellant: " + path("a.html") +
                                  " is there already. Name another file, or replace it with "
                                  "--force\n");
    EXPECT_EQ(content("a.html"), "mine");
    EXPECT_EQ(run({"page", "session.omf", "-o", path("a.html"), "--force"}).status, 0);
    EXPECT_THAT(content("a.html"), StartsWith("<!DOCTYPE html>"));
}

TEST_F(PageCommand, NeverReplacesTheFileThatItReads) {
    fs::copy_file(fs::path(TRELLANT_EXAMPLES) / "session.omf", path("mix.omf"));
    const Said said = run({"page", path("mix.omf"), "-o", path("mix.omf"), "--force"});
    EXPECT_EQ(said.status, 1);
    EXPECT_EQ(said.errors, "trellant: " + path("mix.omf") +
                               " is a file that is read. Name another file for the output\n");
    EXPECT_THAT(content("mix.omf"), Not(StartsWith("<!DOCTYPE")));
}

TEST_F(PageCommand, OfSeveralFilesWritesAFolderWithAnIndex) {
    fs::create_directory(path("other"));
    fs::copy_file(fs::path(TRELLANT_EXAMPLES) / "session.omf", path("other/Session.omf"));
    const Said said = run({"page", "session.omf", "archive.omf", path("other/Session.omf"), "-o",
                           path("pages"), "--no-audio"});
    EXPECT_EQ(said.status, 0) << said.errors;
    EXPECT_THAT(names("pages"), UnorderedElementsAre("index.html", "session.html", "archive.html",
                                                     "Session_2.html"));
    EXPECT_THAT(content("pages/index.html"),
                HasSubstr("<a href=\"Session_2.html\">Session.omf</a><td>Scene 12<td>"));
}

TEST_F(PageCommand, FileThatCannotBeReadKeepsItsRow) {
    std::ofstream(path("bad.omf")) << "no such thing";
    const Said said =
        run({"page", path("bad.omf"), "session.omf", "-o", path("pages"), "--no-audio"});
    EXPECT_EQ(said.status, 2);
    EXPECT_THAT(names("pages"), UnorderedElementsAre("index.html", "session.html"));
    EXPECT_THAT(content("pages/index.html"), HasSubstr("bad.omf<td>Could not be read: "));
}

TEST_F(PageCommand, SeveralPagesNeedAFolder) {
    const Said said = run({"page", "session.omf", "archive.omf", "-o", "-"});
    EXPECT_EQ(said.status, 1);
    EXPECT_EQ(said.errors, "trellant: several pages need a folder: name one with -o\n");
}

TEST_F(PageCommand, FoldersThatAreNotThereAreWrongUse) {
    const Said media =
        run({"page", "session.omf", "-o", path("a.html"), "--media", path("nowhere")});
    EXPECT_EQ(media.status, 1);
    EXPECT_EQ(media.errors,
              "trellant: there is no folder " + path("nowhere") + " to look for audio files in\n");
    const Said extracted =
        run({"page", "session.omf", "-o", path("a.html"), "--media-folder", path("nowhere")});
    EXPECT_EQ(extracted.status, 1);
    EXPECT_EQ(extracted.errors,
              "trellant: there is no folder " + path("nowhere") + " to link to\n");
}

TEST_F(PageCommand, SpeaksGermanWhenAsked) {
    EXPECT_EQ(run({"page", "session.omf", "-o", path("a.html"), "--language", "de"}).status, 0);
    EXPECT_THAT(content("a.html"), HasSubstr("<html lang=\"de\">"));
    EXPECT_THAT(content("a.html"), HasSubstr("Diese Strecke ist still: der Effekt auf ihr ist "
                                             "nicht bekannt."));
}

TEST_F(PageCommand, HoldsNoMoreSoundThanItMay) {
    EXPECT_EQ(run({"page", "session.omf", "-o", path("a.html"), "--preview-size", "0"}).status, 0);
    EXPECT_THAT(content("a.html"), HasSubstr("id=\"previews\">[]</script>"));
    EXPECT_THAT(content("a.html"), Not(HasSubstr("id=\"waves\">[]</script>")));
    EXPECT_EQ(run({"page", "session.omf", "-o", path("b.html"), "--no-audio"}).status, 0);
    EXPECT_THAT(content("b.html"), HasSubstr("id=\"waves\">[]</script>"));
}

TEST_F(PageCommand, LinksToWhatExtractWrote) {
    EXPECT_EQ(run({"extract", "session.omf", "--to", path("audio"), "-q"}).status, 0);
    EXPECT_EQ(
        run({"page", "session.omf", "-o", path("a.html"), "--media-folder", path("audio")}).status,
        0);
    EXPECT_THAT(content("a.html"), HasSubstr("<a href=\"audio/Voice_Anna.wav\">Full file</a>"));
    EXPECT_THAT(content("a.html"), HasSubstr("<a href=\"audio/Rain_%20garden.wav\">Full file</a>"));
}

TEST_F(PageCommand, FolderThatExtractDidNotWriteIsTold) {
    const Said said = run(
        {"page", "session.omf", "-o", path("a.html"), "--media-folder", path("."), "--no-audio"});
    EXPECT_EQ(said.status, 2);
    EXPECT_THAT(said.errors,
                HasSubstr("--media-folder needs a folder that trellant extract has written: "));
    EXPECT_FALSE(fs::exists(path("a.html")));
}

TEST_F(PageCommand, TellsScriptsOfLosses) {
    EXPECT_EQ(
        run({"page", "session.omf", "-o", path("a.html"), "--no-audio", "--fail-on", "any"}).status,
        3);
    EXPECT_TRUE(fs::exists(path("a.html")));
}

TEST_F(PageCommand, QuietOneSaysNothing) {
    const Said said = run({"page", "session.omf", "-o", path("a.html"), "--no-audio", "-q"});
    EXPECT_EQ(said.out + said.errors, "");
}

}  // namespace
}  // namespace trellant::testing
