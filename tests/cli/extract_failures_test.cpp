// SPDX-License-Identifier: Apache-2.0
// What an extraction that does not come to its end leaves, and what it says.
#include "extract_fixture.h"

#include <trellant/model/timeline_json.h>
#include <trellant/protocol/messages.h>

#include <gmock/gmock.h>

#include <chrono>
#include <filesystem>
#include <sys/stat.h>
#include <thread>
#include <trellant_testing/byte_writer.h>
#include <trellant_testing/worker_process.h>
#include <unistd.h>

namespace trellant::testing {
namespace {

namespace fs = std::filesystem;

using ::testing::ElementsAre;
using ::testing::HasSubstr;

const std::vector<std::int16_t> kick{1, 2, 3, 4};

class ExtractFailures : public ExtractTest {
  protected:
    /// An executable that takes its request and answers `result` in place of a worker.
    std::string workerThatAnswers(const AAFWorkerProtocol::Result& result) {
        StringSink sink;
        encodeResult(result, sink);
        writeFile(folder_.file("answer.json"), bytesOf(sink.text));
        return executable("cat > /dev/null\ncat '" + folder_.file("answer.json") + "'\n");
    }
    /// Lines of a shell, in place of a worker.
    std::string executable(const std::string& lines) {
        const std::string path = writeFile(folder_.file("worker"), bytesOf("#!/bin/sh\n" + lines));
        ::chmod(path.c_str(), 0700);
        return path;
    }
};

TEST_F(ExtractFailures, CancelledBeforeItsStartLeavesNothing) {
    add({.name = "Kick.wav", .media = waveOf(kick)});
    const auto call = options(writeDocument());
    StopSource stop;
    stop.request_stop();
    const Said said = extract(call, {}, stop.get_token());
    EXPECT_EQ(said.status, 2);
    EXPECT_EQ(said.out, "");
    EXPECT_EQ(said.errors, "trellant: " + call.call.files.front() +
                               ": cancelled\n"
                               "trellant: nothing was written to " +
                               out() + "\n");
    EXPECT_FALSE(fs::exists(out()));
}

TEST_F(ExtractFailures, CancelledWhileTheWorkerRunsLeavesAnExistingFolderAsItWas) {
    add({.name = "Kick.wav", .media = waveOf(kick)});
    auto call = options(writeDocument());
    StopSource stop;
    call.helperURLProvider = [&stop](const std::string&) {
        stop.request_stop();
        return workerPath();
    };
    fs::create_directory(out());
    writeFile(out("mine.txt"), bytesOf("mine"));
    const Said said = extract(call, {}, stop.get_token());
    EXPECT_EQ(said.status, 2);
    EXPECT_EQ(said.errors, "trellant: " + call.call.files.front() +
                               ": cancelled\n"
                               "trellant: nothing was written to " +
                               out() + "\n");
    EXPECT_THAT(namesIn(out()), ElementsAre("mine.txt"));
}

TEST_F(ExtractFailures, DamagedFileIsToldAndLeavesNoFolder) {
    const std::string file = writeFile(folder_.file("mix.omf"), bytesOf("no OMF file at all"));
    const Said said = extract(options(file));
    EXPECT_EQ(said.status, 2);
    EXPECT_EQ(said.errors, "trellant: " + file +
                               ": this is no OMF file that can be read, it looks like a text "
                               "(Malformed OMF/Bento file: file too small for Bento footer)\n"
                               "trellant: nothing was written to " +
                               out() + "\n");
    EXPECT_FALSE(fs::exists(out()));
}

TEST_F(ExtractFailures, FileInPlaceOfTheFolderIsWrongUse) {
    add({.name = "Kick.wav", .media = waveOf(kick)});
    const auto call = options(writeDocument());
    writeFile(out(), bytesOf("mine"));
    const Said said = extract(call);
    EXPECT_EQ(said.status, 1);
    EXPECT_EQ(said.errors, "trellant: " + out() +
                               " is a file; name a folder with --to, which is created when it is "
                               "missing\n");
    EXPECT_EQ(textOf(readFile(out())), "mine");
}

TEST_F(ExtractFailures, EmptyFolderNameIsWrongUse) {
    add({.name = "Kick.wav", .media = waveOf(kick)});
    auto call = options(writeDocument());
    call.call.directory = "";
    const Said said = extract(call);
    EXPECT_EQ(said.status, 1);
    EXPECT_EQ(said.errors, "trellant: --to needs the name of a folder\n");
}

TEST_F(ExtractFailures, MediaFolderThatIsNotThereIsWrongUse) {
    add({.name = "Kick.wav", .media = waveOf(kick)});
    auto call = options(writeDocument());
    call.call.mediaFolders = {folder_.path().string(), folder_.file("typo")};
    const Said said = extract(call);
    EXPECT_EQ(said.status, 1);
    EXPECT_EQ(said.errors, "trellant: there is no folder " + folder_.file("typo") +
                               " to look for audio files in\n");
    EXPECT_FALSE(fs::exists(out()));
}

TEST_F(ExtractFailures, FolderThatMayNotBeWrittenToIsToldWithTheSystemsReason) {
    add({.name = "Kick.wav", .media = waveOf(kick)});
    const auto call = options(writeDocument());
    fs::create_directory(out());
    ::chmod(folder_.path().c_str(), 0755);
    ::chmod(out().c_str(), 0555);
    const Said said = saidWithStatus({}, [&](cli::Console& console) {
        // The administrator may write anywhere; this child becomes somebody else.
        constexpr uid_t nobody = 65'534;
        if (::geteuid() == 0 && ::seteuid(nobody) != 0) {
            return -1;
        }
        return static_cast<int>(cli::runExtract(call, console, {}));
    });
    EXPECT_EQ(said.status, 2);
    EXPECT_EQ(said.errors, "trellant: " + call.call.files.front() + ": cannot write to \"" + out() +
                               "\": Permission denied\n"
                               "trellant: nothing was written to " +
                               out() + "\n");
}

TEST_F(ExtractFailures, FullDiskIsToldWithTheFolderAsItWasNamed) {
    add({.name = "Kick.wav", .media = waveOf(kick)});
    auto call = options(writeDocument());
    const std::string worker = writeFile(
        folder_.file("worker"),
        bytesOf("#!/bin/sh\n"
                "place=$(sed 's,.*\"workDirectory\":\"\\([^\"]*\\)\".*,\\1,' | tr -d '\\134')\n"
                "echo \"trellant-omf: unexpected failure: cannot write \\\"$place/Kick.wav\\\": "
                "No space left on device\" >&2\n"
                "exit 2\n"));
    ::chmod(worker.c_str(), 0700);
    call.helperURLProvider = [worker](const std::string&) { return worker; };
    const Said said = extract(call);
    EXPECT_EQ(said.status, 2);
    EXPECT_EQ(said.out, "");
    EXPECT_EQ(said.errors, "trellant: " + call.call.files.front() + ": cannot write to " + out() +
                               ": No space left on device\n"
                               "trellant: nothing was written to " +
                               out() + "\n");
    EXPECT_FALSE(fs::exists(out()));
}

TEST_F(ExtractFailures, WholeFilesOfARunThatIsStoppedStay) {
    // The worker has written one file, is at the next, and goes on for ever.
    add({.name = "Kick.wav", .media = waveOf(kick)});
    auto call = options(writeDocument());
    const std::string ready = folder_.file("ready");
    const std::string worker = writeFile(
        folder_.file("worker"),
        bytesOf("#!/bin/sh\n"
                "place=$(sed 's,.*\"workDirectory\":\"\\([^\"]*\\)\".*,\\1,' | tr -d '\\134')\n"
                "printf whole > \"$place/Kick.wav\"\n"
                "printf mine > \"$place/Mine.wav\"\n"
                "sleep 0.05\n"
                "printf ha > \"$place/Snare.wav\"\n"
                ": > '" +
                ready + "'\n" + "exec sleep 600\n"));
    ::chmod(worker.c_str(), 0700);
    call.helperURLProvider = [worker](const std::string&) { return worker; };
    fs::create_directory(out());
    writeFile(out("Mine.wav"), bytesOf("other"));
    const Said said = saidWithStatus({}, [&](cli::Console& console) {
        StopSource stop;
        std::thread stopper([&] {
            while (!fs::exists(ready)) {
                std::this_thread::sleep_for(std::chrono::milliseconds(5));
            }
            stop.request_stop();
        });
        const auto status = cli::runExtract(call, console, stop.get_token());
        stopper.join();
        return static_cast<int>(status);
    });
    EXPECT_EQ(said.status, 2);
    EXPECT_EQ(said.errors, "trellant: " + call.call.files.front() +
                               ": cancelled\n"
                               "trellant: 1 file is in " +
                               out() + ", whole; the same command again goes on from there\n");
    EXPECT_THAT(namesIn(out()), ElementsAre("Kick.wav", "Mine.wav"));
    EXPECT_EQ(textOf(readFile(out("Kick.wav"))), "whole");
    EXPECT_EQ(textOf(readFile(out("Mine.wav"))), "other");
}

TEST_F(ExtractFailures, MissingConverterIsToldBeforeAnythingIsWritten) {
    add({.name = "Kick.wav", .media = waveOf(kick)});
    auto call = options(writeDocument());
    call.call.wav = true;
    call.waveConverter.reset();
    const Said said = extract(call);
    EXPECT_EQ(said.status, 2);
    EXPECT_EQ(said.errors,
              "trellant: the program trellant-wav, which writes WAVE files, is missing. It belongs "
              "to this one; please install Trellant again, or leave out --wav\n");
    EXPECT_FALSE(fs::exists(out()));
}

TEST_F(ExtractFailures, DamagedSourceAmongThoseOfOneFileNameIsToldAndTheOthersAreWhole) {
    AAFWorkerProtocol::Result result;
    result.timeline.sourceAAF = AAFURL{"file:///mix.omf"};
    for (const std::string id : {"1", "2", "3"}) {
        result.timeline.essences.push_back({.id = "omf-essence-" + id,
                                            .sourceName = "Take " + id,
                                            .fileURL = AAFURL{"file://PLACE/Take.wav"},
                                            .embedded = true,
                                            .sampleRate = AAFRational(48'000),
                                            .channelCount = 1});
    }
    AAFWorkerExtensions extensions;
    extensions.embeddedMedia = AAFWorkerExtensions::EmbeddedMedia{
        .separateFiles = {{.essenceID = "omf-essence-1", .path = "PLACE/Take_1000.wav"},
                          {.essenceID = "omf-essence-2"},
                          {.essenceID = "omf-essence-3", .path = "PLACE/Take_1002.wav"}}};
    result.extensions = extensions;
    StringSink answer;
    encodeResult(result, answer);
    const std::string text = writeFile(folder_.file("answer.json"), bytesOf(answer.text));
    const std::string first = writeFile(folder_.file("first"), waveOf(kick));
    const std::string third = writeFile(folder_.file("third"), waveOf({5, 6}));
    add({.name = "Take.wav", .media = waveOf(kick)});
    auto call = options(writeDocument());
    const std::string worker = executable(
        "place=$(sed 's,.*\"workDirectory\":\"\\([^\"]*\\)\".*,\\1,' | tr -d '\\134')\n"
        "printf whatever > \"$place/Take.wav\"\n"
        "cp '" +
        first +
        "' \"$place/Take_1000.wav\"\n"
        "cp '" +
        third +
        "' \"$place/Take_1002.wav\"\n"
        "sed \"s,PLACE,$place,g\" '" +
        text + "'\n");
    call.helperURLProvider = [worker](const std::string&) { return worker; };
    const Said said = extract(call);
    EXPECT_EQ(said.status, 2);
    EXPECT_THAT(said.out, HasSubstr("  Audio      2 taken out, 1 could not be taken out\n"));
    EXPECT_EQ(said.errors,
              "trellant: " + call.call.files.front() + ": not all audio could be taken out\n");
    EXPECT_THAT(namesIn(out()),
                ElementsAre("MANIFEST.sha256", "Take_1000.wav", "Take_1002.wav", "timeline.json"));
    EXPECT_EQ(readFile(out("Take_1000.wav")), waveOf(kick));
    EXPECT_EQ(readFile(out("Take_1002.wav")), waveOf({5, 6}));
    const AAFTimeline made = timeline();
    ASSERT_EQ(made.essences.size(), 3U);
    EXPECT_EQ(made.essences[0].fileURL, AAFURL{"Take_1000.wav"});
    EXPECT_EQ(made.essences[1].fileURL, std::nullopt);
    EXPECT_EQ(made.essences[2].fileURL, AAFURL{"Take_1002.wav"});
}

TEST_F(ExtractFailures, FileThatTheWorkerWasNotToldToWriteIsNeverMoved) {
    const std::string mine = writeFile(folder_.file("mine.wav"), waveOf(kick));
    AAFWorkerProtocol::Result result;
    result.timeline.sourceAAF = AAFURL{"file:///mix.omf"};
    result.timeline.essences = {{.id = "omf-essence-1",
                                 .mobID = "00000001-00000000-00000001",
                                 .sourceName = "Kick",
                                 .fileURL = AAFURL{"file://" + mine},
                                 .embedded = true,
                                 .sampleRate = AAFRational(48'000),
                                 .channelCount = 1}};
    add({.name = "Kick.wav", .media = waveOf(kick)});
    auto call = options(writeDocument());
    call.helperURLProvider = [worker = workerThatAnswers(result)](const std::string&) {
        return worker;
    };
    const Said said = extract(call);
    EXPECT_EQ(said.status, 2);
    EXPECT_THAT(said.out, HasSubstr("1 could not be taken out"));
    EXPECT_THAT(said.errors, HasSubstr("not all audio could be taken out\n"));
    EXPECT_EQ(readFile(mine), waveOf(kick));
    EXPECT_THAT(namesIn(out()), ElementsAre("MANIFEST.sha256", "timeline.json"));
}

}  // namespace
}  // namespace trellant::testing
