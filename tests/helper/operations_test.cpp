// SPDX-License-Identifier: Apache-2.0
// What each operation leaves behind, and what it answers.
#include "worker_fixture.h"

#include <fstream>
#include <trellant_testing/wave_builder.h>

namespace trellant::testing {

namespace {

using HelperOperations = WorkerTest;

TEST_F(HelperOperations, InspectCreatesNothing) {
    const std::string source = oneClipFile();
    const auto answer = run(requestFor("inspect", source, path("missing/parent/work")));
    EXPECT_EQ(answer.errors, oneSlotProgress());
    EXPECT_EQ(answer.output, oneClipResult(jsonFileURL(source)));
    EXPECT_EQ(answer.status, 0);
    EXPECT_EQ(everything(), std::vector<std::string>{"piece.omf"});
}

TEST_F(HelperOperations, VerifyExportIsServedLikeInspect) {
    const std::string source = oneClipFile();
    const auto answer = run(requestFor("verifyExport", source, path("missing/parent/work")));
    EXPECT_EQ(answer.errors, oneSlotProgress());
    EXPECT_EQ(answer.output, oneClipResult(jsonFileURL(source)));
    EXPECT_EQ(answer.status, 0);
    EXPECT_EQ(everything(), std::vector<std::string>{"piece.omf"});
}

TEST_F(HelperOperations, InspectLeavesAnExistingWorkDirectoryEmpty) {
    std::filesystem::create_directory(path("work"));
    EXPECT_EQ(run(requestFor("inspect", oneClipFile(), path("work"))).status, 0);
    EXPECT_EQ(everything(), (std::vector<std::string>{"piece.omf", "work"}));
}

TEST_F(HelperOperations, InspectDoesNotEvenLookAtTheWorkDirectory) {
    const std::string source = oneClipFile();
    const auto answer = run(requestFor("inspect", source, source + "/work"));
    EXPECT_EQ(answer.output, oneClipResult(jsonFileURL(source)));
    EXPECT_EQ(answer.status, 0);
}

TEST_F(HelperOperations, ExtractTakesTheMediaOutByteForByte) {
    const std::string source = oneClipFile();
    const auto answer = run(requestFor("extractAndInspect", source, path("a/b/work")));
    EXPECT_EQ(answer.errors, oneSlotProgress());
    EXPECT_EQ(answer.output,
              oneClipResult(jsonFileURL(source), jsonFileURL(path("a/b/work/Tone.wav"))));
    EXPECT_EQ(answer.status, 0);
    EXPECT_EQ(readFile(path("a/b/work/Tone.wav")), toneWave());
    EXPECT_EQ(everything(),
              (std::vector<std::string>{"a", "a/b", "a/b/work", "a/b/work/Tone.wav", "piece.omf"}));
}

TEST_F(HelperOperations, ExistingWorkDirectoryKeepsWhatItHolds) {
    const std::string source = oneClipFile();
    std::filesystem::create_directory(path("work"));
    writeFile(path("work/Tone.wav"), bytesOf("mine"));
    const auto answer = run(requestFor("extractAndInspect", source, path("work/")));
    EXPECT_EQ(answer.output,
              oneClipResult(jsonFileURL(source), jsonFileURL(path("work/Tone_2.wav"))));
    EXPECT_EQ(textOf(readFile(path("work/Tone.wav"))), "mine");
    EXPECT_EQ(readFile(path("work/Tone_2.wav")), toneWave());
}

TEST_F(HelperOperations, LinkInThePlaceOfTheMediaIsNotFollowed) {
    const std::string source = oneClipFile();
    std::filesystem::create_directory(path("work"));
    std::filesystem::create_symlink(path("elsewhere.wav"), path("work/Tone.wav"));
    const auto answer = run(requestFor("extractAndInspect", source, path("work")));
    EXPECT_EQ(answer.output,
              oneClipResult(jsonFileURL(source), jsonFileURL(path("work/Tone_2.wav"))));
    EXPECT_EQ(everything(),
              (std::vector<std::string>{"piece.omf", "work", "work/Tone.wav", "work/Tone_2.wav"}));
}

TEST_F(HelperOperations, ExtractCreatesTheWorkDirectoryBeforeTheSourceIsOpened) {
    const auto answer =
        run(requestFor("extractAndInspect", path("missing.omf"), path("parent/work")));
    expectFailed(answer, progressLineText("opening", "0.05"),
                 "unexpected failure: cannot open \"" + path("missing.omf") +
                     "\": No such file or directory");
    EXPECT_EQ(everything(), (std::vector<std::string>{"parent", "parent/work"}));
}

TEST_F(HelperOperations, WorkDirectoryBelowAFileFailsBeforeTheSourceIsOpened) {
    writeFile(path("file"), bytesOf("text"));
    const auto answer =
        run(requestFor("extractAndInspect", path("missing.omf"), path("file/work/deep")));
    expectFailed(answer, progressLineText("opening", "0.05"),
                 "unexpected failure: cannot create directory \"" + path("file/work/deep") +
                     "\": Not a directory");
    EXPECT_EQ(everything(), std::vector<std::string>{"file"});
}

TEST_F(HelperOperations, WorkDirectoryThatIsAFileFails) {
    const std::string source = oneClipFile();
    const auto answer = run(requestFor("extractAndInspect", source, source));
    expectFailed(answer, progressLineText("opening", "0.05"),
                 "unexpected failure: cannot create directory \"" + source + "\": File exists");
}

TEST_F(HelperOperations, SourceStaysAsItWas) {
    const std::string source = oneClipFile();
    const auto written = std::filesystem::last_write_time(source) - std::chrono::hours(1);
    std::filesystem::last_write_time(source, written);
    const Bytes bytes = readFile(source);
    for (const std::string_view operation : {"inspect", "verifyExport", "extractAndInspect"}) {
        SCOPED_TRACE(operation);
        EXPECT_EQ(run(requestFor(operation, source, path("work"))).status, 0);
        EXPECT_EQ(readFile(source), bytes);
        EXPECT_EQ(std::filesystem::last_write_time(source), written);
    }
}

TEST_F(HelperOperations, SourceThatMayOnlyBeReadIsEnough) {
    const std::string source = oneClipFile();
    std::filesystem::permissions(source, std::filesystem::perms::owner_read);
    EXPECT_EQ(run(requestFor("inspect", source, "")).output, oneClipResult(jsonFileURL(source)));
}

TEST_F(HelperOperations, ExtractInTheFolderOfTheSourceLeavesTheSourceAlone) {
    OmfBuilder omf = oneClipDocument();
    // The mob's name would give the extracted file the name of the interchange file.
    omf.at(8).string("OMFI:MOBJ:Name", "piece.omf");
    const Bytes bytes = omf.build();
    const std::string source = writeFile(path("piece.wav"), bytes);
    const auto answer = run(requestFor("extractAndInspect", source, directory().string()));
    EXPECT_EQ(answer.status, 0);
    EXPECT_EQ(readFile(source), bytes);
    EXPECT_EQ(everything(), (std::vector<std::string>{"piece.wav", "piece_2.wav"}));
}

TEST_F(HelperOperations, DeepestGainIsStillANumber) {
    constexpr MobID tone{1, 2, 3};
    // Each effect costs two of the 48 levels that are walked: 23 effects and the clip.
    constexpr int effects = 23;
    constexpr double largest = 2'147'483'647;
    OmfBuilder omf;
    omf.audioFile({.id = tone, .name = "Tone.wav", .media = toneWave(), .length = 480});
    ObjectID segment = omf.clip({.length = 480, .source = tone});
    double gain = 1;
    for (int count = 0; count < effects; ++count) {
        segment = omf.gain(segment, omf.constantValue({2'147'483'647, 1}));
        gain *= largest;
    }
    const ObjectID slot = omf.slot({.editRate = Ratio{48'000}, .segment = segment});
    omf.composition({.slots = {slot}});
    const std::string source = writeFile(path("loud.omf"), omf.build());
    const auto answer = run(requestFor("inspect", source, ""));
    ASSERT_EQ(answer.status, 0);
    constexpr std::string_view key = "\"fixedClipGain\":";
    const auto place = answer.output.find(key);
    ASSERT_NE(place, std::string::npos);
    EXPECT_EQ(std::stod(answer.output.substr(place + key.size())), gain);
    EXPECT_NE(answer.output.find("\"unsupportedFeatures\":[]"), std::string::npos);
}

}  // namespace

}  // namespace trellant::testing
