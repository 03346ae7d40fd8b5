// SPDX-License-Identifier: Apache-2.0
// Media that are linked, embedded or missing, in every form that they come in.
#include "sample_sessions.h"
#include "written_session.h"

#include <trellant/base/system_call_error.h>
#include <trellant/compound/errors.h>

#include <filesystem>
#include <fstream>
#include <trellant_testing/byte_writer.h>
#include <trellant_testing/temporary_directory.h>

namespace trellant::sessions {
namespace {

using exchange::PlannedMedia;

Session sessionOfMedium(PlannedMedia media) {
    return sessionOf(planOf({track("A", {clip(0, 480)})}, {std::move(media)}));
}

std::string descriptionOf(const Session& session) {
    const WrittenObjects written(session);
    return written.reader().textOf(written.pathOf("SourceMob", session.plan.media.at(0).name) +
                                   "/EssenceDescription");
}

/// As the reader writes it: "[82, 73, ...]".
std::string textOf(ByteView bytes) {
    std::string text;
    for (const std::byte byte : bytes) {
        text += (text.empty() ? "[" : ", ") + std::to_string(std::to_integer<int>(byte));
    }
    return text + "]";
}

TEST(AafMedia, LinkedFileIsAWaveFileAtItsPlace) {
    PlannedMedia media = medium("Anna");
    media.frames = 1000;
    Session session = sessionOfMedium(media);
    session.media[0].path = "/session/\xC3\x89t\xC3\xA9/Anna 1#.wav";
    testing::ByteWriter head(OMFByteOrder::little);
    head.text("RIFF").u32(3036).text("WAVEfmt ").u32(16).u16(1).u16(1);
    head.u32(48'000).u32(144'000).u16(3).u16(24).text("data").u32(3000);
    EXPECT_EQ(descriptionOf(session),
              "WAVEDescriptor\n"
              "  ContainerFormat ContainerDef_AAF\n"
              "  Length 1000\n"
              "  Locator\n"
              "    0 NetworkLocator\n"
              "      URLString \"file:///session/%C3%89t%C3%A9/Anna%201%23.wav\"\n"
              "  SampleRate 48000/1\n"
              "  Summary " +
                  textOf(head.written()) + "\n");
}

TEST(AafMedia, FileMobHasASlotOfItsOwnRate) {
    PlannedMedia media = medium("Anna");
    media.sampleRate = AAFRational(44'100);
    media.frames = 1000;
    const WrittenObjects written(sessionOfMedium(media));
    const std::string mob = written.pathOf("SourceMob", "Anna");
    EXPECT_EQ(written.reader().valueOf(mob, "Slots"), "1 objects");
    EXPECT_EQ(written.reader().textOf(mob + "/Slots/0"),
              "TimelineMobSlot\n"
              "  EditRate 44100/1\n"
              "  Origin 0\n"
              "  PhysicalTrackNumber 1\n"
              "  Segment -> SourceClip\n"
              "    DataDefinition DataDef_Sound\n"
              "    Length 1000\n"
              "    SourceID no mob\n"
              "    SourceMobSlotID 0\n"
              "    StartTime 0\n"
              "  SlotID 1\n");
    EXPECT_EQ(
        written.reader().valueOf(written.pathOf("MasterMob", "Clip") + "/Slots/0", "EditRate"),
        "44100/1");
}

struct FormCase {
    const char* name;
    std::int64_t rate;
    std::int64_t bits;
    bool isFloatingPoint;
    std::int64_t channels;
};

class AafMediaForms : public ::testing::TestWithParam<FormCase> {
  protected:
    [[nodiscard]] static PlannedMedia media() {
        PlannedMedia media = medium("Anna");
        media.sampleRate = AAFRational(GetParam().rate);
        media.bitDepth = GetParam().bits;
        media.isFloatingPoint = GetParam().isFloatingPoint;
        media.channelCount = GetParam().channels;
        return media;
    }
};

TEST_P(AafMediaForms, OfLinkedFilesAreRead) {
    const ReadAafSession read = readBack(sessionOfMedium(media()));
    EXPECT_EQ(read.plan.media, std::vector<PlannedMedia>{media()});
    EXPECT_EQ(read.media.at(0),
              (ReadMedia{.kind = "WAVE", .urls = {"file:///session/Song.media/Anna.wav"}}));
}

TEST_P(AafMediaForms, OfFilesThatAreNoWaveFilesAreReadButForFloatingPoint) {
    Session session = sessionOfMedium(media());
    session.media[0].wave.reset();
    PlannedMedia expected = media();
    expected.isFloatingPoint = false;
    const ReadAafSession read = readBack(session);
    EXPECT_EQ(read.plan.media, std::vector<PlannedMedia>{expected});
    EXPECT_EQ(read.media.at(0),
              (ReadMedia{.kind = "PCM", .urls = {"file:///session/Song.media/Anna.wav"}}));
}

INSTANTIATE_TEST_SUITE_P(Forms, AafMediaForms,
                         ::testing::Values(FormCase{"Bits8", 48'000, 8, false, 1},
                                           FormCase{"Bits16", 48'000, 16, false, 1},
                                           FormCase{"Bits24", 48'000, 24, false, 1},
                                           FormCase{"Bits32", 48'000, 32, false, 1},
                                           FormCase{"Float", 48'000, 32, true, 1},
                                           FormCase{"Double", 48'000, 64, true, 1},
                                           FormCase{"Rate11025", 11'025, 16, false, 1},
                                           FormCase{"Rate44100", 44'100, 24, false, 1},
                                           FormCase{"Rate96000", 96'000, 24, false, 1},
                                           FormCase{"Stereo", 48'000, 24, false, 2}),
                         [](const auto& one) { return std::string(one.param.name); });

TEST(AafMedia, SessionRateIsThatOfItsTracks) {
    for (const std::int64_t rate : {44'100, 48'000, 96'000, 384'000}) {
        Session session = sessionOfMedium(medium("Anna"));
        session.plan.rate = rate;
        EXPECT_EQ(readBack(session).plan.rate, rate);
    }
}

TEST(AafMedia, SourceStartIsCountedAtTheSessionRate) {
    // 5513 samples of 11,025 in a second are 24,002.18 of 48,000.
    exchange::PlannedClip one = clip(0, 480, 5513);
    one.sourceStartAtSessionRate = 24'002;
    PlannedMedia media = medium("Rain");
    media.sampleRate = AAFRational(11'025);
    const ReadAafSession read = readBack(sessionOf(planOf({track("A", {one})}, {media})));
    EXPECT_EQ(read.plan.tracks.at(0).lanes.at(0).clips.at(0).sourceStartAtSessionRate, 24'002);
}

TEST(AafMedia, ClipsPlayTheChannelThatTheyName) {
    PlannedMedia stereo = medium("Theme");
    stereo.channelCount = 2;
    exchange::PlannedClip second = clip(480, 480);
    second.channel = 1;
    exchange::PlannedClip all = clip(960, 480);
    exchange::ExportPlan plan = planOf({track("A", {clip(0, 480), second, all})}, {stereo});
    plan.tracks[0].lanes[0].clips[0].channel = 0;
    exchange::ExportPlan read = plan;
    // Of a clip that plays all channels the first.
    read.tracks[0].lanes[0].clips[2].channel = 0;
    EXPECT_EQ(readBack(sessionOf(plan)).plan, read);
}

TEST(AafMedia, WithoutABitDepthIsTakenForTheCommonOne) {
    PlannedMedia media = medium("Anna");
    media.bitDepth.reset();
    EXPECT_EQ(readBack(sessionOfMedium(media)).plan.media.at(0).bitDepth, 16);
    media.isFloatingPoint = true;
    EXPECT_EQ(readBack(sessionOfMedium(media)).plan.media.at(0).bitDepth, 32);
}

TEST(AafMedia, OfflineFileLiesWhereItWasRecorded) {
    PlannedMedia media = medium("Anna");
    media.isOffline = true;
    media.recordedPath = "Macintosh HD:Audio:Anna 1.aif";
    const ReadAafSession read = readBack(sessionOfMedium(media));
    EXPECT_EQ(read.media.at(0),
              (ReadMedia{.kind = "WAVE", .urls = {"file:///Macintosh%20HD/Audio/Anna%201.aif"}}));
    EXPECT_EQ(read.plan.media.at(0).frames, 28'800'000);
    EXPECT_EQ(read.plan.media.at(0).name, "Anna");
}

TEST(AafMedia, OfflineFileWithoutAPathIsFoundByItsName) {
    PlannedMedia media = medium("Anna");
    media.isOffline = true;
    EXPECT_EQ(readBack(sessionOfMedium(media)).media.at(0).urls,
              std::vector<std::string>{"file:///Anna.wav"});
    media.recordedPath = "file:///" + std::string(40'000, 'x');
    EXPECT_EQ(readBack(sessionOfMedium(media)).media.at(0).urls, std::vector<std::string>());
}

/// A file of 44 bytes of head and 3000 of samples.
class AafEmbeddedMedia : public ::testing::Test {
  protected:
    AafEmbeddedMedia() {
        std::ofstream file(path_, std::ios::binary);
        for (std::size_t index = 0; index < 3044; ++index) {
            file.put(static_cast<char>(index * 7));
        }
    }

    [[nodiscard]] Session session(PlannedMedia media) const {
        media.frames = 1000;
        Session result = sessionOfMedium(std::move(media));
        result.media[0] = {
            .path = path_,
            .reference = path_,
            .isEmbedded = true,
            .wave = WaveFile{
                .path = path_, .byteCount = 3044, .dataOffset = 44, .dataByteCount = 3000}};
        return result;
    }

    [[nodiscard]] static Bytes essenceOf(const Session& session) {
        return WrittenObjects(session).reader().streamOf("Header/Content/EssenceData/0", "Data");
    }

    [[nodiscard]] static Bytes patternFrom(std::size_t first) {
        Bytes bytes;
        for (std::size_t index = first; index < 3044; ++index) {
            bytes.push_back(static_cast<std::byte>(index * 7));
        }
        return bytes;
    }

    testing::TemporaryDirectory directory_;
    std::string path_ = directory_.file("Anna.wav");
};

TEST_F(AafEmbeddedMedia, IsDescribedAsSamples) {
    EXPECT_EQ(descriptionOf(session(medium("Anna"))),
              "PCMDescriptor\n"
              "  AudioSamplingRate 48000/1\n"
              "  AverageBPS 144000\n"
              "  BlockAlign 3\n"
              "  Channels 1\n"
              "  ContainerFormat ContainerDef_AAFKLV\n"
              "  ElectroSpatial ElectroSpatialFormulation_SingleChannelMode\n"
              "  Length 1000\n"
              "  Locked False\n"
              "  QuantizationBits 24\n"
              "  SampleRate 48000/1\n"
              "  SequenceOffset 0\n");
}

TEST_F(AafEmbeddedMedia, HoldsTheSamplesAlone) {
    EXPECT_EQ(essenceOf(session(medium("Anna"))), patternFrom(44));
    const WrittenObjects written(session(medium("Anna")));
    EXPECT_EQ(written.reader().valueOf("Header/Content/EssenceData/0", "MobID"),
              written.reader().valueOf(written.pathOf("SourceMob", "Anna"), "MobID"));
}

TEST_F(AafEmbeddedMedia, OfFloatingPointIsTheWholeFile) {
    PlannedMedia media = medium("Anna");
    media.bitDepth = 32;
    media.isFloatingPoint = true;
    EXPECT_EQ(essenceOf(session(media)), patternFrom(0));
    const ReadAafSession read = readBack(session(media));
    EXPECT_EQ(read.media.at(0), (ReadMedia{.kind = "WAVE", .embeddedBytes = 3044}));
    EXPECT_TRUE(read.plan.media.at(0).isFloatingPoint);
}

TEST_F(AafEmbeddedMedia, WithoutAWaveFileIsLinked) {
    Session session = this->session(medium("Anna"));
    session.media[0].wave.reset();
    const ReadAafSession read = readBack(session);
    EXPECT_EQ(read.media.at(0), (ReadMedia{.kind = "PCM", .urls = {"file://" + path_}}));
}

TEST_F(AafEmbeddedMedia, ThatIsGoneIsAnError) {
    const Session session = this->session(medium("Anna"));
    std::filesystem::remove(path_);
    EXPECT_THROW(writeAafSession(session, [](ByteView) {}), SystemCallError);
}

TEST_F(AafEmbeddedMedia, ThatIsShorterThanItWasIsAnError) {
    const Session session = this->session(medium("Anna"));
    std::filesystem::resize_file(path_, 2000);
    EXPECT_THROW(writeAafSession(session, [](ByteView) {}), compound::CompoundError);
}

TEST_F(AafEmbeddedMedia, MayBeLongerThanTwoGigabytes) {
    constexpr std::uint64_t dataBytes = 2'190'000'000;
    std::filesystem::resize_file(path_, 44 + dataBytes);
    PlannedMedia media = medium("Anna");
    Session session = this->session(media);
    session.plan.media[0].frames = 730'000'000;
    session.media[0].wave->byteCount = 44 + dataBytes;
    session.media[0].wave->dataByteCount = dataBytes;
    std::uint64_t total = 0;
    std::uint64_t largestPiece = 0;
    std::uint64_t sum = 0;
    writeAafSession(session, [&](ByteView bytes) {
        total += bytes.size();
        largestPiece = std::max<std::uint64_t>(largestPiece, bytes.size());
        sum += std::to_integer<std::uint64_t>(bytes.front());
    });
    EXPECT_GT(total, dataBytes);
    EXPECT_LT(total, dataBytes + 10'000'000);
    EXPECT_LE(largestPiece, std::uint64_t{1} << 24U);
    EXPECT_GT(sum, 0U);
}

}  // namespace
}  // namespace trellant::sessions
