// SPDX-License-Identifier: Apache-2.0
#include "expect_throw.h"

#include <trellant/base/host_watch.h>
#include <trellant/io/random_access_file.h>

#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <functional>
#include <optional>
#include <sys/stat.h>
#include <sys/wait.h>
#include <trellant_testing/byte_writer.h>
#include <trellant_testing/killed_host.h>
#include <trellant_testing/temporary_directory.h>
#include <vector>

namespace trellant {
namespace {

namespace fs = std::filesystem;
using testing::bytesOf;
using testing::faultOf;
using testing::joined;
using testing::patternBytes;
using testing::readFile;
using testing::refusalOf;
using testing::TemporaryDirectory;
using testing::textOf;
using testing::writeFile;

using Segments = std::vector<BentoValueSegment>;

constexpr std::uint64_t chunk = 4'194'304;

BentoValueSegment range(std::uint64_t offset, std::uint64_t length) {
    return {BentoRange{offset, length}, false};
}

class FileCopy : public ::testing::Test {
  protected:
    TemporaryDirectory folder_;
    std::string input_ = writeFile(folder_.file("input"), bytesOf("0123456789"));
    std::string output_ = folder_.file("output");
};

TEST_F(FileCopy, WritesPiecesInOrder) {
    const BentoValueSegment immediate{BentoImmediate{{'A', 'B', 'x', 'x'}, 2}, true};
    RandomAccessFile(input_).copy(Segments{range(7, 3), immediate, range(0, 2)}, output_);
    EXPECT_EQ(textOf(readFile(output_)), "789AB01");
}

TEST_F(FileCopy, ReferenceListsAreWrittenAsNothing) {
    RandomAccessFile(input_).copy(Segments{{BentoReferenceList{65'536}, false}}, output_);
    EXPECT_TRUE(readFile(output_).empty());
}

TEST_F(FileCopy, EmptyRangesWriteNothingWhereverTheyPoint) {
    RandomAccessFile(input_).copy(Segments{range(99, 0), range(1, 1)}, output_);
    EXPECT_EQ(textOf(readFile(output_)), "1");
}

TEST_F(FileCopy, LongRangesAtOddOffsetsComeOutByteForByte) {
    const Bytes content = patternBytes(3 * chunk + 12'345);
    const std::string source = writeFile(folder_.file("long"), content);
    const RandomAccessFile file(source);
    const std::uint64_t length = 2 * chunk + 777;
    file.copy(Segments{range(4'097, length), range(1, 3)}, output_);
    const ByteView all(content);
    EXPECT_TRUE(readFile(output_) == joined({all.subspan(4'097, length), all.subspan(1, 3)}));
}

TEST_F(FileCopy, ReachesAnotherFileSystem) {
    if (!fs::is_directory("/dev/shm")) {
        GTEST_SKIP() << "no second file system here";
    }
    const TemporaryDirectory elsewhere{fs::path("/dev/shm")};
    const Bytes content = patternBytes(chunk + 99);
    const RandomAccessFile file(writeFile(folder_.file("long"), content));
    file.copy(Segments{range(1, chunk + 98)}, elsewhere.file("copy"));
    EXPECT_TRUE(readFile(elsewhere.file("copy")) == joined({ByteView(content).subspan(1)}));
}

TEST_F(FileCopy, BoundsAreJudgedChunkByChunk) {
    const RandomAccessFile file(writeFile(folder_.file("long"), patternBytes(chunk + 10)));
    EXPECT_EQ(faultOf([&] { return file.copy(Segments{range(5, chunk + 6)}, output_), 0; }),
              "Read out of bounds (offset=4194309, length=6, fileSize=4194314).");
    EXPECT_EQ(fs::file_size(output_), chunk);
}

TEST_F(FileCopy, RangesBeyondTheFileFailAndLeaveWhatWasWritten) {
    const RandomAccessFile file(input_);
    EXPECT_EQ(faultOf([&] {
                  return file.copy(Segments{range(0, 4), range(8, 3)}, output_), 0;
              }),
              "Read out of bounds (offset=8, length=3, fileSize=10).");
    EXPECT_EQ(textOf(readFile(output_)), "0123");
}

TEST_F(FileCopy, HugeRangesFailWithTheirFirstChunk) {
    const RandomAccessFile file(input_);
    const std::uint64_t huge = ~std::uint64_t{0};
    EXPECT_EQ(faultOf([&] { return file.copy(Segments{range(huge, huge)}, output_), 0; }),
              "Read out of bounds (offset=18446744073709551615, length=4194304, fileSize=10).");
}

TEST_F(FileCopy, AFileTruncatedAfterOpeningGivesShortReadOfTheChunk) {
    const RandomAccessFile file(input_);
    fs::resize_file(input_, 6);
    EXPECT_EQ(faultOf([&] { return file.copy(Segments{range(2, 8)}, output_), 0; }),
              "Short read (expected 8 bytes, got 4).");
}

TEST_F(FileCopy, AnExistingFileIsReplacedNotOverwritten) {
    writeFile(output_, bytesOf("a longer text than the copy"));
    fs::create_hard_link(output_, folder_.file("other name"));
    RandomAccessFile(input_).copy(Segments{range(0, 3)}, output_);
    EXPECT_EQ(textOf(readFile(output_)), "012");
    EXPECT_EQ(textOf(readFile(folder_.file("other name"))), "a longer text than the copy");
}

TEST_F(FileCopy, ALinkAtTheDestinationIsNotFollowed) {
    const std::string target = writeFile(folder_.file("target"), bytesOf("precious"));
    fs::create_symlink(target, output_);
    RandomAccessFile(input_).copy(Segments{range(0, 3)}, output_);
    EXPECT_EQ(textOf(readFile(target)), "precious");
    EXPECT_FALSE(fs::is_symlink(output_));
    EXPECT_EQ(textOf(readFile(output_)), "012");
}

TEST_F(FileCopy, ADanglingLinkAtTheDestinationIsNotFollowed) {
    fs::create_symlink(folder_.file("nowhere"), output_);
    RandomAccessFile(input_).copy(Segments{range(0, 3)}, output_);
    EXPECT_FALSE(fs::exists(folder_.file("nowhere")));
    EXPECT_FALSE(fs::is_symlink(output_));
    EXPECT_EQ(textOf(readFile(output_)), "012");
}

TEST_F(FileCopy, ADestinationThatIsTheInputIsRefusedAndTheInputKept) {
    const Bytes before = readFile(input_);
    EXPECT_EQ(
        refusalOf([&] { return RandomAccessFile(input_).copy(Segments{range(4, 3)}, input_), 0; }),
        "cannot replace the file being read, \"" + input_ + "\": Device or resource busy");
    EXPECT_EQ(readFile(input_), before);
}

TEST_F(FileCopy, AFolderAtTheDestinationIsRefused) {
    fs::create_directory(output_);
    EXPECT_EQ(refusalOf([&] { return RandomAccessFile(input_).copy(Segments{}, output_), 0; }),
              "cannot create \"" + output_ + "\": Is a directory");
}

TEST_F(FileCopy, ANamedPipeAtTheDestinationIsRefusedWithoutWaiting) {
    ASSERT_EQ(::mkfifo(output_.c_str(), 0600), 0);
    EXPECT_EQ(refusalOf([&] { return RandomAccessFile(input_).copy(Segments{}, output_), 0; }),
              "cannot create \"" + output_ + "\": File exists");
}

TEST_F(FileCopy, AMissingFolderIsRefused) {
    const std::string path = folder_.file("missing/output");
    EXPECT_EQ(refusalOf([&] { return RandomAccessFile(input_).copy(Segments{}, path), 0; }),
              "cannot create \"" + path + "\": No such file or directory");
}

TEST_F(FileCopy, ADestinationWithANulIsRefused) {
    const std::string path("a\0b", 3);
    EXPECT_EQ(refusalOf([&] { return RandomAccessFile(input_).copy(Segments{}, path), 0; }),
              "cannot create \"a\xEF\xBF\xBD"
              "b\": Invalid argument");
}

/// More than is copied while a test runs; what a test that fails writes of it is bounded.
constexpr std::uint64_t endless = 8'589'934'592;

/// The end of a process that copies without end when its host is killed.
int endOfCopying(const std::string& input, const std::string& output, bool isTold) {
    fs::resize_file(input, endless);
    testing::KilledHost host([&](const std::function<void()>& ready) {
        watchHost(7);
        if (!isTold) {
            sigset_t all;
            ::sigfillset(&all);
            ::pthread_sigmask(SIG_BLOCK, &all, nullptr);
        }
        const RandomAccessFile file(input);
        bool isFirst = true;
        file.copy(
            [&]() -> std::optional<BentoValueSegment> {
                if (!isFirst) {
                    return std::nullopt;
                }
                isFirst = false;
                ready();
                return range(0, endless);
            },
            output);
    });
    host.kill();
    return host.endOfWorker();
}

TEST_F(FileCopy, EndsWithTheHostAndLeavesNoHalfFile) {
    const int status = endOfCopying(input_, output_, true);
    EXPECT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 7);
    EXPECT_FALSE(fs::exists(output_));
}

TEST_F(FileCopy, LooksAfterItsHostBetweenPieces) {
    const int status = endOfCopying(input_, output_, false);
    EXPECT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 7);
    EXPECT_FALSE(fs::exists(output_));
}

}  // namespace
}  // namespace trellant
