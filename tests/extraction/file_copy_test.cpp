// SPDX-License-Identifier: Apache-2.0
#include <trellant/client/errors.h>
#include <trellant/extraction/file_copy.h>
#include <trellant/io/errors.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <trellant_testing/byte_writer.h>
#include <trellant_testing/temporary_directory.h>

namespace trellant::testing {
namespace {

class FileCopy : public ::testing::Test {
  protected:
    TemporaryDirectory folder_;
    StopSource stop_;
    WorkProgress progress_{stop_.get_token()};
};

TEST_F(FileCopy, GivesTheSameBytesAndCountsThem) {
    Bytes bytes(40'000'001);
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        bytes[i] = static_cast<std::byte>((i * 31) >> 8U);
    }
    const std::string source = writeFile(folder_.file("a"), bytes);
    progress_.begin("", bytes.size());
    copyFile(source, folder_.file("b"), progress_);
    EXPECT_EQ(readFile(folder_.file("b")), bytes);
    EXPECT_EQ(progress_.bytes(), bytes.size());
}

TEST_F(FileCopy, AnEmptyFileIsCopiedToo) {
    copyFile(writeFile(folder_.file("a"), {}), folder_.file("b"), progress_);
    EXPECT_TRUE(readFile(folder_.file("b")).empty());
}

TEST_F(FileCopy, NeverReplacesAFileOrFollowsALink) {
    const std::string source = writeFile(folder_.file("a"), bytesOf("new"));
    writeFile(folder_.file("b"), bytesOf("mine"));
    std::filesystem::create_symlink(folder_.file("b"), folder_.file("link"));
    EXPECT_THROW(copyFile(source, folder_.file("b"), progress_), FileSystemError);
    EXPECT_THROW(copyFile(source, folder_.file("link"), progress_), FileSystemError);
    EXPECT_EQ(readFile(folder_.file("b")), bytesOf("mine"));
}

TEST_F(FileCopy, OnlyRegularFilesAreRead) {
    EXPECT_THROW(copyFile(folder_.path(), folder_.file("b"), progress_), FileSystemError);
    EXPECT_THROW(copyFile("/dev/zero", folder_.file("b"), progress_), FileSystemError);
    EXPECT_THROW(copyFile(folder_.file("none"), folder_.file("b"), progress_), FileSystemError);
}

TEST_F(FileCopy, EndsAfterAStop) {
    const std::string source = writeFile(folder_.file("a"), bytesOf("new"));
    stop_.request_stop();
    EXPECT_THROW(copyFile(source, folder_.file("b"), progress_), AAFCancellationError);
}

}  // namespace
}  // namespace trellant::testing
