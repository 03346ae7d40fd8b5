// SPDX-License-Identifier: Apache-2.0
// What an export leaves in the folder, says, and ends with.
#include "export_fixture.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <trellant_testing/byte_writer.h>
#include <trellant_testing/worker_process.h>

namespace trellant::testing {
namespace {

namespace fs = std::filesystem;

using exchange::ExportFormat;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class ExportCommand : public ExportTest {
  protected:
    std::string plainDocument() {
        add({.name = "Kick.wav", .media = waveOf({1, 2, 3, 4}), .clipLength = 1});
        return writeDocument();
    }
    [[nodiscard]] static std::string example(const std::string& name) {
        return std::string(TRELLANT_EXAMPLES) + "/" + name;
    }
};

TEST_F(ExportCommand, SaysWhatIsWhere) {
    const std::string file = plainDocument();
    // A clip of 1/100 s on the only track, at 48,000 samples in a second as its audio has.
    EXPECT_EQ(exportWell(exporting(file)), file + " -> mix.rpp in " + out() +
                                               "\n"
                                               "  Session      REAPER project, 48000 Hz, from "
                                               "00:00:00:00\n"
                                               "  Content      1 track, 1 clip\n"
                                               "  Audio        1 file in mix.media\n"
                                               "  Differences  none\n");
}

TEST_F(ExportCommand, SaysWhereDifferencesComeFromAndAreListed) {
    const std::string file = example("session.omf");
    // Three of reading; nothing that a REAPER project cannot hold.
    EXPECT_THAT(exportWell(exporting(file)),
                HasSubstr("\n  Differences  3 of reading; listed in session.losses.json\n"));
    // One first sample between two of another rate.
    auto forced = exporting(file, ExportFormat::aaf);
    forced.call.force = true;
    EXPECT_THAT(exportWell(forced), HasSubstr("\n  Differences  3 of reading, 1 of the format; "
                                              "listed in session.losses.json\n"));
}

TEST_F(ExportCommand, GivesProgramsOneObject) {
    auto options = exporting(plainDocument());
    options.call.json = true;
    const auto line = nlohmann::json::parse(exportWell(options));
    EXPECT_EQ(line["format"], "reaper");
    EXPECT_EQ(line["files"], (nlohmann::json{"mix.rpp", "mix.losses.json"}));
    EXPECT_EQ(line["mediaFolder"], "mix.media");
    EXPECT_EQ(line["sampleRate"], 48'000);
    EXPECT_EQ(line["clips"], 1);
    EXPECT_EQ(line["media"],
              (nlohmann::json{{"files", 1}, {"embedded", 0}, {"linked", 0}, {"offline", 0}}));
    EXPECT_EQ(line["losses"], (nlohmann::json{{"reading", 0},
                                              {"export", 0},
                                              {"exportDropped", 0},
                                              {"exportChanged", 0},
                                              {"exportSoundsDifferent", 0}}));
    EXPECT_EQ(line["changes"], 0);
}

TEST_F(ExportCommand, ASecondExportReplacesNothingUnlessForced) {
    const auto options = exporting(plainDocument());
    exportWell(options);
    writeFile(out("mix.rpp"), bytesOf("mine"));
    const Said said = exported(options);
    EXPECT_EQ(said.status, 1);
    EXPECT_EQ(said.out, "");
    EXPECT_EQ(said.errors, "trellant: " + options.call.files[0] +
                               ": mix.rpp is there already; --force replaces it, --name chooses "
                               "another name\n");
    EXPECT_EQ(textOf(readFile(out("mix.rpp"))), "mine");
    auto forced = options;
    forced.call.force = true;
    exportWell(forced);
    EXPECT_THAT(textOf(readFile(out("mix.rpp"))), HasSubstr("<REAPER_PROJECT"));
    EXPECT_THAT(written(), ElementsAre("mix.losses.json", "mix.media/Kick.wav", "mix.rpp"));
}

TEST_F(ExportCommand, NeverReplacesTheHandOffItself) {
    fs::create_directory(out());
    const std::string file = plainDocument();
    fs::rename(file, out("mix.rpp"));
    auto options = exporting(out("mix.rpp"));
    options.call.force = true;
    const Bytes before = readFile(out("mix.rpp"));
    const Said said = exported(options);
    EXPECT_EQ(said.status, 1);
    EXPECT_THAT(said.errors, HasSubstr("mix.rpp is read by this export and is not replaced"));
    EXPECT_EQ(readFile(out("mix.rpp")), before);
    EXPECT_THAT(namesIn(out()), ElementsAre("mix.rpp"));
}

TEST_F(ExportCommand, TheSameInputGivesTheSameBytes) {
    const std::string file = plainDocument();
    for (const ExportFormat format :
         {ExportFormat::aaf, ExportFormat::otio, ExportFormat::otioz, ExportFormat::reaper,
          ExportFormat::dawproject, ExportFormat::markers}) {
        auto options = exporting(file, format);
        options.call.force = true;
        exportWell(options);
        const std::vector<std::string> names = written();
        std::vector<Bytes> first;
        for (const std::string& name : names) {
            first.push_back(readFile(out(name)));
        }
        exportWell(options);
        EXPECT_EQ(written(), names);
        for (std::size_t i = 0; i < names.size(); ++i) {
            EXPECT_EQ(readFile(out(names[i])), first[i]) << names[i];
        }
    }
}

TEST_F(ExportCommand, TheAgreedDateIsTheSessions) {
    omf_.head().bytes("OMFI:HEAD:LastModified", hex("01 00 00 00 01"));
    const auto options = exporting(plainDocument());
    // 2001-09-09 01:46:40 UTC.
    const Said said = exported(options, {.environment = {{"SOURCE_DATE_EPOCH", "1000000000"}}});
    EXPECT_EQ(said.status, 0) << said.errors;
    EXPECT_THAT(textOf(readFile(out("mix.rpp"))), HasSubstr(" 1000000000\n"));
}

TEST_F(ExportCommand, TheFilesOwnDateIsTheSessionsUnlessOneIsAgreed) {
    omf_.head().bytes("OMFI:HEAD:LastModified", hex("00 CA 9A 3B 01"));
    const auto options = exporting(plainDocument());
    exportWell(options);
    EXPECT_THAT(textOf(readFile(out("mix.rpp"))), HasSubstr(" 1000000000\n"));
}

TEST_F(ExportCommand, ANameIsTheSessionsName) {
    auto options = exporting(plainDocument());
    options.call.name = "Reel 1";
    exportWell(options);
    EXPECT_THAT(written(),
                ElementsAre("Reel 1.losses.json", "Reel 1.media/Kick.wav", "Reel 1.rpp"));
}

TEST_F(ExportCommand, SeveralFilesOfOneNameGetNumbers) {
    auto options = exporting(plainDocument());
    fs::create_directory(folder_.file("second"));
    fs::copy_file(options.call.files[0], folder_.file("second") + "/MIX.omf");
    options.call.files.push_back(folder_.file("second") + "/MIX.omf");
    exportWell(options);
    EXPECT_THAT(namesIn(out()), ElementsAre("MIX_2.losses.json", "MIX_2.media", "MIX_2.rpp",
                                            "mix.losses.json", "mix.media", "mix.rpp"));
}

TEST_F(ExportCommand, WhatMakesNoSenseIsRefused) {
    const std::string file = plainDocument();
    const auto refusal = [&](const std::function<void(cli::ExportCall&)>& change) {
        auto options = exporting(file);
        change(options.call);
        const Said said = exported(options);
        EXPECT_EQ(said.status, 1);
        EXPECT_FALSE(fs::exists(out()));
        return said.errors;
    };
    EXPECT_EQ(refusal([](cli::ExportCall& call) { call.directory.clear(); }),
              "trellant: --to needs the name of a folder\n");
    EXPECT_THAT(refusal([&](cli::ExportCall& call) { call.directory = file; }),
                HasSubstr(" is a file; name a folder with --to"));
    EXPECT_THAT(refusal([](cli::ExportCall& call) { call.mediaFolders = {"/not/there"}; }),
                HasSubstr("there is no folder /not/there to look for audio files in"));
    EXPECT_THAT(refusal([](cli::ExportCall& call) { call.name = "a/b"; }),
                HasSubstr("--name needs a file name without an extension"));
    EXPECT_THAT(refusal([](cli::ExportCall& call) { call.name = ".."; }),
                HasSubstr("--name needs"));
    for (const std::string name : {"a\nb", "x\xFFy",
                                   "a\xC2\x9B"
                                   "b",
                                   "\"'`"}) {
        EXPECT_THAT(refusal([&](cli::ExportCall& call) { call.name = name; }),
                    HasSubstr("--name needs a name that every session can say"));
    }
    EXPECT_THAT(refusal([](cli::ExportCall& call) {
                    call.format = ExportFormat::markers;
                    call.mediaMode = MediaMode::copy;
                }),
                HasSubstr("markers come without audio, so that --media-mode says nothing there"));
    EXPECT_THAT(refusal([&](cli::ExportCall& call) {
                    call.files.push_back(file);
                    call.name = "x";
                }),
                HasSubstr("--name is for one file"));
    EXPECT_EQ(refusal([](cli::ExportCall& call) { call.mediaMode = MediaMode::embed; }),
              "trellant: a session of the format reaper cannot have its audio that way: "
              "--media-mode is copy or link, not embed\n");
    EXPECT_THAT(refusal([](cli::ExportCall& call) {
                    call.format = ExportFormat::otioz;
                    call.mediaMode = MediaMode::link;
                }),
                HasSubstr("otioz cannot have its audio that way: --media-mode is embed, not link"));
}

TEST_F(ExportCommand, AFileThatCannotBeReadLeavesNothing) {
    const std::string file = writeFile(folder_.file("mix.omf"), bytesOf("no OMF file at all"));
    auto options = exporting(file);
    options.call.json = true;
    const Said said = exported(options);
    EXPECT_EQ(said.status, 2);
    EXPECT_THAT(said.errors, HasSubstr("this is no OMF file that can be read"));
    EXPECT_TRUE(nlohmann::json::parse(said.out).contains("error"));
    EXPECT_FALSE(fs::exists(out()));
}

TEST_F(ExportCommand, AStopLeavesTheFolderAsItWas) {
    auto options = exporting(plainDocument());
    StopSource stop;
    options.helperURLProvider = [&stop](const std::string&) {
        stop.request_stop();
        return workerPath();
    };
    fs::create_directory(out());
    writeFile(out("mine.txt"), bytesOf("mine"));
    const Said said = exported(options, {}, stop.get_token());
    EXPECT_EQ(said.status, 2);
    EXPECT_THAT(said.errors, HasSubstr(": cancelled\n"));
    EXPECT_THAT(namesIn(out()), ElementsAre("mine.txt"));
}

TEST_F(ExportCommand, AFolderThatCannotBeMadeIsTold) {
    auto options = exporting(plainDocument());
    writeFile(folder_.file("file"), bytesOf("mine"));
    options.call.directory = folder_.file("file/folder");
    const Said said = exported(options);
    EXPECT_EQ(said.status, 2);
    EXPECT_THAT(said.errors, HasSubstr("cannot create folder"));
    EXPECT_EQ(readFile(folder_.file("file")), bytesOf("mine"));
}

TEST_F(ExportCommand, LossesOfReadingAndOfTheFormatAreInTheList) {
    auto options = exporting(example("session.omf"), ExportFormat::aaf);
    exportWell(options);
    const auto list = losses("session");
    // Three of reading, as `list losses` has them; one edge in another rate's samples.
    ASSERT_EQ(list.size(), 4U);
    EXPECT_EQ(list[0]["technical"],
              "OMF Transition treated as the spec-defined cut; transition effect itself is not "
              "reproduced");
    EXPECT_EQ(list[0]["loss"], 1);
    EXPECT_EQ(list[3]["sentence"],
              "One clip of audio at another rate begins up to half a sample beside its place in "
              "the source.");
    EXPECT_FALSE(list[3].contains("track"));
}

TEST_F(ExportCommand, FailOnLooksAtTheFormatToo) {
    auto options = exporting(example("archive.omf"), ExportFormat::otio);
    options.call.force = true;
    // Its only difference is a gain or fade that OTIO has no field for.
    for (const auto& [failOn, status] :
         {std::pair(cli::FailOn::nothing, 0), std::pair(cli::FailOn::missing, 0),
          std::pair(cli::FailOn::render, 3), std::pair(cli::FailOn::any, 3)}) {
        options.call.failOn = failOn;
        EXPECT_EQ(exported(options).status, status);
    }
    // Its source comes from a reel, which AAF carries and a project of REAPER does not.
    options.call.format = ExportFormat::aaf;
    EXPECT_EQ(exported(options).status, 0);
    options.call.format = ExportFormat::reaper;
    EXPECT_EQ(exported(options).status, 3);
    options.call.failOn = cli::FailOn::render;
    EXPECT_EQ(exported(options).status, 0);
}

TEST_F(ExportCommand, MarkersAreLeftOutOnWish) {
    auto options = exporting(example("session.omf"));
    exportWell(options);
    EXPECT_THAT(textOf(readFile(out("session.rpp"))), HasSubstr("\n  MARKER "));
    options.call.markers = false;
    options.call.force = true;
    exportWell(options);
    EXPECT_THAT(textOf(readFile(out("session.rpp"))), ::testing::Not(HasSubstr("\n  MARKER ")));
}

TEST_F(ExportCommand, MarkersAloneNeedNoAudio) {
    auto options = exporting(plainDocument(), ExportFormat::markers);
    exportWell(options);
    EXPECT_THAT(written(), ElementsAre("mix.cues.wav", "mix.labels.txt", "mix.losses.json",
                                       "mix.markers.csv"));
}

}  // namespace
}  // namespace trellant::testing
