// SPDX-License-Identifier: Apache-2.0
#include "digests.h"
#include "scan_fixture.h"

#include <trellant/check/profile.h>
#include <trellant/client/errors.h>
#include <trellant/io/random_access_file.h>
#include <trellant/scan/file_reader.h>
#include <trellant/version.h>

#include <gmock/gmock.h>

#include <chrono>
#include <trellant_testing/aiff_builder.h>
#include <trellant_testing/omf1_builder.h>

namespace trellant::scan {
namespace {

using testing::bytesOf;
using ::testing::HasSubstr;
using testing::OmfBuilder;
using testing::realWorker;
using testing::shellWorker;
using ::testing::SizeIs;
using testing::smallOmf;
using testing::TemporaryDirectory;
using testing::writeFile;

class FileReading : public ::testing::Test {
  protected:
    [[nodiscard]] FoundFile file(ByteView bytes) const {
        return {.path = writeFile(folder_.file("mix.omf"), bytes),
                .size = bytes.size(),
                .modified = 1'000'000'000};
    }
    [[nodiscard]] static std::optional<ScanRow> read(const FoundFile& file,
                                                     ReadingOptions options = {}) {
        if (options.helperURLProvider
                .target<std::optional<std::filesystem::path> (*)(const std::string&)>() !=
            nullptr) {
            options.helperURLProvider = realWorker();
        }
        return FileReader(options).read(file, {});
    }
    /// The row where the worker does this.
    [[nodiscard]] ScanRow readBy(const std::string& words) const {
        return read(file(smallOmf()), {.timeLimit = std::chrono::seconds(30),
                                       .helperURLProvider = shellWorker(folder_, words)})
            .value();
    }

    TemporaryDirectory folder_;
};

TEST_F(FileReading, TellsWhatTheFileHolds) {
    // 480 samples of two bytes; the clip plays them all in a hundredth of a second.
    const Bytes samples = testing::hex("61 62 63 64");
    const FoundFile found = file(smallOmf("Kick", samples));
    const auto row = read(found);
    ASSERT_TRUE(row);
    EXPECT_EQ(row->path, found.path);
    EXPECT_EQ(row->size, static_cast<std::int64_t>(found.size));
    EXPECT_EQ(row->modified, "1970-01-01T00:00:01.000000000Z");
    EXPECT_EQ(row->program, versionText);
    EXPECT_EQ(row->status, FileStatus::ok);
    EXPECT_EQ(row->message, std::nullopt);
    EXPECT_EQ(row->pronom, (ScanRow::Pronom{"fmt/1855", "read"}));
    EXPECT_EQ(row->sha256, digestOf(RandomAccessFile(found.path), {}));
    EXPECT_EQ(row->byteOrder, "little");
    ASSERT_THAT(row->compositions, SizeIs(1));
    EXPECT_EQ(row->compositions[0].name, "Song");
    EXPECT_TRUE(row->compositions[0].read);
    EXPECT_EQ(row->tracks, 1);
    EXPECT_EQ(row->clips, 1);
    ASSERT_THAT(row->sources, SizeIs(1));
    const ScanRow::Source& source = row->sources[0];
    EXPECT_EQ(source.name, "Kick");
    EXPECT_EQ(source.mobID, "00000001-00000002-00000003");
    EXPECT_EQ(source.state, "embedded");
    EXPECT_EQ(source.sampleRateExact, "48000");
    EXPECT_EQ(source.bitDepth, 16);
    EXPECT_EQ(source.frames, 2);
    EXPECT_EQ(source.sampleBytes, 4);
    // Of "abcd", as sha256sum has it.
    EXPECT_EQ(source.sampleDigest,
              "88d4266fd4e6338d13b845fcf289579d209c897823b9217da3e161936f031589");
}

TEST_F(FileReading, ReadsTheOlderModelWithItsVersion) {
    // 480 samples of two bytes in an AIFC file; the clip plays 200 of them.
    testing::Omf1Builder omf;
    const testing::MobID voice{1, 2, 3};
    omf.audioFile(
        {.id = voice,
         .name = "Voice",
         .media = testing::aiffImage({.formType = "AIFC", .samples = Bytes(960, std::byte{1})}),
         .length = 480});
    omf.mob({.name = "Song", .tracks = {omf.track(1, omf.clip({.length = 200, .source = voice}))}});
    const check::Profile profile = check::builtInProfile("post").value();
    const auto row = read(file(omf.build()), {.profile = &profile});
    ASSERT_TRUE(row);
    EXPECT_EQ(row->status, FileStatus::ok);
    EXPECT_EQ(row->message, std::nullopt);
    EXPECT_EQ(row->pronom, (ScanRow::Pronom{"fmt/1854", "read"}));
    EXPECT_EQ(row->omfVersion, "1.0");
    ASSERT_THAT(row->compositions, SizeIs(1));
    EXPECT_EQ(row->compositions[0].name, "Song");
    EXPECT_EQ(row->clips, 1);
    ASSERT_THAT(row->sources, SizeIs(1));
    EXPECT_EQ(row->sources[0].frames, 480);
    EXPECT_EQ(row->sources[0].sampleBytes, 960);
    ASSERT_TRUE(row->check);
    EXPECT_THAT(row->check->findings,
                ::testing::Contains(
                    ::testing::Field("rule", &ScanRow::Finding::rule, std::string("omf-version"))));
}

TEST_F(FileReading, AnUnknownStructureOfTheOlderModelIsToldApart) {
    const FoundFile found = file(testing::Omf1Builder().build());
    const ScanRow row =
        FileReader(
            {.helperURLProvider = shellWorker(
                 folder_, "echo 'trellant-omf: Unsupported OMF/Bento feature: x' >&2; exit 2")})
            .read(found, {})
            .value();
    EXPECT_EQ(row.status, FileStatus::omf1);
    EXPECT_EQ(row.pronom, (ScanRow::Pronom{"fmt/1854", "signature"}));
}

TEST_F(FileReading, LeavesDigestsOutWhereNobodyWantsThem) {
    const auto row = read(file(smallOmf()), {.hashes = false});
    ASSERT_TRUE(row);
    EXPECT_EQ(row->sha256, std::nullopt);
    EXPECT_EQ(row->sources.at(0).sampleDigest, std::nullopt);
    EXPECT_EQ(row->sources.at(0).frames, 480);
}

TEST_F(FileReading, HoldsTheFileAgainstAProfile) {
    const check::Profile profile = check::builtInProfile("post").value();
    const auto row = read(file(smallOmf()), {.profile = &profile});
    ASSERT_TRUE(row && row->check);
    EXPECT_EQ(row->check->profile, "post");
    std::int64_t sum = 0;
    for (const ScanRow::Finding& finding : row->check->findings) {
        sum += finding.count;
        EXPECT_FALSE(finding.sentence.empty());
    }
    EXPECT_EQ(sum, row->check->errors + row->check->warnings + row->check->infos);
    EXPECT_GT(sum, 0);
}

TEST_F(FileReading, WhatIsNoOmfFileHasNoRow) {
    EXPECT_FALSE(read(file(bytesOf("no container"))));
}

TEST_F(FileReading, ATruncatedFileIsDamaged) {
    Bytes bytes = smallOmf();
    // The media stand in front, the names of the model behind them: both are left.
    const Bytes front = bytesOf(std::string_view("\0omfi:data:Sound", 16));
    bytes.insert(bytes.begin(), front.begin(), front.end());
    bytes.resize(bytes.size() - 24);
    const auto row = read(file(bytes));
    ASSERT_TRUE(row);
    EXPECT_EQ(row->status, FileStatus::damaged);
    EXPECT_THAT(row->message.value_or(""), HasSubstr("Bento footer signature not found"));
}

TEST_F(FileReading, AContainerOfAnotherModelIsRefused) {
    Bytes bytes = smallOmf();
    const auto row = read(file(Bytes(bytes.end() - 24, bytes.end())));
    ASSERT_TRUE(row);
    EXPECT_NE(row->status, FileStatus::ok);
    EXPECT_EQ(row->pronom, std::nullopt);
}

TEST_F(FileReading, WhatIsNotThereIsRefused) {
    const auto row = read({.path = folder_.file("none"), .failure = "No such file or directory"});
    ASSERT_TRUE(row);
    EXPECT_EQ(row->status, FileStatus::refused);
    EXPECT_EQ(row->message, "No such file or directory");
    EXPECT_EQ(row->modified, "");
}

TEST_F(FileReading, AWorkerThatDiesIsARow) {
    const ScanRow row = readBy("kill -SEGV $$");
    EXPECT_EQ(row.status, FileStatus::refused);
    EXPECT_EQ(row.message, "the worker ended unexpectedly (11)");
    // The file is there all the same.
    EXPECT_TRUE(row.sha256);
    EXPECT_EQ(row.pronom, (ScanRow::Pronom{"fmt/1855", "signature"}));
}

TEST_F(FileReading, AWorkerThatWritesRubbishIsARow) {
    const ScanRow row = readBy("echo rubbish");
    EXPECT_EQ(row.status, FileStatus::refused);
    EXPECT_THAT(row.message.value_or(""), HasSubstr("the worker gave no usable answer: "));
}

TEST_F(FileReading, AWorkerThatTakesTooMuchMemoryIsARow) {
    EXPECT_EQ(readBy("echo 'trellant-omf: unexpected failure: out of memory' >&2; exit 2").status,
              FileStatus::memory);
    EXPECT_EQ(readBy("echo 'trellant-omf: Unsupported OMF/Bento feature: composition needs more "
                     "than 5 bytes of memory' >&2; exit 2")
                  .status,
              FileStatus::memory);
}

TEST_F(FileReading, AWorkerThatTakesTooLongIsARow) {
    const auto row =
        read(file(smallOmf()), {.timeLimit = std::chrono::milliseconds(200),
                                .helperURLProvider = shellWorker(folder_, "exec sleep 60")});
    ASSERT_TRUE(row);
    EXPECT_EQ(row->status, FileStatus::timeout);
    EXPECT_EQ(row->message, "reading took longer than 0 seconds");
    EXPECT_LT(row->seconds, 30);
}

TEST_F(FileReading, MessagesCannotEndALineOrMoveACursor) {
    const ScanRow row = readBy("printf 'trellant-omf: Malformed \\033[2J\\n' >&2; exit 2");
    EXPECT_EQ(row.status, FileStatus::damaged);
    EXPECT_THAT(row.message.value_or(""), HasSubstr("\\u001b"));
}

TEST_F(FileReading, WithoutAWorkerThereAreNoRows) {
    EXPECT_THROW(static_cast<void>(
                     read(file(smallOmf()), {.helperURLProvider =
                                                 [](const std::string&) {
                                                     return std::optional<std::filesystem::path>();
                                                 }})),
                 AAFWorkerClientError);
}

}  // namespace
}  // namespace trellant::scan
