// SPDX-License-Identifier: Apache-2.0
#include "marker_limits.h"
#include "session_samples.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <trellant_testing/comma_locale.h>

namespace trellant {

namespace {

using exchange::Samples;
using sessions::CueFileShare;
using sessions::cueFileShare;
using sessions::markerName;
using sessions::Session;
using testing::addClip;
using testing::addMedia;
using testing::emptySession;
using testing::twoTracks;

std::string labelsOf(const Session& session) {
    return testing::textOf(session, sessions::writeAudacityLabels);
}

std::string listOf(const Session& session) {
    return testing::textOf(session, sessions::writeReaperMarkers);
}

std::string cuesOf(const Session& session) {
    std::string text;
    sessions::writeCuePoints(session, [&](std::uint64_t place, ByteView piece) {
        // What nothing is written for is zero.
        text.resize(std::max<std::size_t>(text.size(), place + piece.size()));
        for (std::size_t i = 0; i < piece.size(); ++i) {
            text[place + i] = static_cast<char>(piece[i]);
        }
    });
    return text;
}

TEST(Markers, LabelStartClipsAndRemarksInOrderOfTheirPlaces) {
    EXPECT_EQ(labelsOf(twoTracks()),
              "0\t0\tStart 01:00:00:00, 25 fps\n"
              "0\t1\tDialog: Anna take 1\n"
              "0.25\t0.75\tAtmo: Rain\n"
              "0.9\t2\tDialog: Ben answers\n"
              "1\t1.5\tAtmo: Silent.\n"
              "2\t2\tLeft out.\n");
}

TEST(Markers, ListPlacesAndRegionsForReaper) {
    EXPECT_EQ(listOf(twoTracks()),
              "#,Name,Start,End,Length,Color\n"
              "M1,\"Start 01:00:00:00, 25 fps\",0:00.000000000,,,\n"
              "R1,Dialog: Anna take 1,0:00.000000000,0:01.000000000,0:01.000000000,\n"
              "R2,Atmo: Rain,0:00.250000000,0:00.750000000,0:00.500000000,\n"
              "R3,Dialog: Ben answers,0:00.900000000,0:02.000000000,0:01.100000000,\n"
              "R4,Atmo: Silent.,0:01.000000000,0:01.500000000,0:00.500000000,FFFF00\n"
              "M2,Left out.,0:02.000000000,,,FF0000\n");
}

TEST(Markers, CountSecondsWithEnoughDigitsForEverySample) {
    Session session = emptySession();
    session.plan.rate = 384'000;
    session.markers.push_back({.position = 1, .text = "one"});
    // 61 minutes, 1 second and two samples.
    session.markers.push_back({.position = 3'661 * 384'000 + 2, .text = "two"});
    session.markers.push_back({.position = exchange::mostSamples, .text = "last"});
    // 1/384,000 is 2.6041666... millionths; 2^53/384,000 = 23,456,248,059.22133...
    EXPECT_EQ(listOf(session),
              "#,Name,Start,End,Length,Color\n"
              "M1,\"Start 01:00:00:00, 25 fps\",0:00.000000000,,,\n"
              "M2,one,0:00.000002604,,,FFFF00\n"
              "M3,two,61:01.000005208,,,FFFF00\n"
              "M4,last,390937467:39.221333333,,,FFFF00\n");
    EXPECT_EQ(labelsOf(session),
              "0\t0\tStart 01:00:00:00, 25 fps\n"
              "0.0000026041666666666666\t0.0000026041666666666666\tone\n"
              "3661.0000052083333\t3661.0000052083333\ttwo\n"
              "23456248059.221333\t23456248059.221333\tlast\n");
}

TEST(Markers, KeepOnOneLineWhateverANameHolds) {
    EXPECT_EQ(markerName("a\tb\r\nc"), "a b c");
    Session session = emptySession();
    const std::string name = testing::hostileName();
    session.plan.tracks[0].name = "1\t2";
    addClip(session, name, addMedia(session, "Anna"), 48'000, 48'000, 0);
    session.markers.push_back({.position = 48'000, .text = name});
    const std::string held = markerName(name);
    EXPECT_EQ(labelsOf(session),
              "0\t0\tStart 01:00:00:00, 25 fps\n1\t1\t" + held + "\n1\t2\t1 2: " + held + "\n");
    std::string quoted;
    for (const char byte : held) {
        quoted.append(byte == '"' ? 2 : 1, byte);
    }
    EXPECT_NE(listOf(session).find("\nM2,\"" + quoted + "\",0:01.000000000,,,FFFF00\n"),
              std::string::npos);
}

TEST(Markers, AreTheSameInAnyLocale) {
    const std::string labels = labelsOf(twoTracks());
    const std::string list = listOf(twoTracks());
    const testing::CommaLocale comma;
    EXPECT_EQ(labelsOf(twoTracks()), labels);
    EXPECT_EQ(listOf(twoTracks()), list);
}

/// Little-endian bytes of a number.
std::string bytes(std::uint64_t value, std::size_t width) {
    std::string text;
    for (std::size_t i = 0; i < width; ++i) {
        text += static_cast<char>(value >> (8 * i) & 0xFFU);
    }
    return text;
}

std::string chunk(const std::string& name, const std::string& content) {
    return name + bytes(content.size(), 4) + content + std::string(content.size() % 2, '\0');
}

std::string cue(std::uint64_t number, std::uint64_t sample) {
    return bytes(number, 4) + bytes(sample, 4) + "data" + bytes(0, 8) + bytes(sample, 4);
}

std::string label(std::uint64_t number, const std::string& text) {
    return chunk("labl", bytes(number, 4) + text + '\0');
}

TEST(Markers, StandAsCuesInASilentFile) {
    Session session = emptySession();
    session.plan.start = AAFTimecodeAddress(0, 0, 0, 0, AAFTimecodeRate::fps24());
    session.plan.tracks[0].name = "T";
    addClip(session, "A", addMedia(session, "Anna"), 2, 3, 0);
    session.markers.push_back({.position = 4, .text = "gone"});
    const std::string format = bytes(1, 2) + bytes(1, 2) + bytes(48'000, 4) + bytes(96'000, 4) +
                               bytes(2, 2) + bytes(16, 2);
    const std::string region =
        chunk("ltxt", bytes(2, 4) + bytes(3, 4) + "rgn " + bytes(0, 6) + bytes(65'001, 2));
    EXPECT_EQ(cuesOf(session),
              chunk("RIFF", "WAVE" + chunk("fmt ", format) + chunk("data", std::string(10, '\0')) +
                                chunk("cue ", bytes(3, 4) + cue(1, 0) + cue(2, 2) + cue(3, 4)) +
                                chunk("LIST", "adtl" + label(1, "Start 00:00:00:00, 24 fps") +
                                                  label(2, "T: A") + region + label(3, "gone"))));
    EXPECT_EQ(cueFileShare(session), (CueFileShare{.length = 5, .held = 3, .leftOut = 0}));
}

/// The first bytes of the file of cues, how long it is, and that its silence is not written.
std::pair<std::string, std::uint64_t> headOf(const Session& session) {
    std::string head;
    std::uint64_t end = 0;
    std::uint64_t written = 0;
    sessions::writeCuePoints(session, [&](std::uint64_t place, ByteView piece) {
        end = std::max<std::uint64_t>(end, place + piece.size());
        written += piece.size();
        for (std::size_t i = 0; i < piece.size() && head.size() < 64; ++i) {
            head += static_cast<char>(piece[i]);
        }
    });
    EXPECT_LT(written, 1'000U);
    return {head, end};
}

TEST(Markers, AreCutAtWhatAWaveFileCounts) {
    Session session = emptySession();
    session.plan.length = exchange::mostSamples;
    session.markers.push_back({.position = 10, .length = exchange::mostSamples, .text = "long"});
    session.markers.push_back({.position = 3'000'000'000, .text = "behind"});
    // "WAVE", four headers, the format, the count of cues, "adtl"; two cues; the texts: 4 + 25 + 1
    // and 4 + 4 + 1 + 1 for its even end, each behind a header, and a region of 20 behind one.
    constexpr std::uint64_t others = 4 + 4 * 8 + 16 + 4 + 4 + 2 * 24 + 8 + 30 + 8 + 10 + 8 + 20;
    const CueFileShare share = cueFileShare(session);
    EXPECT_EQ(share.held, 2U);
    EXPECT_EQ(share.leftOut, 1U);
    // The text of the mark that is left out counts too: 8 + 4 + 6 + 1 + 1, and its cue.
    EXPECT_EQ(share.length, static_cast<Samples>((0xFFFFFFFFU - others - 24 - 20) / 2));
    const auto [head, count] = headOf(session);
    EXPECT_EQ(count, 8 + others + 2 * static_cast<std::uint64_t>(share.length));
    EXPECT_EQ(head.substr(0, 8), "RIFF" + bytes(count - 8, 4));
    EXPECT_EQ(head.substr(36, 8), "data" + bytes(2 * static_cast<std::uint64_t>(share.length), 4));
}

TEST(Markers, LeaveOutTextsThatHaveNoRoom) {
    Session session = emptySession();
    session.plan.length = 10;
    for (int i = 0; i < 4; ++i) {
        session.markers.push_back({.position = 1, .text = std::string(1000, 'x')});
    }
    // A cue of 24 bytes and a label behind a header of 8: 4 + 25 + 1 bytes for that of the start,
    // 4 + 1000 + 1 + 1 for each other.
    constexpr std::uint64_t three = (24 + 8 + 30) + 3 * (24 + 8 + 1006);
    EXPECT_EQ(cueFileShare(session, three), (CueFileShare{.length = 10, .held = 4, .leftOut = 1}));
    EXPECT_EQ(cueFileShare(session, three - 1),
              (CueFileShare{.length = 10, .held = 3, .leftOut = 2}));
    EXPECT_EQ(cueFileShare(session), (CueFileShare{.length = 10, .held = 5, .leftOut = 0}));
}

TEST(Markers, HoldManyClips) {
    Session session = emptySession();
    const std::size_t anna = addMedia(session, "Anna");
    for (Samples i = 0; i < 20'000; ++i) {
        addClip(session, "A", anna, i * 10, 10, 0);
    }
    EXPECT_EQ(cueFileShare(session).held, 20'001U);
    const std::string list = listOf(session);
    // The head, the start, and the clips.
    EXPECT_EQ(std::count(list.begin(), list.end(), '\n'), 20'002);
}

}  // namespace

}  // namespace trellant
