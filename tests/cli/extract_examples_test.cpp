// SPDX-License-Identifier: Apache-2.0
// The example compositions, taken out as a new user would.
#include "extract_fixture.h"

#include <gmock/gmock.h>

#include <trellant_testing/byte_writer.h>

namespace trellant::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

const std::string examples = TRELLANT_EXAMPLES;

class ExtractExamples : public ExtractTest {};

TEST_F(ExtractExamples, SessionGivesItsFourAudioFilesAndNamesItsLosses) {
    const std::string said = extractWell(options(examples + "/session.omf"));
    EXPECT_THAT(namesIn(out()), ElementsAre("MANIFEST.sha256", "Rain_ garden.wav", "Theme.aifc",
                                            "Voice_Anna.wav", "Voice_Ben.wav", "timeline.json"));
    EXPECT_THAT(said, HasSubstr("  Audio      4 taken out\n"));
    EXPECT_THAT(said, HasSubstr("\n  3 things were not carried over: trellant list losses " +
                                examples + "/session.omf\n"));
}

TEST_F(ExtractExamples, SessionAsWaveHasTheSameSamples) {
    extractWell(options(examples + "/session.omf"));
    // 16 bits in two channels; the samples are all of the chunk behind offset and block size.
    const Bytes aifc = readFile(out("Theme.aifc"));
    const auto at = textOf(aifc).find("SSND");
    ASSERT_NE(at, std::string::npos);
    const auto size = u32(aifc, static_cast<std::int64_t>(at) + 4, OMFByteOrder::big) - 8;
    Bytes turned;
    for (std::size_t index = at + 16; index < at + 16 + size; index += 2) {
        turned.push_back(aifc.at(index + 1));
        turned.push_back(aifc.at(index));
    }
    auto call = options(examples + "/session.omf");
    call.call.wav = true;
    extractWell(call);
    EXPECT_EQ(sampleBytesOf(out("Theme.wav")), turned);
}

TEST_F(ExtractExamples, ExternalFindsTheDoorAndTellsWhatIsMissing) {
    auto call = options(examples + "/external.omf");
    call.call.mediaFolders = {folder_.path().string(), examples};
    const std::string said = extractWell(call);
    EXPECT_THAT(said, HasSubstr("  Audio      1 found, 1 missing\n"));
    EXPECT_THAT(said, HasSubstr(examples + "/media/Door.wav"));
    EXPECT_THAT(namesIn(out()), ElementsAre("MANIFEST.sha256", "timeline.json"));
}

TEST_F(ExtractExamples, ArchiveGivesItsAifc) {
    extractWell(options(examples + "/archive.omf"));
    EXPECT_THAT(namesIn(out()),
                ElementsAre("MANIFEST.sha256", "Reel 7 transfer.aifc", "timeline.json"));
}

}  // namespace
}  // namespace trellant::testing
