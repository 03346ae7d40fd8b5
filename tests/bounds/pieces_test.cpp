// SPDX-License-Identifier: Apache-2.0
// Taking media out: at most 8 MiB of memory above what looking takes, whatever the size of a value,
// and at most 16 times the file and 64 MiB of disk.
#include "bounds_fixture.h"
#include "generated_file.h"
#include "growing_file.h"
#include "worker_fixture.h"

#include <filesystem>
#include <string>
#include <vector>

namespace trellant::testing {
namespace {

/// The media object of the small document.
constexpr ObjectID onlyMedia = 2;

/// Writes the document with audio for each of `media`: `pieces` times the same `size` zeros of the
/// file, which take no room on the disk until they are taken out.
void writeAudio(const std::string& path, OmfBuilder& omf, const std::vector<ObjectID>& media,
                std::uint64_t size, std::uint64_t pieces, std::uint64_t lastPiece = 0) {
    for (const ObjectID object : media) {
        omf.at(object).without("OMFI:WAVE:AudioData");
    }
    const auto data = omf.container().propertyID("OMFI:WAVE:AudioData");
    GrowingFile source(path, omf.image());
    const auto offset = source.zeros(size);
    for (const ObjectID object : media) {
        source.object(object, data);
        for (std::uint64_t i = 0; i < pieces; ++i) {
            source.range(offset, size);
        }
        if (lastPiece > 0) {
            source.range(offset, lastPiece);
        }
    }
    source.finish();
}

class Extraction : public BoundsTest {
  protected:
    /// Looks, and takes out one file of `byteCount` bytes called `name`.
    void expectNoMore(std::string_view shape, std::string_view name, std::uint64_t byteCount,
                      std::uint64_t bound) const {
        const auto looking = inspect(2 * bound + addressBase);
        const auto taking = extract(2 * bound + addressBase);
        EXPECT_EQ(looking.status, 0) << looking.errors;
        EXPECT_EQ(taking.status, 0) << taking.errors;
        EXPECT_EQ(std::filesystem::file_size(work() + "/" + std::string(name)), byteCount);
        expectPeak(looking, std::string(shape) + "Inspected", bound);
        expectPeak(taking, std::string(shape) + "Extracted", bound);
        if (!sanitized) {
            EXPECT_LE(taking.peak, looking.peak + 8 * mebibyte);
        }
    }
};

TEST_F(Extraction, OfAMillionPiecesTakesNoMoreThanLooking) {
    // Pieces of 16 bytes: an item each, 9 bytes of the table.
    const std::uint64_t count = generateFile(file(), "pieces", 1'000'000);
    expectNoMore("Pieces", "Take 0.wav", 16 * count, count * (9 + 32) + base);
}

TEST_F(Extraction, OfALongValueTakesNoMoreThanLooking) {
    constexpr std::uint64_t size = (sanitized ? 16 : 128) * mebibyte;
    OmfBuilder omf = oneClipDocument();
    writeAudio(file(), omf, {onlyMedia}, size, 1);
    expectNoMore("LongValue", "Tone.wav", size, base);
}

/// A WAVE whose audio is `pieces` times the same mebibyte of the file.
class AudioOverItself : public BoundsTest {
  protected:
    void write(std::uint64_t pieces, std::uint64_t lastPiece = 0) {
        OmfBuilder omf = oneClipDocument();
        writeAudio(file(), omf, {onlyMedia}, mebibyte, pieces, lastPiece);
    }
    /// What may be taken out of a file of this size.
    [[nodiscard]] std::uint64_t most() const {
        return 16 * std::filesystem::file_size(file()) + 64 * mebibyte;
    }
};

TEST_F(AudioOverItself, IsTakenOutWhileItIsLittleForSuchAFile) {
    // 80 MiB, of which 64 are free and 16 are 16 times the audio that the file has.
    write(80);
    ASSERT_GE(most(), 80 * mebibyte);
    const auto run = extract(0);
    EXPECT_EQ(run.status, 0) << run.errors;
    EXPECT_EQ(std::filesystem::file_size(work() + "/Tone.wav"), 80 * mebibyte);
}

TEST_F(AudioOverItself, IsTakenOutUpToTheVeryLastByteOfTheBound) {
    // The length of the last piece does not change the file's size.
    write(80, 1);
    const std::uint64_t bound = most();
    const std::uint64_t last = bound - 80 * mebibyte;
    ASSERT_LT(last, mebibyte);
    write(80, last);
    ASSERT_EQ(most(), bound);
    const auto run = extract(0);
    EXPECT_EQ(run.status, 0) << run.errors;
    EXPECT_EQ(std::filesystem::file_size(work() + "/Tone.wav"), bound);
}

TEST_F(AudioOverItself, IsRefusedFromTheFirstByteBeyondTheBound) {
    write(80, 1);
    const std::uint64_t bound = most();
    write(80, bound - 80 * mebibyte + 1);
    ASSERT_EQ(most(), bound);
    EXPECT_EQ(extract(0).status, 2);
    EXPECT_TRUE(std::filesystem::is_empty(work()));
}

TEST_F(AudioOverItself, ThatWouldFillADiskIsRefusedBeforeItIsWritten) {
    write(82);
    ASSERT_LT(most(), 82 * mebibyte);
    const auto run = extract(0);
    EXPECT_EQ(run.status, 2);
    EXPECT_TRUE(run.errors.ends_with(
        logLineText("Unsupported OMF/Bento feature: embedded audio lies over itself: more than " +
                    std::to_string(most()) + " bytes to extract from a file of " +
                    std::to_string(std::filesystem::file_size(file())))))
        << run.errors;
    EXPECT_TRUE(std::filesystem::is_empty(work()));
    EXPECT_EQ(inspect(0).status, 0);
}

TEST_F(AudioOverItself, CountsOverAllMedia) {
    // Nine media of ten mebibytes each, over the same one: eight fit.
    OmfBuilder omf;
    std::vector<ObjectID> clips;
    std::vector<ObjectID> media;
    for (std::uint32_t number = 1; number <= 9; ++number) {
        const MobID id{1, 2, number};
        omf.audioFile({.id = id, .name = "Take", .length = 480});
        media.push_back(omf.waveMedia(id, {}));
        clips.push_back(omf.clip({.length = 480, .source = id}));
    }
    const ObjectID slot = omf.slot({.editRate = Ratio{48'000}, .segment = omf.sequence(clips)});
    omf.composition({.name = "Piece", .slots = {slot}});
    writeAudio(file(), omf, media, mebibyte, 10);
    const auto run = extract(0);
    EXPECT_EQ(run.status, 2);
    EXPECT_NE(run.errors.find("embedded audio lies over itself"), std::string::npos) << run.errors;
    EXPECT_TRUE(std::filesystem::exists(work() + "/Take_8.wav"));
    EXPECT_FALSE(std::filesystem::exists(work() + "/Take_9.wav"));
}

}  // namespace
}  // namespace trellant::testing
