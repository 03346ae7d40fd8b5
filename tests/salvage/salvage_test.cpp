// SPDX-License-Identifier: Apache-2.0
#include "searched_bytes.h"

#include <trellant/salvage/salvage.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <trellant_testing/omf_builder.h>

namespace trellant::testing {
namespace {

using salvage::SalvageReport;
using salvage::salvageSounds;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class Salvage : public ::testing::Test {
  protected:
    Salvage() { std::filesystem::create_directory(folder_.file("out")); }

    SalvageReport run(ByteView bytes) {
        return salvageSounds(writeFile(folder_.file("broken.omf"), bytes), folder_.file("out"));
    }
    [[nodiscard]] Bytes copy(const std::string& name) const {
        return readFile(folder_.file("out/" + name));
    }
    static Bytes document(const Bytes& first, const Bytes& second) {
        OmfBuilder omf;
        omf.audioFile({.id = {1, 0, 1}, .name = "One", .media = first, .length = 100});
        omf.audioFile({.id = {1, 0, 2},
                       .name = "Two",
                       .kind = MediaKind::aifc,
                       .media = second,
                       .length = 100});
        return omf.build();
    }

    TemporaryDirectory folder_;
};

TEST_F(Salvage, SaysOfEachSoundWhereItCameFrom) {
    const Bytes wave = waveOf(100);
    const Bytes aifc = aifcOf(50);
    const SalvageReport report = run(document(wave, aifc));
    ASSERT_EQ(report.sounds.size(), 2U);
    const SalvageReport::Sound& first = report.sounds[0];
    EXPECT_EQ(first.name, "Sound 001.wav");
    EXPECT_EQ(first.state, "whole");
    EXPECT_EQ(first.from, "table");
    EXPECT_EQ(first.bytes, static_cast<std::int64_t>(wave.size()));
    EXPECT_EQ(first.sampleRate, 48'000);
    EXPECT_EQ(first.channels, 1);
    EXPECT_EQ(first.bitDepth, 16);
    EXPECT_EQ(first.codec, "PCM");
    EXPECT_EQ(first.frames, 100);
    EXPECT_THAT(first.certain,
                ElementsAre("The table of contents of the file names exactly these bytes."));
    EXPECT_THAT(first.uncertain, IsEmpty());
    EXPECT_EQ(report.sounds[1].name, "Sound 002.aifc");
    EXPECT_EQ(copy("Sound 001.wav"), wave);
    EXPECT_EQ(copy("Sound 002.aifc"), aifc);
    ASSERT_TRUE(report.table.has_value());
    EXPECT_EQ(report.table->place, "label");
    EXPECT_TRUE(report.table->whole);
}

TEST_F(Salvage, CutFileGivesWhatIsLeftUnderANameThatSaysSo) {
    const Bytes wave = waveOf(100);
    Bytes image = document(wave, aifcOf(50));
    const SalvageReport whole = run(image);
    std::filesystem::remove_all(folder_.file("out"));
    std::filesystem::create_directory(folder_.file("out"));
    // 60 bytes of header and 20 of the second sound's samples are left.
    image.resize(static_cast<std::size_t>(whole.sounds[1].offset) + 60 + 20);
    const SalvageReport report = run(image);
    ASSERT_EQ(report.sounds.size(), 2U);
    EXPECT_FALSE(report.table.has_value());
    EXPECT_EQ(report.incompleteCount(), 1U);
    EXPECT_EQ(report.sounds[0].from, "header");
    EXPECT_EQ(report.sounds[0].state, "whole");
    const SalvageReport::Sound& cut = report.sounds[1];
    EXPECT_EQ(cut.name, "Sound 002 incomplete.aifc");
    EXPECT_EQ(cut.state, "incomplete");
    EXPECT_EQ(cut.bytes, 80);
    EXPECT_EQ(cut.frames, 10);
    EXPECT_THAT(cut.doubts, ElementsAre("cutByEnd"));
    EXPECT_THAT(cut.uncertain, ElementsAre("The file ends within the samples: the rest is lost."));
    EXPECT_EQ(copy("Sound 001.wav"), wave);
}

TEST_F(Salvage, SoundInPiecesIsPutTogether) {
    const Bytes wave = waveOf(100);
    const auto middle = wave.begin() + 90;
    ContainerBuilder builder;
    const ObjectID object = builder.newObject() + 1;
    const Bytes head(wave.begin(), middle);
    const Bytes rest(middle, wave.end());
    builder.setPieces(object, "Audio", {head});
    builder.setPieces(object + 1, "Other", {Bytes(30, std::byte{7}), rest});
    ContainerImage image = builder.image();
    const auto placeOf = [&](const Bytes& part) {
        return static_cast<std::uint64_t>(
            std::search(image.data.begin(), image.data.end(), part.begin(), part.end()) -
            image.data.begin());
    };
    const std::vector<BentoTOCItem> items{
        {2, 70'000, 0, 0, {BentoRange{placeOf(head), head.size()}, true}},
        {2, 70'000, 0, 0, {BentoRange{placeOf(rest), rest.size()}, false}}};
    image.toc = encodeToc(TocForm::compressed, OMFByteOrder::little, 1, items);
    const SalvageReport report = run(image.bytes());
    ASSERT_EQ(report.sounds.size(), 1U);
    EXPECT_EQ(report.sounds[0].pieces.size(), 2U);
    EXPECT_EQ(copy("Sound 001.wav"), wave);
}

TEST_F(Salvage, RecordSurvivesItsOwnJson) {
    const SalvageReport report = run(document(waveOf(100), aifcOf(50)));
    const std::string json = encodeSalvage(report);
    EXPECT_EQ(encodeSalvage(salvage::decodeSalvage(json)), json);
}

TEST_F(Salvage, NeverTouchesTheInput) {
    const Bytes image = document(waveOf(100), aifcOf(50));
    static_cast<void>(run(image));
    EXPECT_EQ(readFile(folder_.file("broken.omf")), image);
}

TEST_F(Salvage, TakesNoMoreSoundsThanTheBound) {
    // 46 bytes each: ten thousand and one more for each 64 KiB of the file are taken.
    const Bytes one = waveOf(1);
    ASSERT_EQ(one.size(), 46U);
    Bytes many;
    constexpr std::size_t count = 10'050;
    for (std::size_t i = 0; i < count; ++i) {
        many.insert(many.end(), one.begin(), one.end());
    }
    const SalvageReport report = run(many);
    const std::size_t taken = 10'000 + many.size() / 65'536;
    EXPECT_EQ(report.sounds.size(), taken);
    EXPECT_EQ(report.searchedBytes, static_cast<std::int64_t>(taken * one.size()));
}

}  // namespace
}  // namespace trellant::testing
