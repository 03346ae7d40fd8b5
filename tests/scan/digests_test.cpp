// SPDX-License-Identifier: Apache-2.0
#include "digests.h"

#include <trellant/client/errors.h>

#include <gtest/gtest.h>

#include <trellant_testing/byte_writer.h>
#include <trellant_testing/temporary_directory.h>

namespace trellant::scan {
namespace {

using Samples = AAFWorkerExtensions::Samples;
using testing::bytesOf;
using testing::hex;
using testing::TemporaryDirectory;
using testing::writeFile;

/// Of "abc", as FIPS 180-4 has it.
constexpr const char* digestOfAbc =
    "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad";

class Digests : public ::testing::Test {
  protected:
    [[nodiscard]] std::optional<SampleDigest> samplesOf(ByteView bytes, const Samples& samples) {
        return digestOf(RandomAccessFile(writeFile(folder_.file("any"), bytes)), samples, {});
    }
    [[nodiscard]] std::string wholeOf(ByteView bytes) {
        return digestOf(RandomAccessFile(writeFile(folder_.file("any"), bytes)), {});
    }

    TemporaryDirectory folder_;
};

TEST_F(Digests, OfAFileIsThatOfAllItsBytes) {
    EXPECT_EQ(wholeOf(bytesOf("abc")), digestOfAbc);
    EXPECT_EQ(wholeOf({}), "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
}

TEST_F(Digests, OfSamplesIsThatOfTheirPiecesInOrder) {
    const auto digest =
        samplesOf(bytesOf("..bc.a"), {.sampleBytes = 1, .pieces = {{5, 1}, {2, 2}}});
    ASSERT_TRUE(digest);
    EXPECT_EQ(digest->sha256, digestOfAbc);
    EXPECT_EQ(digest->bytes, 3U);
}

TEST_F(Digests, BigEndianSamplesCountAsAWaveFileHasThem) {
    // "cba" the other way round, a sample of three bytes that is in two pieces.
    const auto whole = samplesOf(bytesOf("c.ba"),
                                 {.sampleBytes = 3, .bigEndian = true, .pieces = {{0, 1}, {2, 2}}});
    ASSERT_TRUE(whole);
    EXPECT_EQ(whole->sha256, digestOfAbc);
    // Of one byte: 'a' is 0x61 without a sign and 0xE1 with one.
    const auto bytes =
        samplesOf(hex("E1 E2 E3"), {.sampleBytes = 1, .bigEndian = true, .pieces = {{0, 3}}});
    ASSERT_TRUE(bytes);
    EXPECT_EQ(bytes->sha256, digestOfAbc);
}

TEST_F(Digests, LongAudioIsTheSameInAnyPieces) {
    // More than two portions of a mebibyte, of samples of three bytes, which divide none.
    Bytes audio(3'000'000);
    for (std::size_t i = 0; i < audio.size(); ++i) {
        audio[i] = static_cast<std::byte>(i * 7 % 251);
    }
    Bytes reversed = audio;
    for (std::size_t at = 0; at < reversed.size(); at += 3) {
        std::swap(reversed[at], reversed[at + 2]);
    }
    const std::string expected = wholeOf(audio);
    const auto digest = samplesOf(
        reversed, {.sampleBytes = 3, .bigEndian = true, .pieces = {{0, 1}, {1, 2'999'999}}});
    ASSERT_TRUE(digest);
    EXPECT_EQ(digest->sha256, expected);
}

TEST_F(Digests, PiecesThatNoFileCanHaveAreRefused) {
    const Bytes file = bytesOf("abc");
    for (const Samples& samples :
         {Samples{.pieces = {{0, 4}}}, Samples{.pieces = {{4, 1}}}, Samples{.pieces = {{-1, 1}}},
          Samples{.pieces = {{0, -1}}}, Samples{.pieces = {{0, 3}, {0, 3}}},
          Samples{.sampleBytes = 0, .pieces = {{0, 3}}},
          Samples{.sampleBytes = 9, .pieces = {{0, 3}}}}) {
        EXPECT_FALSE(samplesOf(file, samples));
    }
}

TEST_F(Digests, AStopEndsThem) {
    StopSource source;
    source.request_stop();
    const RandomAccessFile file(writeFile(folder_.file("any"), bytesOf("abc")));
    EXPECT_THROW(static_cast<void>(digestOf(file, source.get_token())), AAFCancellationError);
}

}  // namespace
}  // namespace trellant::scan
