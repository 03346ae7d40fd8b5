// SPDX-License-Identifier: Apache-2.0
// AIFC made into WAVE: sample for sample in every form, by the program of its own and by --wav.
#include "extract_fixture.h"
#include "spawned_program.h"
#include "wave_copy.h"

#include <trellant/client/errors.h>
#include <trellant/extraction/wave_conversion.h>
#include <trellant/io/errors.h>

#include <gmock/gmock.h>

#include <filesystem>
#include <sys/stat.h>
#include <trellant_testing/aiff_builder.h>
#include <trellant_testing/byte_writer.h>
#include <trellant_testing/wave_builder.h>
#include <trellant_testing/worker_process.h>
#include <unistd.h>

namespace trellant::testing {
namespace {

namespace fs = std::filesystem;

using ::testing::ElementsAre;
using ::testing::HasSubstr;

/// The fields of a "fmt " chunk that say how samples are kept.
struct WaveForm {
    std::uint16_t tag;
    std::uint16_t channels;
    std::uint32_t sampleRate;
    std::uint16_t bitsPerSample;
    bool operator==(const WaveForm&) const = default;
};

WaveForm formOf(const std::string& path) {
    const Bytes file = readFile(path);
    const auto at = static_cast<std::int64_t>(textOf(file).find("fmt ", 12)) + 8;
    constexpr auto order = OMFByteOrder::little;
    return {u16(file, at, order), u16(file, at + 2, order), u32(file, at + 4, order),
            u16(file, at + 14, order)};
}

class WaveCopy : public ::testing::Test {
  protected:
    /// Converts by the program; the path of what came out.
    std::string converted(const AiffSpec& aiff) {
        const std::string source = writeFile(folder_.file("in.aifc"), aiffImage(aiff));
        const std::string destination = folder_.file("out.wav");
        const ProgramEnd end = runProgram({TRELLANT_WAV, source, destination}, [] {});
        EXPECT_EQ(end.status, 0) << end.errors;
        return destination;
    }
    void expectSamples(const AiffSpec& aiff, const WaveForm& form, const Bytes& samples) {
        const std::string path = converted(aiff);
        EXPECT_EQ(formOf(path), form);
        EXPECT_EQ(sampleBytesOf(path), samples);
    }

    TemporaryDirectory folder_;
};

TEST_F(WaveCopy, EightBitsChangeSidesAndKeepTheirValue) {
    // Signed -128, -1, 0, 1, 127 around zero; unsigned around 128.
    expectSamples({.formType = "AIFC", .bitsPerSample = 8, .samples = hex("80 FF 00 01 7F")},
                  {1, 1, 48'000, 8}, hex("00 7F 80 81 FF"));
}

TEST_F(WaveCopy, SixteenBitsTurnTheirBytes) {
    expectSamples(
        {.formType = "AIFC", .sampleRate = 44'100, .samples = hex("0001 7FFF 8000 FFFF 0000 1234")},
        {1, 1, 44'100, 16}, hex("0100 FF7F 0080 FFFF 0000 3412"));
}

TEST_F(WaveCopy, TwentyFourBitsTurnTheirBytes) {
    expectSamples({.formType = "AIFC",
                   .bitsPerSample = 24,
                   .samples = hex("000001 7FFFFF 800000 FFFFFF 123456")},
                  {1, 1, 48'000, 24}, hex("010000 FFFF7F 000080 FFFFFF 563412"));
}

TEST_F(WaveCopy, ThirtyTwoBitsTurnTheirBytes) {
    expectSamples({.formType = "AIFC",
                   .bitsPerSample = 32,
                   .samples = hex("00000001 7FFFFFFF 80000000 FFFFFFFF 12345678")},
                  {1, 1, 48'000, 32}, hex("01000000 FFFFFF7F 00000080 FFFFFFFF 78563412"));
}

TEST_F(WaveCopy, FloatingPointKeepsEveryBit) {
    // 1, -0.5, beyond full scale, the smallest number there is, minus zero.
    expectSamples({.formType = "AIFC",
                   .bitsPerSample = 32,
                   .compressionType = "fl32",
                   .samples = hex("3F800000 BF000000 44800000 00000001 80000000")},
                  {3, 1, 48'000, 32}, hex("0000803F 000000BF 00008044 01000000 00000080"));
    fs::remove(folder_.file("out.wav"));
    expectSamples({.formType = "AIFC",
                   .bitsPerSample = 64,
                   .compressionType = "fl64",
                   .samples = hex("3FF0000000000000 BFB999999999999A")},
                  {3, 1, 48'000, 64}, hex("000000000000F03F 9A999999 9999B9BF"));
}

TEST_F(WaveCopy, LittleEndianSamplesStayAsTheyAre) {
    expectSamples({.formType = "AIFC", .compressionType = "sowt", .samples = hex("0100 FF7F 0080")},
                  {1, 1, 48'000, 16}, hex("0100 FF7F 0080"));
}

TEST_F(WaveCopy, ChannelsStayInTheirOrder) {
    expectSamples(
        {.formType = "AIFC", .channels = 3, .samples = hex("0001 0002 0003 0004 0005 0006")},
        {1, 3, 48'000, 16}, hex("0100 0200 0300 0400 0500 0600"));
}

TEST_F(WaveCopy, PlainAiffIsConvertedToo) {
    expectSamples({.samples = hex("0001")}, {1, 1, 48'000, 16}, hex("0100"));
}

TEST_F(WaveCopy, OneChannelOfSeveralIsAMonoFile) {
    const std::string source = writeFile(
        folder_.file("in.aifc"),
        aiffImage(
            {.formType = "AIFC", .channels = 3, .samples = hex("0001 0002 0003 0004 0005 0006")}));
    const std::string destination = folder_.file("out.wav");
    const ProgramEnd end = runProgram({TRELLANT_WAV, source, destination, "2"}, [] {});
    EXPECT_EQ(end.status, 0) << end.errors;
    EXPECT_EQ(formOf(destination), (WaveForm{1, 1, 48'000, 16}));
    EXPECT_EQ(sampleBytesOf(destination), hex("0200 0500"));
}

TEST_F(WaveCopy, AnExtensibleHeaderBecomesAPlainOne) {
    const std::string source = writeFile(
        folder_.file("in.wav"), waveImage({.formatTag = 0xFFFE,
                                           .channels = 2,
                                           .bitsPerSample = 24,
                                           .samples = hex("010203 040506 070809 0A0B0C")}));
    const std::string destination = folder_.file("out.wav");
    const ProgramEnd end = runProgram({TRELLANT_WAV, source, destination}, [] {});
    EXPECT_EQ(end.status, 0) << end.errors;
    EXPECT_EQ(formOf(destination), (WaveForm{1, 2, 48'000, 24}));
    EXPECT_EQ(sampleBytesOf(destination), hex("010203 040506 070809 0A0B0C"));
}

TEST_F(WaveCopy, MoreThanOneBlockLosesNoFrame) {
    // More frames than are moved at once, and no multiple of that.
    std::vector<std::int16_t> values(200'001);
    for (std::size_t index = 0; index < values.size(); ++index) {
        values[index] = static_cast<std::int16_t>(index % 30'011);
    }
    expectSamples({.formType = "AIFC", .samples = samples16Big(values)}, {1, 1, 48'000, 16},
                  samples16(values));
}

TEST_F(WaveCopy, NoSamplesGiveAnEmptyWave) {
    expectSamples({.formType = "AIFC"}, {1, 1, 48'000, 16}, {});
}

TEST_F(WaveCopy, EqualAudioGivesEqualFiles) {
    const AiffSpec source{.formType = "AIFC",
                          .bitsPerSample = 32,
                          .compressionType = "fl32",
                          .samples = hex("3F800000")};
    const Bytes file = readFile(converted(source));
    // A chunk of peaks would hold the time of day.
    EXPECT_EQ(textOf(file).find("PEAK"), std::string::npos);
}

TEST(NeedsLargeForm, IsForSizesBeyondThirtyTwoBits) {
    EXPECT_FALSE(wav::needsLargeForm(0));
    EXPECT_FALSE(wav::needsLargeForm(4'294'967'295ULL - 65'536ULL));
    EXPECT_TRUE(wav::needsLargeForm(4'294'967'295ULL - 65'535ULL));
    EXPECT_TRUE(wav::needsLargeForm(4'294'967'296ULL));
}

class WaveCopyRefuses : public WaveCopy {
  protected:
    /// The program must refuse with this line, and leave nothing.
    void expectRefused(const Bytes& bytes, const std::string& reason) {
        const std::string source = writeFile(folder_.file("in.aifc"), bytes);
        const ProgramEnd end = runProgram({TRELLANT_WAV, source, folder_.file("out.wav")}, [] {});
        EXPECT_EQ(end.status, 2);
        EXPECT_EQ(end.errors, reason + "\n");
        EXPECT_FALSE(fs::exists(folder_.file("out.wav")));
    }
};

TEST_F(WaveCopyRefuses, CompressedAudio) {
    expectRefused(
        aiffImage({.formType = "AIFC", .compressionType = "ulaw", .samples = hex("00 01 02 03")}),
        "its audio is compressed");
}

TEST_F(WaveCopyRefuses, OtherKindsOfFiles) {
    const std::string reason = "it is no AIFF, AIFC or WAVE file";
    expectRefused(bytesOf("fLaC and what the library would read as such"), reason);
    expectRefused(bytesOf("RIFF....AVI and more"), reason);
    expectRefused(bytesOf("RIFF"), reason);
}

TEST_F(WaveCopyRefuses, AChannelThatIsNotThere) {
    const std::string source = writeFile(folder_.file("in.wav"), waveOf({1, 2}));
    const ProgramEnd end = runProgram({TRELLANT_WAV, source, folder_.file("out.wav"), "2"}, [] {});
    EXPECT_EQ(end.status, 2);
    EXPECT_EQ(end.errors, "it has no channel 2\n");
    EXPECT_FALSE(fs::exists(folder_.file("out.wav")));
}

TEST_F(WaveCopyRefuses, WrongNumberOfArguments) {
    const ProgramEnd end = runProgram({TRELLANT_WAV, "only one"}, [] {});
    EXPECT_EQ(end.status, 1);
    EXPECT_EQ(end.errors,
              "usage: trellant-wav IN OUT [CHANNEL]\n"
              "       trellant-wav --origin IN OUT KEY=VALUE...\n"
              "       trellant-wav --measure IN OUT PAIRS [BITS]\n"
              "       trellant-wav --waveform IN OUT FRAMES BITS\n"
              "       trellant-wav --preview IN OUT RATE FIRST FRAMES [CHANNEL]\n"
              "       trellant-wav --resample IN OUT NUMERATOR DENOMINATOR RATE\n"
              "       several with --then between them, into one folder\n");
    for (const char* channel : {"0", "-1", "1x", "", "99999999999"}) {
        EXPECT_EQ(runProgram({TRELLANT_WAV, "in", "out", channel}, [] {}).status, 1) << channel;
    }
}

TEST_F(WaveCopyRefuses, FileInPlaceOfTheNewOneAndLeavesIt) {
    const std::string source =
        writeFile(folder_.file("in.aifc"), aiffImage({.samples = hex("0001")}));
    writeFile(folder_.file("out.wav"), bytesOf("mine"));
    const ProgramEnd end = runProgram({TRELLANT_WAV, source, folder_.file("out.wav")}, [] {});
    EXPECT_EQ(end.status, 2);
    EXPECT_EQ(end.errors, "no WAVE file could be created (File exists)\n");
    EXPECT_EQ(textOf(readFile(folder_.file("out.wav"))), "mine");
}

TEST_F(WaveCopyRefuses, DamagedFilesWithoutATrace) {
    const Bytes whole = aiffImage({.formType = "AIFC", .samples = hex("0001 0002 0003")});
    for (std::size_t size = 0; size < whole.size(); ++size) {
        const std::string source = writeFile(
            folder_.file("in.aifc"), Bytes(whole.begin(), whole.begin() + static_cast<long>(size)));
        try {
            wav::copyAsWave(source, folder_.file("out.wav"));
            fs::remove(folder_.file("out.wav"));
        } catch (const wav::ConversionError&) {
            EXPECT_FALSE(fs::exists(folder_.file("out.wav"))) << size;
        }
    }
}

class SpawnedProgram : public ::testing::Test {
  protected:
    std::string script(const std::string& text) {
        const std::string path = writeFile(folder_.file("script"), bytesOf("#!/bin/sh\n" + text));
        ::chmod(path.c_str(), 0700);
        return path;
    }
    TemporaryDirectory folder_;
};

TEST_F(SpawnedProgram, StatusAndErrorsComeBack) {
    const ProgramEnd end = runProgram({script("echo why >&2; exit 7")}, [] {});
    EXPECT_EQ(end.status, 7);
    EXPECT_EQ(end.errors, "why\n");
}

TEST_F(SpawnedProgram, SignalIsANegativeStatus) {
    EXPECT_EQ(runProgram({script("kill -9 $$")}, [] {}).status, -9);
}

TEST_F(SpawnedProgram, OnlyTheHeadOfManyErrorsIsKept) {
    const ProgramEnd end = runProgram({script("head -c 100000 /dev/zero | tr '\\0' x >&2")}, [] {});
    EXPECT_EQ(end.status, 0);
    EXPECT_EQ(end.errors, std::string(4'096, 'x'));
}

TEST_F(SpawnedProgram, IsEndedWhenNobodyWaitsAnyMore) {
    struct Enough {};
    const std::string path = script("exec sleep 1000");
    EXPECT_THAT([&] { static_cast<void>(runProgram({path}, [] { throw Enough{}; })); },
                ::testing::Throws<Enough>());
}

TEST_F(SpawnedProgram, ProgramThatIsNotThereIsTheSystemsError) {
    try {
        static_cast<void>(runProgram({folder_.file("none")}, [] {}));
        FAIL() << "no error";
    } catch (const FileSystemError& error) {
        EXPECT_EQ(std::string(error.what()),
                  "cannot start \"" + folder_.file("none") + "\": No such file or directory");
    }
}

TEST_F(SpawnedProgram, HasNoInputAndNoOutput) {
    EXPECT_EQ(runProgram({script("read line && exit 1; echo lost; exit 0")}, [] {}).status, 0);
}

class ExtractWave : public ExtractTest {
  protected:
    static Bytes aifc(const std::vector<std::int16_t>& values) {
        return aiffImage({.formType = "AIFC", .samples = samples16Big(values)});
    }
    cli::ExtractOptions asWave() {
        auto call = options(writeDocument());
        call.call.wav = true;
        return call;
    }
};

TEST_F(ExtractWave, AifcBecomesWaveAndTheTimelineNamesIt) {
    add({.name = "Kick", .media = aifc({1, -2, 3}), .kind = MediaKind::aifc});
    const std::string said = extractWell(asWave());
    EXPECT_THAT(namesIn(out()), ElementsAre("Kick.wav", "MANIFEST.sha256", "timeline.json"));
    EXPECT_EQ(sampleBytesOf(out("Kick.wav")), samples16({1, -2, 3}));
    const AAFSourceEssence essence = timeline().essences.at(0);
    EXPECT_EQ(essence.fileURL, AAFURL{"Kick.wav"});
    EXPECT_EQ(essence.codec, "PCM");
    EXPECT_EQ(essence.bitDepth, 16);
    EXPECT_THAT(said, HasSubstr("  Audio      1 taken out as WAVE\n"));
}

TEST_F(ExtractWave, ConverterGivesUpAllElseBeforeItReads) {
    // With every layer required, a conversion still has all that it takes; a wish that is none is
    // refused, so the wish is heeded.
    const std::string source = writeFile(folder_.file("in.aifc"), aifc({1, -2}));
    const auto convert = [&](const std::string& wish, const std::string& target) {
        const std::string program = writeFile(
            folder_.file("converter"),
            bytesOf("#!/bin/sh\nTRELLANT_SANDBOX=" + wish + " exec \"" TRELLANT_WAV "\" \"$@\"\n"));
        ::chmod(program.c_str(), 0700);
        WorkProgress progress;
        return convertToWave(program, source, target, progress);
    };
    EXPECT_EQ(convert("require", folder_.file("a.wav")), std::nullopt);
    EXPECT_EQ(sampleBytesOf(folder_.file("a.wav")), samples16({1, -2}));
    EXPECT_THAT(convert("perhaps", folder_.file("b.wav")).value_or(""),
                HasSubstr("TRELLANT_SANDBOX"));
    EXPECT_FALSE(fs::exists(folder_.file("b.wav")));
}

TEST_F(ExtractWave, TwiceInARowChangesNothing) {
    add({.name = "Kick", .media = aifc({1}), .kind = MediaKind::aifc});
    add({.name = "Kick", .media = aifc({2}), .kind = MediaKind::aifc});
    add({.name = "Kick", .media = waveOf({3})});
    const auto call = asWave();
    extractWell(call);
    const auto names = namesIn(out());
    EXPECT_EQ(names.size(), 5U);
    EXPECT_THAT(extractWell(call), HasSubstr("3 already there"));
    EXPECT_EQ(namesIn(out()), names);
    for (const std::uint32_t source : {1U, 2U, 3U}) {
        EXPECT_EQ(sampleBytesOf(pathOfSource(source).value()),
                  samples16({static_cast<std::int16_t>(source)}));
    }
}

TEST_F(ExtractWave, WithoutTheWishAifcStaysAsItIs) {
    add({.name = "Kick", .media = aifc({1}), .kind = MediaKind::aifc});
    extractWell(options(writeDocument()));
    EXPECT_EQ(readFile(out("Kick.aifc")), aifc({1}));
}

TEST_F(ExtractWave, FileThatCannotBeConvertedStaysAsItIsAndIsNamed) {
    const Bytes compressed =
        aiffImage({.formType = "AIFC", .compressionType = "ulaw", .samples = hex("00 01 02 03")});
    add({.name = "Old", .media = compressed, .kind = MediaKind::aifc});
    add({.name = "Kick", .media = aifc({1}), .kind = MediaKind::aifc});
    const Said said = extract(asWave());
    EXPECT_EQ(said.status, 0);
    EXPECT_EQ(said.errors, "trellant: Old.aifc stays as it is: its audio is compressed\n");
    EXPECT_EQ(readFile(out("Old.aifc")), compressed);
    EXPECT_EQ(sampleBytesOf(out("Kick.wav")), samples16({1}));
}

TEST_F(ExtractWave, FileThatIsNoAudioIsToldInWordsBeforeTheLibrarysOwn) {
    add({.name = "Broken", .media = hex("464F524D 00000004 41494643"), .kind = MediaKind::aifc});
    const Said said = extract(asWave());
    EXPECT_EQ(said.status, 0);
    EXPECT_THAT(said.errors,
                ::testing::MatchesRegex(
                    "trellant: Broken\\.aifc stays as it is: it cannot be read as audio "
                    "\\([^()]*[^().]\\)\n"));
}

TEST_F(ExtractWave, ConverterThatIsEndedLeavesTheFileAsItIs) {
    add({.name = "Kick", .media = aifc({1}), .kind = MediaKind::aifc});
    auto call = asWave();
    call.waveConverter =
        writeFile(folder_.file("crashes"), bytesOf("#!/bin/sh\necho half > \"$2\"\nkill -9 $$\n"));
    ::chmod(call.waveConverter->c_str(), 0700);
    const Said said = extract(call);
    EXPECT_EQ(said.status, 0);
    EXPECT_EQ(said.errors,
              "trellant: Kick.aifc stays as it is: the conversion was ended by signal 9\n");
    EXPECT_THAT(namesIn(out()), ElementsAre("Kick.aifc", "MANIFEST.sha256", "timeline.json"));
}

TEST_F(ExtractWave, ConverterThatWritesNothingIsNotBelieved) {
    add({.name = "Kick", .media = aifc({1}), .kind = MediaKind::aifc});
    auto call = asWave();
    call.waveConverter = "/bin/true";
    const Said said = extract(call);
    EXPECT_EQ(said.errors, "trellant: Kick.aifc stays as it is: the conversion wrote no file\n");
    EXPECT_EQ(readFile(out("Kick.aifc")), aifc({1}));
}

/// The programs where a package puts them, in a folder of their own.
class InstalledCommand : public ::testing::Test {
  protected:
    void install(const fs::path& program, const std::string& place) {
        fs::create_directories((folder_.path() / place).parent_path());
        fs::copy_file(program, folder_.path() / place);
    }
    /// Runs the installed command.
    [[nodiscard]] Said run(const std::vector<std::string>& given) const {
        std::vector<std::string> words{folder_.file("bin/trellant")};
        words.insert(words.end(), given.begin(), given.end());
        return saidWithStatus({}, [&words](cli::Console&) {
            std::vector<char*> arguments;
            for (std::string& word : words) {
                arguments.push_back(word.data());
            }
            arguments.push_back(nullptr);
            ::execv(arguments.front(), arguments.data());
            return 127;
        });
    }

    TemporaryDirectory folder_;
};

TEST_F(InstalledCommand, FindsTheConverterOfItsPackage) {
    const fs::path converter = TRELLANT_WAV;
    install(converter.parent_path().parent_path() / "cli" / "trellant", "bin/trellant");
    install(workerPath(), "libexec/trellant/AAFTools/trellant-omf");
    install(converter, "libexec/trellant/trellant-wav");
    const std::string out = folder_.file("out");
    const std::string session = std::string(TRELLANT_EXAMPLES) + "/session.omf";
    const Said said = run({"extract", session, "--wav", "--to", out});
    EXPECT_EQ(said.status, 0) << said.errors;
    EXPECT_TRUE(fs::exists(out + "/Theme.wav"));
    EXPECT_FALSE(fs::exists(out + "/Theme.aifc"));
    fs::remove(folder_.file("libexec/trellant/trellant-wav"));
    EXPECT_EQ(run({"extract", session, "--wav", "--to", out}).errors,
              "trellant: the program trellant-wav, which writes WAVE files, is missing. It belongs "
              "to this one; please install Trellant again, or leave out --wav\n");
}

}  // namespace
}  // namespace trellant::testing
