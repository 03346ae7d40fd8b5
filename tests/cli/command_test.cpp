// SPDX-License-Identifier: Apache-2.0
// The command as people and scripts meet it: the real executable, in pipes and in terminals.
#include "said.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <trellant_testing/temporary_directory.h>
#include <unistd.h>
#include <vector>

namespace trellant::testing {
namespace {

using ::testing::AllOf;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

const std::filesystem::path goldens = TRELLANT_GOLDENS;
const std::filesystem::path received = TRELLANT_RECEIVED;

/// Runs the command in the folder of the examples.
Said run(const std::vector<std::string>& arguments, const Setting& setting = {}) {
    return saidWithStatus(setting, [&arguments](cli::Console&) {
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

std::string contentOf(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    std::stringstream content;
    content << file.rdbuf();
    return content.str();
}

/// A mismatch leaves what came beside what was accepted.
void expectGolden(const std::string& name, const std::string& text) {
    const std::string accepted = contentOf(goldens / name);
    if (accepted != text) {
        std::ofstream(received / (name + ".received"), std::ios::binary) << text;
    }
    EXPECT_EQ(text, accepted) << "see " << name << ".received";
}

Setting terminal(unsigned short columns) {
    return {.out = Listener::terminal, .errors = Listener::terminal, .columns = columns};
}

std::size_t widestLine(const std::string& text) {
    std::istringstream lines(text);
    std::size_t widest = 0;
    for (std::string line; std::getline(lines, line);) {
        line.erase(std::remove(line.begin(), line.end(), '\r'), line.end());
        std::string visible;
        for (std::size_t i = 0; i < line.size(); ++i) {
            if (line[i] == '\x1b') {
                i = line.find('m', i);
            } else if ((static_cast<unsigned char>(line[i]) & 0xC0U) != 0x80U) {
                visible += line[i];
            }
        }
        widest = std::max(widest, visible.size());
    }
    return widest;
}

TEST(Command, InfoOfTheExamplesIsAsAccepted) {
    for (const std::string name : {"session", "external", "archive"}) {
        const Said said = run({"info", name + ".omf"});
        EXPECT_EQ(said.status, 0);
        EXPECT_EQ(said.errors, "");
        expectGolden("info-" + name + ".txt", said.out);
    }
}

TEST(Command, InfoFindsMediaInTheFolderThatIsNamed) {
    const Said said = run({"info", "external.omf", "--media", "."});
    EXPECT_EQ(said.status, 0);
    expectGolden("info-external-media.txt", said.out);
}

TEST(Command, ListsOfASessionAreAsAccepted) {
    for (const std::string what : {"tracks", "clips", "sources", "losses"}) {
        const Said said = run({"list", what, "session.omf"});
        EXPECT_EQ(said.status, 0);
        EXPECT_EQ(said.errors, "");
        expectGolden("list-" + what + ".txt", said.out);
        expectGolden("list-" + what + ".csv", run({"list", what, "session.omf", "--csv"}).out);
        expectGolden("list-" + what + ".json", run({"list", what, "session.omf", "--json"}).out);
    }
}

TEST(Command, SeveralFilesAreScreensWithABlankLineBetween) {
    const Said said = run({"info", "session.omf", "archive.omf"});
    EXPECT_EQ(said.out, contentOf(goldens / "info-session.txt") + "\n" +
                            contentOf(goldens / "info-archive.txt"));
}

TEST(Command, AFileThatCannotBeReadCostsNoOther) {
    const Said said = run({"info", "missing.omf", "archive.omf"});
    EXPECT_EQ(said.status, 2);
    EXPECT_EQ(said.out, contentOf(goldens / "info-archive.txt"));
    EXPECT_THAT(said.errors, AllOf(StartsWith("trellant: missing.omf: "),
                                   EndsWith("No such file or directory\n")));
}

TEST(Command, ADamagedFileIsNamedWithItsFault) {
    const Said said = run({"list", "clips", "README.md"});
    EXPECT_EQ(said.status, 2);
    EXPECT_EQ(said.out, "");
    EXPECT_EQ(said.errors,
              "trellant: README.md: this is no OMF file that can be read, it looks like a text "
              "(Malformed OMF/Bento file: Bento footer signature not found)\n");
}

TEST(Command, FailOnTellsScriptsOfLosses) {
    EXPECT_EQ(run({"info", "session.omf", "--fail-on=missing"}).status, 0);
    EXPECT_EQ(run({"info", "session.omf", "--fail-on=render"}).status, 3);
    EXPECT_EQ(run({"info", "session.omf", "--fail-on=any"}).status, 3);
    EXPECT_EQ(run({"info", "external.omf", "--fail-on=missing"}).status, 3);
    EXPECT_EQ(run({"info", "archive.omf", "--fail-on=any"}).status, 0);
    EXPECT_EQ(run({"info", "missing.omf", "session.omf", "--fail-on=any"}).status, 2);
}

TEST(Command, WrongUseGoesToStandardErrorWithStatusOne) {
    const Said said = run({"list", "clips"});
    EXPECT_EQ(said.status, 1);
    EXPECT_EQ(said.out, "");
    EXPECT_EQ(said.errors, "trellant: FILE is required\ntrellant: Try: trellant list -h\n");
}

TEST(Command, HelpAndVersionGoToStandardOutput) {
    const Said version = run({"--version"});
    EXPECT_EQ(version.status, 0);
    EXPECT_EQ(version.out, "trellant 0.2.0\n");
    const Said help = run({"-h"});
    EXPECT_EQ(help.status, 0);
    EXPECT_EQ(help.errors, "");
    EXPECT_THAT(help.out, HasSubstr("trellant extract mix.omf --to mix-audio"));
}

TEST(Command, ListsFitNarrowTerminals) {
    for (const int columns : {60, 80}) {
        for (const std::string what : {"tracks", "clips", "sources", "losses"}) {
            const Said said =
                run({"list", what, "session.omf"}, terminal(static_cast<unsigned short>(columns)));
            EXPECT_EQ(said.status, 0);
            EXPECT_LE(widestLine(said.out), static_cast<std::size_t>(columns)) << what;
            EXPECT_FALSE(said.out.empty());
        }
    }
}

TEST(Command, ColumnsThatFindNoRoomAreNamedOnce) {
    const Setting narrow{.out = Listener::terminal, .columns = 60};
    EXPECT_EQ(run({"list", "clips", "session.omf"}, narrow).errors,
              "trellant: left out for want of room: Ch., Gain dB, Fade in, Fade out, Losses "
              "(-v and --csv show every column)\n");
    EXPECT_EQ(run({"-q", "list", "clips", "session.omf"}, narrow).errors, "");
    EXPECT_THAT(run({"-v", "list", "clips", "session.omf"}, narrow).out,
                HasSubstr("Number of gain points"));
}

TEST(Command, TablesAreWholeOnAWideTerminal) {
    const Said said = run({"list", "clips", "session.omf"}, terminal(200));
    EXPECT_LE(widestLine(said.out), 200U);
    EXPECT_THAT(said.out, Not(HasSubstr("\u2026")));
    EXPECT_THAT(said.out, HasSubstr("Rain: garden.wav"));
}

TEST(Command, ColourIsForTerminalsThatWantIt) {
    EXPECT_THAT(run({"info", "archive.omf"}, terminal(80)).out, HasSubstr("\x1b["));
    Setting plain = terminal(80);
    plain.environment["NO_COLOR"] = "1";
    EXPECT_THAT(run({"info", "archive.omf"}, plain).out, Not(HasSubstr("\x1b[")));
    EXPECT_THAT(run({"info", "archive.omf"}).out, Not(HasSubstr("\x1b[")));
}

TEST(Command, AReaderThatGoesAwayIsNoError) {
    const Said said = run({"list", "clips", "session.omf"}, {.out = Listener::gone});
    EXPECT_EQ(said.status, 0);
    EXPECT_EQ(said.errors, "");
}

TEST(Command, QuietSaysOnlyWhatWasAskedFor) {
    const Said said = run({"-q", "list", "losses", "archive.omf"});
    EXPECT_EQ(said.status, 0);
    EXPECT_EQ(said.out, "");
    EXPECT_EQ(said.errors, "");
    EXPECT_EQ(run({"list", "losses", "archive.omf"}).errors, "trellant: nothing was lost\n");
}

TEST(Command, AnExistingFileIsNotOverwrittenWithoutForce) {
    const TemporaryDirectory directory;
    const std::string file = directory.file("clips.csv");
    ASSERT_EQ(run({"list", "clips", "session.omf", "--csv", "-o", file}).status, 0);
    EXPECT_EQ(contentOf(file), contentOf(goldens / "list-clips.csv"));
    std::ofstream(file) << "mine";
    const Said refused = run({"list", "clips", "session.omf", "--csv", "-o", file});
    EXPECT_EQ(refused.status, 1);
    EXPECT_EQ(refused.errors, "trellant: " + file +
                                  " is there already. Name another file, or replace it with "
                                  "--force\n");
    EXPECT_EQ(contentOf(file), "mine");
    ASSERT_EQ(run({"list", "clips", "session.omf", "--csv", "-o", file, "--force"}).status, 0);
    EXPECT_EQ(contentOf(file), contentOf(goldens / "list-clips.csv"));
}

TEST(Command, ValidateNamesTheClipBehindAFault) {
    const TemporaryDirectory directory;
    std::string text =
        contentOf(std::filesystem::path(TRELLANT_EXAMPLES) / "session.accepted.json");
    const Said valid = run({"validate", "session.accepted.json"});
    EXPECT_EQ(valid.status, 0);
    EXPECT_EQ(
        valid.out,
        "session.accepted.json: valid, 5 tracks, 11 clips, 4 audio files, 4 of them not there\n");

    const std::string intact = "\"sourceStartSample\":";
    const std::size_t at = text.find(intact);
    ASSERT_NE(at, std::string::npos);
    text.insert(at + intact.size(), "-1");
    const std::string file = directory.file("damaged.json");
    std::ofstream(file) << text;
    const Said damaged = run({"validate", file});
    EXPECT_EQ(damaged.status, 2);
    EXPECT_EQ(damaged.out, file +
                               ": not valid: negative-source-range (event[0]): track Dialog_L, "
                               "clip Anna take 1, at 01:00:00;15\n");
    EXPECT_EQ(
        run({"validate", "--json", file}).out,
        "{\"file\":\"" +
            [&file] {
                std::string escaped;
                for (const char letter : file) {
                    escaped += letter == '/' ? std::string("\\/") : std::string(1, letter);
                }
                return escaped;
            }() +
            "\",\"valid\":false,\"code\":\"negative-source-range\",\"object\":\"event[0]\","
            "\"place\":\"track Dialog_L, clip Anna take 1, at 01:00:00;15\",\"tracks\":5,"
            "\"clips\":11,\"audioFiles\":4,\"missingAudio\":["
            "\"file:\\/\\/WORK\\/Voice_Anna.wav\",\"file:\\/\\/WORK\\/Voice_Ben.wav\","
            "\"file:\\/\\/WORK\\/Theme.aifc\",\"file:\\/\\/WORK\\/Rain_%20garden.wav\"]}\n");
}

TEST(Command, ValidateFindsTheAudioOfAFolderThatWasMoved) {
    const TemporaryDirectory directory;
    ASSERT_EQ(run({"extract", "session.omf", "--to", directory.file("here")}).status, 0);
    std::filesystem::rename(directory.file("here"), directory.file("there"));
    const std::string timeline = directory.file("there/timeline.json");
    const Said whole = run({"validate", timeline});
    EXPECT_EQ(whole.status, 0);
    EXPECT_EQ(whole.out, timeline + ": valid, 5 tracks, 11 clips, 4 audio files\n");
    EXPECT_EQ(whole.errors, "");
    const std::string theme = directory.file("there/Theme.aifc");
    std::filesystem::remove(theme);
    const Said poorer = run({"validate", timeline});
    EXPECT_EQ(poorer.status, 0);
    EXPECT_EQ(poorer.out,
              timeline + ": valid, 5 tracks, 11 clips, 4 audio files, 1 of them not there\n");
    EXPECT_EQ(poorer.errors, "trellant: " + timeline + ": not there: " + theme + "\n");
}

TEST(Command, ValidateSendsNothingHarmfulToATerminal) {
    // CSI in one byte, a line separator of its own, a turn of direction, a new line.
    const TemporaryDirectory directory;
    std::string text =
        contentOf(std::filesystem::path(TRELLANT_EXAMPLES) / "session.accepted.json");
    const auto replace = [&text](const std::string& from, const std::string& to) {
        const std::size_t at = text.find(from);
        ASSERT_NE(at, std::string::npos);
        text.replace(at, from.size(), to);
    };
    replace("Anna take 1", "A\u009b31m\u2028\u202e\u0085Z");
    replace("\"sourceStartSample\":", "\"sourceStartSample\":-1");
    const std::string file = directory.file("damaged.json");
    std::ofstream(file) << text;
    EXPECT_THAT(run({"validate", file}).out, HasSubstr("A\uFFFD31m\uFFFD\uFFFD\uFFFDZ"));
    EXPECT_THAT(run({"validate", "--json", file}).out,
                HasSubstr("A\\u009b31m\\u2028\\u202e\\u0085Z"));
}

TEST(Command, ListsOfSeveralFilesFollowEachOther) {
    const Said people = run({"list", "tracks", "archive.omf", "external.omf"});
    EXPECT_EQ(people.status, 0);
    EXPECT_EQ(people.out, "archive.omf\n" + run({"list", "tracks", "archive.omf"}).out +
                              "\nexternal.omf\n" + run({"list", "tracks", "external.omf"}).out);
    const Said programs = run({"list", "tracks", "archive.omf", "none.omf", "--json"});
    EXPECT_EQ(programs.status, 2);
    EXPECT_THAT(programs.out, StartsWith("{\"file\":\"archive.omf\",\"track\":1,"));
    EXPECT_THAT(programs.out, HasSubstr("}\n{\"file\":\"none.omf\",\"error\":\"cannot open"));
    const Said sheet = run({"list", "tracks", "archive.omf", "external.omf", "--csv"});
    EXPECT_THAT(sheet.out, StartsWith("File,Track,"));
    EXPECT_THAT(sheet.out, HasSubstr("\r\nexternal.omf,2,"));
}

TEST(Command, NothingThatIsReadIsReplaced) {
    const TemporaryDirectory directory;
    const std::string examples = TRELLANT_EXAMPLES;
    const std::string file = directory.file("mix.omf");
    std::filesystem::copy_file(examples + "/external.omf", file);
    std::filesystem::create_directory(directory.file("media"));
    const std::string door = directory.file("media/Door.wav");
    std::filesystem::copy_file(examples + "/media/Door.wav", door);
    const std::string before = contentOf(door);
    for (const std::vector<std::string>& call :
         {std::vector<std::string>{"list", "clips", file, "--csv", "-o", door, "--force"},
          std::vector<std::string>{"info", file, "-o", door, "--force"}}) {
        const Said said = run(call);
        EXPECT_EQ(said.status, 2);
        EXPECT_EQ(said.errors, "trellant: " + door +
                                   " is a file that is read. Name another file for the output\n");
        EXPECT_EQ(contentOf(door), before);
    }
}

TEST(Command, AStreamIsToldToNameAFile) {
    const std::string why =
        "an OMF file is read back and forth, which a pipe or a device cannot do: save it, and "
        "name the file\n";
    EXPECT_EQ(run({"info", "-"}).errors, "trellant: -: " + why);
    EXPECT_EQ(run({"list", "clips", "/dev/null"}).errors, "trellant: /dev/null: " + why);
    EXPECT_EQ(run({"dump", "-"}).errors, "trellant: -: " + why);
    EXPECT_EQ(run({"dump", "/dev/null"}).errors, "trellant: /dev/null: " + why);
    EXPECT_THAT(run({"info", "--json", "-"}).out, StartsWith("{\"file\":\"-\",\"error\":\"an OMF"));
    EXPECT_THAT(run({"dump", "--json", "-"}).out, StartsWith("{\"file\":\"-\",\"error\":\"an OMF"));
}

TEST(Command, ValidateTellsWhatIsNoTimeline) {
    const Said said = run({"validate", "README.md"});
    EXPECT_EQ(said.status, 2);
    EXPECT_THAT(said.out, StartsWith("README.md: no timeline: "));
}

}  // namespace
}  // namespace trellant::testing
