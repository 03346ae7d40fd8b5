// SPDX-License-Identifier: Apache-2.0
// `trellant extract --salvage`, and what the error of a file that holds audio says without it.
#include "extract_fixture.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <trellant_testing/byte_writer.h>

namespace trellant::testing {
namespace {

namespace fs = std::filesystem;

using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::StartsWith;

class SalvageCommand : public ExtractTest {
  protected:
    SalvageCommand() { add({.name = "Kick.wav", .media = kick_}); }

    [[nodiscard]] cli::ExtractOptions salvageOf(const std::string& file) const {
        cli::ExtractOptions call = options(file);
        call.call.salvage = true;
        return call;
    }
    /// The document without its last `lost` bytes.
    std::string cutDocument(std::size_t lost) {
        Bytes bytes = readFile(writeDocument());
        bytes.resize(bytes.size() - lost);
        return writeFile(folder_.file("cut.omf"), bytes);
    }
    /// The document up to the first `kept` bytes of its sound.
    std::string documentCutInTheSound(std::size_t kept) {
        Bytes bytes = readFile(writeDocument());
        const auto sound = std::search(bytes.begin(), bytes.end(), kick_.begin(), kick_.end());
        bytes.resize(static_cast<std::size_t>(sound - bytes.begin()) + kept);
        return writeFile(folder_.file("cut.omf"), bytes);
    }

    /// 44 bytes of header and 8 of samples.
    const Bytes kick_ = waveOf({1, 2, 3, 4});
};

TEST_F(SalvageCommand, TakesWholeSoundsOutOfAFileWithoutItsEnd) {
    const std::string file = cutDocument(10);
    const Said said = extract(salvageOf(file));
    EXPECT_EQ(said.status, 0);
    EXPECT_EQ(said.errors, "");
    EXPECT_THAT(said.out, StartsWith(file + "\n  Sounds     1 whole\n  Folder     " + out() +
                                     "\n  Record     salvage.json\n"));
    EXPECT_THAT(namesIn(out()), ElementsAre("Sound 001.wav", "salvage.json"));
    EXPECT_EQ(readFile(out("Sound 001.wav")), kick_);
}

TEST_F(SalvageCommand, NamesWhatIsIncompleteAndFails) {
    const std::string file = documentCutInTheSound(44 + 5);
    const Said said = extract(salvageOf(file));
    EXPECT_EQ(said.status, 2);
    EXPECT_EQ(said.errors, "trellant: " + file + ": 1 of 1 sounds is not whole\n");
    EXPECT_THAT(namesIn(out()), ElementsAre("Sound 001 incomplete.wav", "salvage.json"));
    EXPECT_EQ(readFile(out("Sound 001 incomplete.wav")), waveOf({1, 2}));
}

TEST_F(SalvageCommand, TheSameAgainWritesNothingTwice) {
    const cli::ExtractOptions call = salvageOf(cutDocument(10));
    const Said first = extract(call);
    const Said second = extract(call);
    EXPECT_EQ(second.out, first.out);
    EXPECT_THAT(namesIn(out()), ElementsAre("Sound 001.wav", "salvage.json"));
}

TEST_F(SalvageCommand, AnotherFileOfTheNameIsKeptUnlessForced) {
    cli::ExtractOptions call = salvageOf(cutDocument(10));
    fs::create_directory(out());
    writeFile(out("Sound 001.wav"), bytesOf("mine"));
    EXPECT_EQ(extract(call).status, 0);
    EXPECT_EQ(readFile(out("Sound 001.wav")), bytesOf("mine"));
    EXPECT_EQ(readFile(out("Sound 001_2.wav")), kick_);
    call.call.force = true;
    EXPECT_EQ(extract(call).status, 0);
    EXPECT_EQ(readFile(out("Sound 001.wav")), kick_);
}

TEST_F(SalvageCommand, TheInputIsNeverReplaced) {
    fs::create_directory(out());
    const std::string file = out("Sound 001.wav");
    fs::rename(cutDocument(10), file);
    const Bytes before = readFile(file);
    cli::ExtractOptions call = salvageOf(file);
    call.call.force = true;
    EXPECT_EQ(extract(call).status, 0);
    EXPECT_EQ(readFile(file), before);
    EXPECT_EQ(readFile(out("Sound 001_2.wav")), kick_);
}

TEST_F(SalvageCommand, FileWithoutAudioLeavesNothing) {
    const std::string file = writeFile(folder_.file("text.omf"), bytesOf("no audio"));
    cli::ExtractOptions call = salvageOf(file);
    call.call.json = true;
    const Said said = extract(call);
    EXPECT_EQ(said.status, 2);
    const std::string why =
        "no audio was found in it: neither by a table of contents nor by the header of an AIFF, "
        "AIFC or WAVE file";
    EXPECT_EQ(said.errors, "trellant: " + file + ": " + why + "\n");
    EXPECT_THAT(said.out, EndsWith(",\"error\":\"" + why + "\"}\n"));
    EXPECT_FALSE(fs::exists(out()));
}

TEST_F(SalvageCommand, LineForProgramsIsTheRecordWithItsName) {
    cli::ExtractOptions call = salvageOf(cutDocument(10));
    call.call.json = true;
    const std::string line = extract(call).out;
    const std::string named = "\"record\":\"salvage.json\",";
    const std::size_t at = line.find(named);
    ASSERT_NE(at, std::string::npos);
    EXPECT_EQ(std::string(line).erase(at, named.size()), textOf(readFile(out("salvage.json"))));
}

TEST_F(SalvageCommand, ErrorsOfFilesWithAudioSayHowToGetIt) {
    const std::string advice = ". There is audio in it: trellant extract ";
    const std::string file = cutDocument(10);
    const Said said = extract(options(file));
    EXPECT_EQ(said.status, 2);
    EXPECT_THAT(said.errors, HasSubstr(advice + file + " --to FOLDER --salvage takes it out\n"));
    // A header with no samples behind it is none.
    const Said without = extract(options(documentCutInTheSound(44)));
    EXPECT_EQ(without.status, 2);
    EXPECT_THAT(without.errors, ::testing::Not(HasSubstr("--salvage")));
}

TEST_F(SalvageCommand, AnAudioFileByItselfIsNoDamagedSession) {
    const Said said = extract(options(writeFile(folder_.file("kick.omf"), kick_)));
    EXPECT_EQ(said.status, 2);
    EXPECT_THAT(said.errors, ::testing::Not(HasSubstr("--salvage")));
}

}  // namespace
}  // namespace trellant::testing
