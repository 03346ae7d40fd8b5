// SPDX-License-Identifier: Apache-2.0
#include "expect_throw.h"

#include <trellant/io/random_access_file.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <limits>
#include <sys/stat.h>
#include <trellant_testing/byte_writer.h>
#include <trellant_testing/temporary_directory.h>

namespace trellant {
namespace {

using testing::bytesOf;
using testing::faultOf;
using testing::refusalOf;
using testing::TemporaryDirectory;
using testing::textOf;
using testing::writeFile;

class RandomAccessFileReading : public ::testing::Test {
  protected:
    TemporaryDirectory folder_;
    std::string path_ = writeFile(folder_.file("input"), bytesOf("0123456789ABCDEFGHIJKLMN"));
};

TEST_F(RandomAccessFileReading, GivesExactlyTheBytesAskedFor) {
    const RandomAccessFile file(path_);
    EXPECT_EQ(file.size(), 24U);
    EXPECT_EQ(file.path(), path_);
    EXPECT_EQ(textOf(file.read(10, 3)), "ABC");
    EXPECT_EQ(textOf(file.read(0, 24)), "0123456789ABCDEFGHIJKLMN");
}

TEST_F(RandomAccessFileReading, FillsTheCallersBuffer) {
    const RandomAccessFile file(path_);
    Bytes buffer(4);
    file.read(20, buffer);
    EXPECT_EQ(textOf(buffer), "KLMN");
    EXPECT_EQ(faultOf([&] { return file.read(21, buffer), 0; }),
              "Read out of bounds (offset=21, length=4, fileSize=24).");
}

TEST_F(RandomAccessFileReading, EndsAtTheEndOfTheFile) {
    const RandomAccessFile file(path_);
    EXPECT_TRUE(file.read(24, 0).empty());
    EXPECT_EQ(faultOf([&] { return file.read(24, 1); }),
              "Read out of bounds (offset=24, length=1, fileSize=24).");
    EXPECT_EQ(faultOf([&] { return file.read(25, 0); }),
              "Read out of bounds (offset=25, length=0, fileSize=24).");
    EXPECT_EQ(faultOf([&] { return file.read(0, 25); }),
              "Read out of bounds (offset=0, length=25, fileSize=24).");
}

TEST_F(RandomAccessFileReading, HugeRangesNeitherWrapNorAllocate) {
    const RandomAccessFile file(path_);
    EXPECT_EQ(faultOf([&] { return file.read(1, std::numeric_limits<std::int64_t>::max()); }),
              "Read out of bounds (offset=1, length=9223372036854775807, fileSize=24).");
    EXPECT_EQ(faultOf([&] { return file.read(std::numeric_limits<std::uint64_t>::max(), 2); }),
              "Read out of bounds (offset=18446744073709551615, length=2, fileSize=24).");
}

TEST_F(RandomAccessFileReading, NegativeCountIsMalformed) {
    const RandomAccessFile file(path_);
    EXPECT_EQ(faultOf([&] { return file.read(0, -1); }),
              "Malformed OMF/Bento file: negative read length");
    EXPECT_EQ(faultOf([&] { return file.read(99, -1); }),
              "Malformed OMF/Bento file: negative read length");
}

TEST_F(RandomAccessFileReading, AFileTruncatedAfterOpeningGivesShortRead) {
    const RandomAccessFile file(path_);
    std::filesystem::resize_file(path_, 10);
    EXPECT_EQ(faultOf([&] { return file.read(0, 24); }), "Short read (expected 24 bytes, got 10).");
    EXPECT_EQ(faultOf([&] { return file.read(12, 4); }), "Short read (expected 4 bytes, got 0).");
    EXPECT_EQ(textOf(file.read(8, 2)), "89");
    EXPECT_EQ(file.size(), 24U);
}

TEST_F(RandomAccessFileReading, AFileThatGrewIsJudgedByItsSizeWhenOpened) {
    const RandomAccessFile file(path_);
    std::filesystem::resize_file(path_, 100);
    EXPECT_EQ(faultOf([&] { return file.read(24, 1); }),
              "Read out of bounds (offset=24, length=1, fileSize=24).");
    Bytes buffer(8);
    EXPECT_EQ(file.readAvailable(20, buffer), 4U);
}

TEST_F(RandomAccessFileReading, AvailableBytesEndWhereTheFileDoes) {
    const RandomAccessFile file(path_);
    Bytes buffer(8);
    EXPECT_EQ(file.readAvailable(4, buffer), 8U);
    EXPECT_EQ(textOf(buffer), "456789AB");
    EXPECT_EQ(file.readAvailable(22, buffer), 2U);
    EXPECT_EQ(textOf(ByteView(buffer).first(2)), "MN");
    EXPECT_EQ(file.readAvailable(24, buffer), 0U);
    EXPECT_EQ(file.readAvailable(std::numeric_limits<std::uint64_t>::max(), buffer), 0U);
    std::filesystem::resize_file(path_, 6);
    EXPECT_EQ(file.readAvailable(4, buffer), 2U);
}

TEST_F(RandomAccessFileReading, CountsItsReadCalls) {
    const RandomAccessFile file(path_);
    EXPECT_EQ(file.readCalls(), 0U);
    EXPECT_EQ(file.read(0, 4).size(), 4U);
    EXPECT_EQ(file.readCalls(), 1U);
    EXPECT_TRUE(file.read(0, 0).empty());
    EXPECT_EQ(file.readCalls(), 1U);
}

TEST(RandomAccessFileOpening, MissingFileNamesItsPath) {
    const TemporaryDirectory folder;
    const std::string path = folder.file("missing.omf");
    EXPECT_EQ(refusalOf([&] { return RandomAccessFile(path).size(); }),
              "cannot open \"" + path + "\": No such file or directory");
}

TEST(RandomAccessFileOpening, AFolderIsRefused) {
    const TemporaryDirectory folder;
    const std::string path = folder.path().string();
    EXPECT_EQ(refusalOf([&] { return RandomAccessFile(path).size(); }),
              "cannot open \"" + path + "\": Is a directory");
}

TEST(RandomAccessFileOpening, APathWithANulIsRefused) {
    const std::string path("a\0b", 3);
    EXPECT_EQ(refusalOf([&] { return RandomAccessFile(path).size(); }),
              "cannot open \"a\xEF\xBF\xBD"
              "b\": Invalid argument");
}

TEST(RandomAccessFileOpening, ANamedPipeDoesNotBlockAndHasNoBytes) {
    const TemporaryDirectory folder;
    const std::string path = folder.file("pipe");
    ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
    const RandomAccessFile file(path);
    EXPECT_EQ(file.size(), 0U);
    EXPECT_EQ(faultOf([&] { return file.read(0, 1); }),
              "Read out of bounds (offset=0, length=1, fileSize=0).");
}

TEST(RandomAccessFileOpening, APathThatIsNoUTF8IsUsedAsItIs) {
    const TemporaryDirectory folder;
    const std::string path = writeFile(folder.file("caf\xE9"), bytesOf("x"));
    EXPECT_EQ(textOf(RandomAccessFile(path).read(0, 1)), "x");
}

TEST(RandomAccessFileOpening, AnEmptyFileIsOpened) {
    const TemporaryDirectory folder;
    const RandomAccessFile file(writeFile(folder.file("empty"), {}));
    EXPECT_EQ(file.size(), 0U);
    EXPECT_TRUE(file.read(0, 0).empty());
}

}  // namespace
}  // namespace trellant
