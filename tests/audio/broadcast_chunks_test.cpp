// SPDX-License-Identifier: Apache-2.0
#include <trellant/audio/broadcast_chunks.h>

#include <gtest/gtest.h>

#include <string>

namespace trellant {

namespace {

using audio::broadcastChunk;
using audio::broadcastHeadBytes;
using audio::BroadcastValues;
using audio::productionChunk;
using audio::ProductionValues;
using audio::riffChunk;

std::string textOf(ByteView bytes) {
    std::string text;
    for (const std::byte byte : bytes) {
        text += static_cast<char>(byte);
    }
    return text;
}

/// A field of "bext": what it holds, filled up with zeros.
std::string filled(std::string text, std::size_t width) {
    text.resize(width, '\0');
    return text;
}

TEST(BroadcastChunk, PutsEachValueAtItsPlace) {
    // 2001-09-09 01:46:40 is a thousand million seconds from 1970 on.
    const std::string chunk = textOf(broadcastChunk({.description = "Scene 12",
                                                     .originator = "Trellant",
                                                     .originatorReference = "A001",
                                                     .originated = 1'000'000'000,
                                                     .timeReference = 0x1'0203'0405,
                                                     .codingHistory = "A=PCM,F=48000\r\n"}));
    EXPECT_EQ(chunk, filled("Scene 12", 256) + filled("Trellant", 32) + filled("A001", 32) +
                         "2001-09-09" + "01:46:40" + std::string("\x05\x04\x03\x02\x01\0\0\0", 8) +
                         std::string("\x01\0", 2) + std::string(254, '\0') + "A=PCM,F=48000\r\n");
}

TEST(BroadcastChunk, OfNothingIsZerosAndAVersion) {
    std::string expected(broadcastHeadBytes, '\0');
    expected[346] = '\x01';
    EXPECT_EQ(textOf(broadcastChunk({})), expected);
}

TEST(BroadcastChunk, CutsWhatDoesNotFit) {
    const std::string chunk = textOf(broadcastChunk({.description = std::string(300, 'd'),
                                                     .originator = std::string(33, 'o'),
                                                     .originatorReference = std::string(33, 'r'),
                                                     .codingHistory = std::string(70'000, 'h')}));
    EXPECT_EQ(chunk.substr(0, 320),
              std::string(256, 'd') + std::string(32, 'o') + std::string(32, 'r'));
    EXPECT_EQ(chunk.substr(broadcastHeadBytes), std::string(65'536, 'h'));
}

TEST(BroadcastChunk, KeepsTextsToAscii) {
    // A letter of two bytes and one of four are a character each, a broken byte is one too.
    const std::string chunk =
        textOf(broadcastChunk({.description = "Caf\u00E9 \U0001F3A7\xFF\r\nend",
                               .codingHistory = "caf\u00E9\x01\r\nA=PCM"}));
    EXPECT_EQ(chunk.substr(0, 256), filled("Caf? ?? end", 256));
    EXPECT_EQ(chunk.substr(broadcastHeadBytes), "caf? \r\nA=PCM");
}

TEST(BroadcastChunk, LeavesDatesOutThatHaveNoForm) {
    const auto dateOf = [](std::int64_t seconds) {
        return textOf(broadcastChunk({.originated = seconds})).substr(320, 18);
    };
    const std::string none(18, '\0');
    // 9999-12-31 23:59:59, and a second later; 0001-01-01 00:00:00, and a second before.
    EXPECT_EQ(dateOf(253'402'300'799), "9999-12-3123:59:59");
    EXPECT_EQ(dateOf(253'402'300'800), none);
    EXPECT_EQ(dateOf(-62'135'596'800), "0001-01-0100:00:00");
    EXPECT_EQ(dateOf(-62'135'596'801), none);
    EXPECT_EQ(dateOf(INT64_MIN), none);
    EXPECT_EQ(dateOf(INT64_MAX), none);
}

TEST(ProductionChunk, HoldsEachValue) {
    // 5,000,000,000 is 1 * 2^32 + 705,032,704.
    const std::string text =
        textOf(productionChunk({.project = "Night",
                                .scene = "12",
                                .take = "3",
                                .tape = "A001",
                                .note = "wind",
                                .sampleRate = 48'000,
                                .bitDepth = 24,
                                .timecode = audio::TimecodeForm{.rate = AAFRational(30'000, 1001)},
                                .timeReference = 5'000'000'000,
                                .trackNames = {"Boom", ""}}));
    EXPECT_EQ(text,
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
              "<BWFXML>\n"
              "  <IXML_VERSION>1.61</IXML_VERSION>\n"
              "  <PROJECT>Night</PROJECT>\n"
              "  <SCENE>12</SCENE>\n"
              "  <TAKE>3</TAKE>\n"
              "  <TAPE>A001</TAPE>\n"
              "  <NOTE>wind</NOTE>\n"
              "  <SPEED>\n"
              "    <MASTER_SPEED>30000/1001</MASTER_SPEED>\n"
              "    <CURRENT_SPEED>30000/1001</CURRENT_SPEED>\n"
              "    <TIMECODE_RATE>30000/1001</TIMECODE_RATE>\n"
              "    <TIMECODE_FLAG>NDF</TIMECODE_FLAG>\n"
              "    <FILE_SAMPLE_RATE>48000</FILE_SAMPLE_RATE>\n"
              "    <AUDIO_BIT_DEPTH>24</AUDIO_BIT_DEPTH>\n"
              "    <DIGITIZER_SAMPLE_RATE>48000</DIGITIZER_SAMPLE_RATE>\n"
              "    <TIMESTAMP_SAMPLES_SINCE_MIDNIGHT_HI>1</TIMESTAMP_SAMPLES_SINCE_MIDNIGHT_HI>\n"
              "    <TIMESTAMP_SAMPLES_SINCE_MIDNIGHT_LO>705032704"
              "</TIMESTAMP_SAMPLES_SINCE_MIDNIGHT_LO>\n"
              "    <TIMESTAMP_SAMPLE_RATE>48000</TIMESTAMP_SAMPLE_RATE>\n"
              "  </SPEED>\n"
              "  <TRACK_LIST>\n"
              "    <TRACK_COUNT>2</TRACK_COUNT>\n"
              "    <TRACK>\n"
              "      <CHANNEL_INDEX>1</CHANNEL_INDEX>\n"
              "      <INTERLEAVE_INDEX>1</INTERLEAVE_INDEX>\n"
              "      <NAME>Boom</NAME>\n"
              "    </TRACK>\n"
              "    <TRACK>\n"
              "      <CHANNEL_INDEX>2</CHANNEL_INDEX>\n"
              "      <INTERLEAVE_INDEX>2</INTERLEAVE_INDEX>\n"
              "    </TRACK>\n"
              "  </TRACK_LIST>\n"
              "</BWFXML>\n");
}

TEST(ProductionChunk, LeavesOutWhatIsNotKnown) {
    EXPECT_EQ(textOf(productionChunk({.sampleRate = 44'100})),
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
              "<BWFXML>\n"
              "  <IXML_VERSION>1.61</IXML_VERSION>\n"
              "  <SPEED>\n"
              "    <FILE_SAMPLE_RATE>44100</FILE_SAMPLE_RATE>\n"
              "    <DIGITIZER_SAMPLE_RATE>44100</DIGITIZER_SAMPLE_RATE>\n"
              "  </SPEED>\n"
              "</BWFXML>\n");
}

TEST(ProductionChunk, EscapesAndCutsTheTextsOfStrangers) {
    const std::string text = textOf(productionChunk(
        {.tape = "</TAPE><NOTE>\x02&",
         .note = std::string(5'000, 'n'),
         .timecode = audio::TimecodeForm{.rate = AAFRational(25), .dropFrame = false}}));
    EXPECT_NE(text.find("  <TAPE>&lt;/TAPE&gt;&lt;NOTE&gt; &amp;</TAPE>\n"), std::string::npos);
    EXPECT_NE(text.find("  <NOTE>" + std::string(4'096, 'n') + "</NOTE>\n"), std::string::npos);
    EXPECT_NE(text.find("    <TIMECODE_RATE>25/1</TIMECODE_RATE>\n"), std::string::npos);
}

TEST(ProductionChunk, NamesDropFrame) {
    const ProductionValues values{
        .timecode = audio::TimecodeForm{.rate = AAFRational(30'000, 1001), .dropFrame = true}};
    EXPECT_NE(textOf(productionChunk(values)).find("    <TIMECODE_FLAG>DF</TIMECODE_FLAG>\n"),
              std::string::npos);
}

TEST(RiffChunk, HasAnEvenNumberOfBytes) {
    const Bytes odd{std::byte{'a'}, std::byte{'b'}, std::byte{'c'}};
    EXPECT_EQ(textOf(riffChunk("iXML", odd)), std::string("iXML\x03\0\0\0abc\0", 12));
    EXPECT_EQ(textOf(riffChunk("bext", ByteView(odd).first(2))),
              std::string("bext\x02\0\0\0ab", 10));
}

}  // namespace

}  // namespace trellant
