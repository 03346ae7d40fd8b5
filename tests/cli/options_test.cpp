// SPDX-License-Identifier: Apache-2.0
#include "options/options.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <initializer_list>
#include <vector>

namespace trellant::cli {
namespace {

using testing::ElementsAre;
using testing::Eq;
using testing::HasSubstr;
using testing::Optional;

CommandLine lineOf(std::initializer_list<const char*> arguments) {
    std::vector<const char*> all{"trellant"};
    all.insert(all.end(), arguments);
    return readCommandLine(static_cast<int>(all.size()), all.data());
}

template <class T>
T callOf(std::initializer_list<const char*> arguments) {
    const CommandLine line = lineOf(arguments);
    EXPECT_EQ(line.text, "");
    return std::get<T>(line.call.value());
}

TEST(Options, InfoTakesSeveralFiles) {
    const auto call = callOf<InfoOptions>({"info", "a.omf", "b.omf", "--json", "--media", "m"});
    EXPECT_THAT(call.files, ElementsAre("a.omf", "b.omf"));
    EXPECT_TRUE(call.json);
    EXPECT_THAT(call.mediaFolders, ElementsAre("m"));
    EXPECT_EQ(call.failOn, FailOn::nothing);
    EXPECT_EQ(call.destination.path, "-");
}

TEST(Options, ListTakesWhatAndForm) {
    const auto call =
        callOf<ListOptions>({"list", "losses", "a.omf", "--csv", "--fail-on=render", "-o", "x"});
    EXPECT_EQ(call.what, ListOptions::What::losses);
    EXPECT_EQ(call.form, ListOptions::Form::csv);
    EXPECT_EQ(call.failOn, FailOn::render);
    EXPECT_EQ(call.destination.path, "x");
    EXPECT_FALSE(call.destination.force);
}

TEST(Options, ExtractTakesSeveralMediaFolders) {
    const auto call = callOf<ExtractCall>(
        {"extract", "a.omf", "--to", "out", "--media", "m", "--media", "n", "--wav", "--force"});
    EXPECT_THAT(call.files, ElementsAre("a.omf"));
    EXPECT_EQ(call.directory, "out");
    EXPECT_THAT(call.mediaFolders, ElementsAre("m", "n"));
    EXPECT_TRUE(call.wav);
    EXPECT_TRUE(call.force);
}

TEST(Options, ExtractAndExportNameFilesAfterMasterMobsUnlessTheyAreAskedNotTo) {
    EXPECT_EQ(callOf<ExtractCall>({"extract", "a.omf", "--to", "out"}).naming,
              FileNaming::masterMob);
    EXPECT_EQ(callOf<ExtractCall>({"extract", "a.omf", "--to", "out", "--names", "source"}).naming,
              FileNaming::source);
    EXPECT_EQ(callOf<ExportCall>({"export", "a.omf", "--to", "out", "--format", "aaf"}).naming,
              FileNaming::masterMob);
    EXPECT_EQ(callOf<ExportCall>(
                  {"export", "a.omf", "--to", "out", "--format", "aaf", "--names", "source"})
                  .naming,
              FileNaming::source);
}

TEST(Options, ASalvageNamesFilesItself) {
    const CommandLine line =
        lineOf({"extract", "a.omf", "--to", "out", "--salvage", "--names", "master"});
    EXPECT_FALSE(line.call);
    EXPECT_EQ(line.status, ExitStatus::wrongUse);
    EXPECT_THAT(line.text, HasSubstr("--salvage"));
    EXPECT_THAT(line.text, HasSubstr("--names"));
}

TEST(Options, ExportTakesAFormatAndWhatIsWishedOfIt) {
    const auto call =
        callOf<ExportCall>({"export", "a.omf", "--to", "out", "--format", "reaper", "--media", "m",
                            "--media-mode", "link", "--rate", "96000", "--name", "Reel 1",
                            "--no-markers", "--force", "--json", "--fail-on=any"});
    EXPECT_THAT(call.files, ElementsAre("a.omf"));
    EXPECT_EQ(call.directory, "out");
    EXPECT_EQ(call.format, exchange::ExportFormat::reaper);
    EXPECT_THAT(call.mediaFolders, ElementsAre("m"));
    EXPECT_THAT(call.mediaMode, Optional(MediaMode::link));
    EXPECT_THAT(call.rate, Optional(Eq(96'000)));
    EXPECT_THAT(call.name, Optional(Eq("Reel 1")));
    EXPECT_FALSE(call.markers);
    EXPECT_TRUE(call.force);
    EXPECT_TRUE(call.json);
    EXPECT_EQ(call.failOn, FailOn::any);
}

TEST(Options, AnExportIsLeftToItsFormatUnlessTold) {
    const auto call =
        callOf<ExportCall>({"export", "a.omf", "b.omf", "--to", "out", "--format=markers"});
    EXPECT_THAT(call.files, ElementsAre("a.omf", "b.omf"));
    EXPECT_EQ(call.format, exchange::ExportFormat::markers);
    EXPECT_EQ(call.mediaMode, std::nullopt);
    EXPECT_EQ(call.rate, std::nullopt);
    EXPECT_EQ(call.name, std::nullopt);
    EXPECT_TRUE(call.markers);
    EXPECT_FALSE(call.force);
    EXPECT_EQ(call.failOn, FailOn::nothing);
}

TEST(Options, RenderTakesAKindAPartAndAForm) {
    const auto call = callOf<RenderCall>(
        {"render",     "a.omf",   "--to",        "out",     "--clips",     "--raw",     "--handles",
         "2.5",        "--from",  "01:00:00:00", "--until", "01:00:10:00", "--format",  "wav32f",
         "--resample", "--media", "m",           "--force", "--json",      "--fail-on", "missing"});
    EXPECT_EQ(call.files, (std::vector<std::string>{"a.omf"}));
    EXPECT_EQ(call.directory, "out");
    EXPECT_EQ(call.kind, render::RenderKind::clips);
    EXPECT_TRUE(call.raw && call.resamples && call.force && call.json);
    EXPECT_EQ(call.handles, 2.5);
    EXPECT_EQ(call.from, "01:00:00:00");
    EXPECT_EQ(call.until, "01:00:10:00");
    EXPECT_EQ(call.format, (audio::PcmFormat{32, true}));
    EXPECT_EQ(call.mediaFolders, (std::vector<std::string>{"m"}));
    EXPECT_EQ(call.failOn, FailOn::missing);
    const auto plain = callOf<RenderCall>({"render", "a.omf", "b.omf", "--to", "out"});
    EXPECT_EQ(plain.kind, render::RenderKind::tracks);
    EXPECT_FALSE(plain.format || plain.handles || plain.raw || plain.resamples);
    EXPECT_EQ(lineOf({"render", "a.omf", "--to", "out", "--mix", "--clips"}).status,
              ExitStatus::wrongUse);
}

TEST(Options, TheHelpShowsHowTheOptionsOfAnExportAreTyped) {
    const std::string page = lineOf({"export", "-h"}).text;
    EXPECT_THAT(page, HasSubstr("\n  --no-markers   "));
    EXPECT_THAT(page, HasSubstr("\n  --rate HZ   "));
}

TEST(Options, AnExportNeedsAFolderAndAFormatThatExists) {
    EXPECT_EQ(lineOf({"export", "a.omf", "--format", "aaf"}).text,
              "--to is required\nTry: trellant export -h");
    EXPECT_EQ(lineOf({"export", "a.omf", "--to", "out"}).text,
              "--format is required\nTry: trellant export -h");
    EXPECT_EQ(lineOf({"export", "a.omf", "--to", "out", "--format", "AAF"}).text,
              "--format: is one of aaf|otio|otioz|reaper|dawproject|markers, not \"AAF\"\nTry: "
              "trellant export -h");
    for (const char* rate : {"0", "384001", "-1", "48k", ""}) {
        EXPECT_EQ(lineOf({"export", "a.omf", "--to", "out", "--format=aaf", "--rate", rate}).status,
                  ExitStatus::wrongUse)
            << rate;
    }
    EXPECT_THAT(lineOf({"export", "a.omf", "--to", "out", "--format=aaf", "--rate", "48k"}).text,
                HasSubstr("--rate: is a whole number from 1 to 384000, not \"48k\""));
}

TEST(Options, VerbosityMayStandBehindTheCommand) {
    EXPECT_EQ(lineOf({"info", "a.omf", "-q"}).verbosity, Verbosity::quiet);
    EXPECT_EQ(lineOf({"-v", "info", "a.omf"}).verbosity, Verbosity::verbose);
}

TEST(Options, VersionIsOneLine) {
    const CommandLine line = lineOf({"--version"});
    EXPECT_EQ(line.text, "trellant 0.2.0\n");
    EXPECT_EQ(line.status, ExitStatus::done);
    EXPECT_FALSE(line.call);
}

TEST(Options, HelpShowsExamplesFirst) {
    const std::string page = lineOf({"list", "-h"}).text;
    EXPECT_THAT(page, HasSubstr("trellant list clips mix.omf"));
    EXPECT_LT(page.find("Examples:"), page.find("Usage:"));
}

TEST(Options, NothingOrTheWordHelpShowsTheHelp) {
    const std::string page = lineOf({"-h"}).text;
    for (const CommandLine& line : {lineOf({}), lineOf({"help"}), lineOf({"help", "help"}),
                                    lineOf({"help", "-h"}), lineOf({"-q", "help"})}) {
        EXPECT_EQ(line.status, ExitStatus::done);
        EXPECT_EQ(line.text, page);
    }
    EXPECT_EQ(lineOf({"help", "list"}).text, lineOf({"list", "-h"}).text);
    const CommandLine unknown = lineOf({"help", "lsit"});
    EXPECT_EQ(unknown.status, ExitStatus::wrongUse);
    EXPECT_EQ(unknown.text,
              "there is no command \"lsit\". Did you mean \"list\"?\nTry: trellant -h");
}

TEST(Options, WrongUseNamesTheFaultAndTheHelp) {
    const CommandLine line = lineOf({"list", "clips"});
    EXPECT_EQ(line.status, ExitStatus::wrongUse);
    EXPECT_EQ(line.text, "FILE is required\nTry: trellant list -h");
    EXPECT_EQ(lineOf({"-q"}).status, ExitStatus::wrongUse);
    EXPECT_EQ(lineOf({"list", "pears", "a.omf"}).status, ExitStatus::wrongUse);
    EXPECT_EQ(lineOf({"list", "clips", "a.omf", "--csv", "--json"}).status, ExitStatus::wrongUse);
    EXPECT_EQ(lineOf({"-q", "-v", "info", "a.omf"}).status, ExitStatus::wrongUse);
    EXPECT_EQ(lineOf({"info", "a.omf", "--fail-on=rain"}).status, ExitStatus::wrongUse);
}

TEST(Options, WithoutACommandTheHelpIsShown) {
    const CommandLine bare = lineOf({});
    EXPECT_EQ(bare.status, ExitStatus::done);
    EXPECT_THAT(bare.text, HasSubstr("\nExamples:\n"));
    EXPECT_EQ(lineOf({"help"}).text, bare.text);
    EXPECT_EQ(lineOf({"-h"}).text, bare.text);
    EXPECT_EQ(lineOf({"help", "list"}).text, lineOf({"list", "-h"}).text);
}

TEST(Options, AnUnknownCommandNamesTheNearestOne) {
    EXPECT_EQ(lineOf({"lits", "clips", "a.omf"}).text,
              "there is no command \"lits\". Did you mean \"list\"?\nTry: trellant -h");
    EXPECT_EQ(lineOf({"help", "exract"}).text,
              "there is no command \"exract\". Did you mean \"extract\"?\nTry: trellant -h");
    EXPECT_EQ(lineOf({"mix.omf"}).text, "there is no command \"mix.omf\"\nTry: trellant -h");
}

}  // namespace
}  // namespace trellant::cli
