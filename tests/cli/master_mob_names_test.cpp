// SPDX-License-Identifier: Apache-2.0
// What sessions, renderings and findings call clips and files whose own names say nothing.
#include "check/verdict_report.h"
#include "export/export.h"
#include "recorded_fixture.h"
#include "render/render.h"

#include <trellant/check/rule.h>
#include <trellant/check/verdict.h>

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <trellant_testing/byte_writer.h>
#include <trellant_testing/worker_process.h>

namespace trellant::testing {
namespace {

using nlohmann::json;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

class MasterMobNames : public RecordedTest {
  protected:
    [[nodiscard]] cli::ExportOptions exporting(const std::string& file) const {
        cli::ExportOptions wanted;
        wanted.call.files = {file};
        wanted.call.directory = out();
        wanted.call.format = exchange::ExportFormat::reaper;
        wanted.helperURLProvider = [](const std::string&) { return workerPath(); };
        wanted.waveConverter = TRELLANT_WAV;
        return wanted;
    }
    void exportWell(const cli::ExportOptions& wanted) const {
        const Said told = saidWithStatus({}, [&](cli::Console& console) {
            return static_cast<int>(cli::runExport(wanted, console, StopToken()));
        });
        EXPECT_EQ(told.status, 0) << told.errors;
    }
    json renderWell(const std::string& file) const {
        cli::RenderOptions wanted;
        wanted.call.files = {file};
        wanted.call.directory = out();
        wanted.call.kind = render::RenderKind::clips;
        wanted.call.json = true;
        wanted.helperURLProvider = [](const std::string&) { return workerPath(); };
        wanted.waveConverter = TRELLANT_WAV;
        const Said told = saidWithStatus({}, [&](cli::Console& console) {
            return static_cast<int>(cli::runRender(wanted, console, StopToken()));
        });
        EXPECT_EQ(told.status, 0) << told.errors;
        return json::parse(told.out);
    }
    /// Two sources of one name, played by clips without one.
    std::string writeTwoOfOneName() {
        addRecorded(1, "Audio.wav", MediaKind::wave, waveOf({1}), "Anna: take 1");
        addRecorded(2, "Audio.wav", MediaKind::wave, waveOf({2}), "Ben");
        return writeRecorded();
    }
};

TEST_F(MasterMobNames, SessionsHaveThemForClipsAndFiles) {
    exportWell(exporting(writeTwoOfOneName()));
    const std::string session = textOf(readFile(out("mix.rpp")));
    EXPECT_THAT(session, HasSubstr("NAME \"Anna: take 1\""));
    EXPECT_THAT(session, HasSubstr("NAME \"Ben\""));
    // ":" is no part of a file name.
    EXPECT_THAT(namesIn(out("mix.media")), ElementsAre("Anna_ take 1.wav", "Ben.wav"));
}

TEST_F(MasterMobNames, OfFilesAreLeftOutOnRequest) {
    cli::ExportOptions wanted = exporting(writeTwoOfOneName());
    wanted.call.naming = FileNaming::source;
    exportWell(wanted);
    EXPECT_THAT(namesIn(out("mix.media")), ElementsAre("Audio.wav", "Audio_2.wav"));
    EXPECT_THAT(textOf(readFile(out("mix.rpp"))), HasSubstr("NAME \"Anna: take 1\""));
}

TEST_F(MasterMobNames, RenderedClipsAreCalledByThemInFileAndHeader) {
    const json line = renderWell(writeTwoOfOneName());
    ASSERT_EQ(line.at("files").size(), 2U);
    const json& first = line.at("files").at(0);
    EXPECT_EQ(first.at("clip"), "Anna: take 1");
    EXPECT_EQ(first.at("clipNameFrom"), "masterMob");
    EXPECT_EQ(first.at("name"), "01-001 Anna_ take 1.wav");
    const std::string header = textOf(readFile(out("01-001 Anna_ take 1.wav")));
    EXPECT_THAT(header, HasSubstr("<NAME>Anna: take 1</NAME>"));
    EXPECT_EQ(line.at("files").at(1).at("name"), "02-001 Ben.wav");
}

TEST_F(MasterMobNames, AClipWithANameIsNotMarked) {
    add({.name = "Kick.wav", .media = waveOf({1, 2, 3}), .clipLength = 1});
    const json line = renderWell(writeDocument());
    EXPECT_FALSE(line.at("files").at(0).contains("clipNameFrom"));
}

TEST(MasterMobNamesOfFindings, AreMarkedAsSuch) {
    const check::Rule* const rule = check::ruleNamed("muted");
    ASSERT_NE(rule, nullptr);
    check::Finding named{.sentence = "Said.", .clip = "Anna"};
    check::Finding ofMob = named;
    ofMob.isClipNamedByMasterMob = true;
    const check::Verdict verdict{.profile = "post",
                                 .rules = {{.rule = rule, .count = 2, .findings = {named, ofMob}}}};
    StringSink sink;
    cli::lineReport(sink)->add(
        {.name = "mix.omf", .verdict = verdict, .timeline = AAFTimeline(), .failure = ""});
    const json findings = json::parse(sink.text).at("findings");
    EXPECT_FALSE(findings.at(0).contains("clipNameFrom"));
    EXPECT_EQ(findings.at(1).at("clip"), "Anna");
    EXPECT_EQ(findings.at(1).at("clipNameFrom"), "masterMob");
}

}  // namespace
}  // namespace trellant::testing
