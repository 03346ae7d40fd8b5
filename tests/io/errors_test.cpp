// SPDX-License-Identifier: Apache-2.0
#include <trellant/io/errors.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <limits>

namespace trellant {
namespace {

TEST(OMFIOError, OutOfBoundsNamesOffsetLengthAndFileSize) {
    const OMFIOError error(OMFIOError::OutOfBounds{10, 20, 15});
    EXPECT_EQ(error.errorDescription(), "Read out of bounds (offset=10, length=20, fileSize=15).");
}

TEST(OMFIOError, OutOfBoundsPrintsTheLargestNumbersUnsigned) {
    constexpr auto largest = std::numeric_limits<std::uint64_t>::max();
    const OMFIOError error(OMFIOError::OutOfBounds{largest, largest, 0});
    EXPECT_EQ(error.errorDescription(),
              "Read out of bounds (offset=18446744073709551615, length=18446744073709551615, "
              "fileSize=0).");
}

TEST(OMFIOError, ShortReadNamesExpectedAndObtainedBytes) {
    const OMFIOError error(OMFIOError::ShortRead{24, 10});
    EXPECT_EQ(error.errorDescription(), "Short read (expected 24 bytes, got 10).");
}

TEST(OMFIOError, MalformedAndUnsupportedEndWithTheirTextWithoutAStop) {
    EXPECT_EQ(OMFIOError::malformed("negative read length").errorDescription(),
              "Malformed OMF/Bento file: negative read length");
    EXPECT_EQ(OMFIOError::unsupported("TOC larger than 512 MiB").errorDescription(),
              "Unsupported OMF/Bento feature: TOC larger than 512 MiB");
}

TEST(OMFIOError, WhatIsTheDescription) {
    EXPECT_STREQ(OMFIOError::malformed("x").what(), "Malformed OMF/Bento file: x");
}

TEST(OMFIOError, KeepsItsFaultAsData) {
    const OMFIOError error(OMFIOError::ShortRead{24, 10});
    EXPECT_EQ(std::get<OMFIOError::ShortRead>(error.fault()), (OMFIOError::ShortRead{24, 10}));
}

TEST(FileSystemError, NamesActionPathAndReason) {
    const FileSystemError error("create directory", "/a/b", EACCES);
    EXPECT_STREQ(error.what(), "cannot create directory \"/a/b\": Permission denied");
    EXPECT_EQ(error.errorNumber(), EACCES);
}

TEST(FileSystemError, StaysOneLineWhateverThePathHolds) {
    const std::string replacement = "\xEF\xBF\xBD";
    EXPECT_STREQ(FileSystemError("open", std::string("a\nb\0c\x7F", 6), ENOENT).what(),
                 ("cannot open \"a" + replacement + "b" + replacement + "c" + replacement +
                  "\": No such file or directory")
                     .c_str());
}

TEST(FileSystemError, ShowsAPathThatIsNoUTF8WithReplacementCharacters) {
    const FileSystemError error("open",
                                "a\xFF"
                                "b",
                                ENOENT);
    EXPECT_STREQ(error.what(),
                 "cannot open \"a\xEF\xBF\xBD"
                 "b\": No such file or directory");
}

}  // namespace
}  // namespace trellant
