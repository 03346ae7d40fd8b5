// SPDX-License-Identifier: Apache-2.0
#include "wave_file.h"

#include <gtest/gtest.h>

#include <trellant_testing/byte_writer.h>
#include <trellant_testing/temporary_directory.h>

namespace trellant::render {
namespace {

using trellant::testing::hex;
using trellant::testing::readFile;
using trellant::testing::TemporaryDirectory;

TEST(WaveFileWriter, WritesHeadChunksAndSamples) {
    const TemporaryDirectory folder;
    const std::string path = folder.file("a.wav");
    WaveFileWriter writer(path, {.frames = 3}, hex("41424344 02000000 0102"));
    writer.add(hex("000040 000080"));
    writer.add(hex("FFFF7F"));
    // sha256sum says the same of these bytes.
    EXPECT_EQ(writer.finish().size(), 64U);
    // RIFF: 4 + 24 + 10 + 8 + 9 + 1 = 56 bytes; 144,000 = 0x23280 bytes in a second.
    EXPECT_EQ(
        readFile(path),
        hex("52494646 38000000 57415645 666D7420 10000000 0100 0100 80BB0000 80320200 0300 1800"
            "41424344 02000000 0102"
            "64617461 09000000 000040 000080 FFFF7F 00"));
}

TEST(WaveHead, FloatingPointSaysHowManyFrames) {
    // RIFF: 4 + 26 + 12 + 8 + 16 = 66; 384,000 = 0x5DC00.
    EXPECT_EQ(waveHead({.format = {32, true}, .channels = 2, .frames = 2}, {}),
              hex("52494646 42000000 57415645 666D7420 12000000 0300 0200 80BB0000 00DC0500 0800 "
                  "2000 0000"
                  "66616374 04000000 02000000 64617461 10000000"));
}

TEST(WaveHead, IsOfTheLargeFormBeyondFourGibibytes) {
    // 36 bytes besides the samples are 4,294,967,295 with 4,294,967,259 of these; the next even
    // number of three-byte samples is 1,431,655,753 frames, which is 4,294,967,259.
    const Bytes small = waveHead({.frames = 1'431'655'752}, {});
    EXPECT_EQ(Bytes(small.begin(), small.begin() + 4), hex("52494646"));
    const Bytes large = waveHead({.frames = 1'431'655'753}, {});
    // The size: 4,294,967,260 and 72 bytes around them: 0x1_0000_0024.
    EXPECT_EQ(Bytes(large.begin(), large.begin() + 48),
              hex("52463634 FFFFFFFF 57415645 64733634 1C000000 2400000001000000 DBFFFFFF00000000"
                  "4955555500000000 00000000"));
    EXPECT_EQ(Bytes(large.end() - 8, large.end()), hex("64617461 FFFFFFFF"));
}

}  // namespace
}  // namespace trellant::render
