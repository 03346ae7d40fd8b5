// SPDX-License-Identifier: Apache-2.0
// Small files that describe compositions without end: subtrees that are shared.
//
// Bound: 10,000,000 visits. After 262,144 of them the rest is counted before anything more is kept;
// what is kept until then are drafts of 104 bytes in a list that doubles its room, twice that while
// it does, or records with paths, at most 1 KiB. Compositions that stay below the visits take
// memory for what they hold: for a clip a draft of 104 bytes, an event of 264 in a list that
// doubles its room, and 80 for the texts of two identifiers, 712 in all, not counting its values in
// the table.
#include "bounds_fixture.h"
#include "growing_file.h"
#include "worker_fixture.h"

#include <filesystem>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace trellant::testing {
namespace {

constexpr std::uint64_t visitsBeforeCheck = 262'144;
constexpr std::string_view tooManySegments =
    "Unsupported OMF/Bento feature: composition expands to more than 10000000 segments";

class Expansion : public BoundsTest {
  protected:
    Expansion() {
        omf_.audioFile({.id = tone_, .name = "Tone.wav", .media = toneWave(), .length = 480});
    }
    ObjectID clip(std::optional<std::string> name = {}) {
        return omf_.clip({.length = 480, .source = tone_, .name = std::move(name)});
    }
    /// `levels` sequences, each listing the next ten times, around `innermost`.
    ObjectID fan(ObjectID innermost, int levels) {
        for (int level = 0; level < levels; ++level) {
            innermost = omf_.sequence(std::vector<ObjectID>(10, innermost));
        }
        return innermost;
    }
    void write(ObjectID segment) {
        const ObjectID slot = omf_.slot({.editRate = Ratio{48'000}, .segment = segment});
        omf_.composition({.name = "Piece", .slots = {slot}});
        const Bytes image = omf_.build();
        EXPECT_LT(image.size(), 16 * kibibyte);
        writeFile(file(), image);
    }
    void expectTooMany(std::string_view shape, std::uint64_t bound) const {
        const auto run = inspect(2 * bound + addressBase);
        expectFailed(run, openingLines() + openSlotLines(), tooManySegments);
        expectPeak(run, shape, bound);
    }

    OmfBuilder omf_;

  private:
    static constexpr MobID tone_{1, 2, 3};
};

TEST_F(Expansion, OfFillersWithoutEndTakesNoMemory) {
    write(fan(omf_.filler(0), 8));
    expectTooMany("FillersWithoutEnd", base);
}

TEST_F(Expansion, OfClipsWithoutEndIsKeptUntilItIsCounted) {
    write(fan(clip(), 8));
    expectTooMany("ClipsWithoutEnd", visitsBeforeCheck * 104 * 2 + base);
}

TEST_F(Expansion, OfEffectsWithoutEndTakesNoMemory) {
    // Inputs that are one clip at one time become one draft.
    ObjectID segment = clip();
    for (int level = 0; level < 8; ++level) {
        segment = omf_.effect({.effectID = "omfi:effect:MonoAudioGain",
                               .slots = std::vector<EffectSlotSpec>(10, {-1, segment})});
    }
    write(segment);
    expectTooMany("EffectsWithoutEnd", base);
}

TEST_F(Expansion, OfRecordsWithoutEndIsKeptUntilItIsCounted) {
    // A sequence that lists itself twice: 2 to the power of 24 ways to a level too deep.
    const ObjectBuilder sequence = omf_.sequence({});
    omf_.at(sequence).refs("OMFI:SEQU:Components", {sequence, sequence});
    write(sequence);
    expectTooMany("RecordsWithoutEnd", visitsBeforeCheck * kibibyte + base);
}

TEST_F(Expansion, ToAMillionClipsTakesWhatAMillionClipsTake) {
    write(fan(clip(), sanitized ? 5 : 6));
    constexpr std::uint64_t count = sanitized ? 100'000 : 1'000'000;
    constexpr std::uint64_t bound = count * (104 + 2 * 264 + 80) + base;
    const auto run = inspect(2 * bound + addressBase);
    EXPECT_EQ(run.status, 0) << run.errors;
    EXPECT_EQ(run.events, count);
    expectPeak(run, "SharedClips", bound);
    expectOutOfMemory(inspect(bound / 4));
}

TEST_F(Expansion, ToAMillionLongNamesEndsWithAGibibyteOfThem) {
    // A name of 4000 bytes, short enough not to count as a long one: 268,435 of them are a
    // gibibyte, and one or two fit into what the file has. The drafts of all clips come first.
    write(fan(clip(std::string(4'000, 'n')), 6));
    constexpr std::uint64_t bound = 1'000'000 * 2 * 104 + 268'437 * (4'016 + 2 * 264 + 80) + base;
    const auto run = inspect(bound + addressBase);
    EXPECT_TRUE(run.errors.ends_with(logLineText(
        "Unsupported OMF/Bento feature: composition holds more than " +
        std::to_string(1'073'741'824 + std::filesystem::file_size(file())) + " bytes of texts")))
        << run.errors;
    EXPECT_EQ(run.status, 2);
    expectPeak(run, "LongNames", bound);
}

TEST_F(Expansion, ToMillionsOfLossesEndsWithAGibibyteOfThem) {
    // 22 sequences, each with the next twice, around what no program knows: 4,194,304 losses in
    // 8,388,608 places, each told with a path of 22 levels.
    ObjectID segment = omf_.segment("XYZW", 480);
    for (int level = 0; level < 22; ++level) {
        segment = omf_.sequence({segment, segment});
    }
    write(segment);
    // Each record has 34 bytes of words and 22 levels of at least 21, as "/SEQU[9]/component[0]",
    // and counts 256 more; around these it takes 128 in a list that doubles its room, and 80 for
    // three texts.
    constexpr std::uint64_t gibibyte = 1024 * mebibyte;
    constexpr std::uint64_t texts = 34 + 22 * 21;
    constexpr std::uint64_t bound = gibibyte / (256 + texts) * (texts + 3 * 128 + 80) + base;
    const auto run = inspect(bound + addressBase);
    expectFailed(run, openingLines() + openSlotLines(),
                 "Unsupported OMF/Bento feature: composition gives more than 1073741824 bytes of "
                 "losses and diagnostics");
    expectPeak(run, "MillionsOfLosses", bound);
}

TEST_F(Expansion, ToMillionsOfClipsWithoutASourceEndsWithAGibibyteOfNotes) {
    // Three million clips, each with a loss and a diagnostic.
    const ObjectID lost = omf_.clip({.length = 480, .source = MobID{9, 9, 9}});
    write(omf_.sequence({fan(lost, 6), fan(lost, 6), fan(lost, 6)}));
    // Twice 256 are counted for each clip, and the words; it takes a draft of 104 in a list that
    // doubles its room, three times 128 for the record in its list and 32 for the diagnostic in
    // its, the words, and 112 around them.
    constexpr std::uint64_t gibibyte = 1024 * mebibyte;
    constexpr std::uint64_t bound =
        3'000'000 * 2 * 104 + gibibyte + gibibyte / (2 * 256) * (3 * (128 + 32) + 112 - 512) + base;
    const auto run = inspect(2 * bound + addressBase);
    EXPECT_TRUE(run.errors.ends_with(
        logLineText("Unsupported OMF/Bento feature: composition gives more than 1073741824 bytes "
                    "of losses and diagnostics")))
        << run.errors;
    EXPECT_EQ(run.status, 2);
    expectPeak(run, "ClipsWithoutASource", bound);
}

TEST_F(Expansion, OfLongRubbishInsteadOfNamesEndsSoon) {
    // A name of a mebibyte of control characters, of which nothing stays, in a million places.
    Bytes rubbish(mebibyte);
    for (std::size_t i = 0; i < rubbish.size(); i += 2) {
        rubbish[i] = std::byte{1};
    }
    const ObjectID unnamed = clip();
    omf_.at(unnamed).bytes("OMFI:CPNT:Name", rubbish);
    const ObjectID slot = omf_.slot({.editRate = Ratio{48'000}, .segment = fan(unnamed, 6)});
    omf_.composition({.name = "Piece", .slots = {slot}});
    writeFile(file(), omf_.build());
    const auto run = inspect(0);
    EXPECT_TRUE(run.errors.ends_with(
        logLineText("Unsupported OMF/Bento feature: composition asks for more than " +
                    std::to_string(2'147'483'648 + 16 * std::filesystem::file_size(file())) +
                    " bytes of its long values")))
        << run.errors;
    EXPECT_EQ(run.status, 2);
}

TEST_F(Expansion, OfTheLongestListInItselfEndsWithItsSeventeenthCopy) {
    // 4,194,303 times itself and a clip: 16 copies hold 67,108,864 references, which is allowed.
    constexpr std::uint64_t listBytes = 16 * mebibyte;
    const ObjectID inner = clip();
    const ObjectID sequence = omf_.sequence({});
    omf_.at(sequence).without("OMFI:SEQU:Components");
    const ObjectID slot = omf_.slot({.editRate = Ratio{48'000}, .segment = sequence});
    omf_.composition({.name = "Piece", .slots = {slot}});
    const auto components = omf_.container().propertyID("OMFI:SEQU:Components");
    GrowingFile list(file(), omf_.image());
    const auto reference = [](ObjectID object) {
        return textOf(ByteWriter(OMFByteOrder::little).u32(object).written());
    };
    const auto itself = reference(sequence);
    const auto offset = list.value(itself);
    for (std::uint64_t i = 2; i < listBytes / 4; ++i) {
        list.value(itself);
    }
    list.value(reference(inner));
    list.object(sequence, components);
    list.range(offset, listBytes);
    list.finish();
    // The copies, and the bytes of the last.
    constexpr std::uint64_t bound = 18 * listBytes + base;
    const auto run = inspect(bound + addressBase);
    expectFailed(run, openingLines() + openSlotLines(),
                 "Unsupported OMF/Bento feature: composition holds more than 67108864 entries in "
                 "its lists");
    expectPeak(run, "LongestListInItself", bound);
}

}  // namespace
}  // namespace trellant::testing
