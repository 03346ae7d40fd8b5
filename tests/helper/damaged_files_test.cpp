// SPDX-License-Identifier: Apache-2.0
// A file that cannot be mapped: its whole text on standard error, nothing on standard output.
#include "worker_fixture.h"

#include <trellant_testing/wave_builder.h>

namespace trellant::testing {

namespace {

class HelperDamagedFiles : public WorkerTest {
  protected:
    void expectOpeningFails(const Bytes& file, std::string_view message) const {
        expectFailed(runOn(file), progressLineText("opening", "0.05"), message);
    }
    void expectMappingFails(const OmfBuilder& omf, std::size_t slots,
                            std::string_view message) const {
        std::string progress =
            progressLineText("opening", "0.05") + progressLineText("reconstructing", "0.15");
        for (std::size_t slot = 0; slot < slots; ++slot) {
            progress += progressLineText("reconstructing", "0.15");
        }
        expectFailed(runOn(omf.build()), progress, message);
    }
    [[nodiscard]] WorkerRun runOn(const Bytes& file) const {
        return run(requestFor("inspect", writeFile(path("damaged.omf"), file), ""));
    }
};

ContainerImage emptyImage(TocForm form = TocForm::compressed) {
    return ContainerImage::ofForm(form, OMFByteOrder::little);
}

/// A table of one item: object 1, property 2, type 3, one byte.
Bytes smallTable() {
    return hex("01 01 00 00 00 02 00 00 00 03 00 00 00 0A 41 00 00 00");
}

TEST_F(HelperDamagedFiles, EmptyFile) {
    expectOpeningFails({}, "Malformed OMF/Bento file: file too small for Bento footer");
}

TEST_F(HelperDamagedFiles, FileShorterThanAFooter) {
    expectOpeningFails(patternBytes(23),
                       "Malformed OMF/Bento file: file too small for Bento footer");
}

TEST_F(HelperDamagedFiles, FileWithoutSignature) {
    expectOpeningFails(patternBytes(4'096),
                       "Malformed OMF/Bento file: Bento footer signature not found");
}

TEST_F(HelperDamagedFiles, FileWithAByteBehindTheFooter) {
    Bytes file = oneClipDocument().build();
    file.push_back(std::byte{0});
    expectOpeningFails(file, "Malformed OMF/Bento file: Bento footer signature not found");
}

TEST_F(HelperDamagedFiles, UnknownMajorMarker) {
    ContainerImage image = emptyImage();
    image.footer.majorVersion = 3;
    expectOpeningFails(image.bytes(), "Malformed OMF/Bento file: invalid Bento major marker 0x3");
}

TEST_F(HelperDamagedFiles, UnknownBigEndianMajorMarker) {
    ContainerImage image = ContainerImage::ofForm(TocForm::compressed, OMFByteOrder::big);
    image.footer.majorVersion = 0xAB;
    expectOpeningFails(image.bytes(),
                       "Malformed OMF/Bento file: invalid Bento major marker 0xAB00");
}

TEST_F(HelperDamagedFiles, FooterAlone) {
    expectOpeningFails(emptyImage().bytes(), "Malformed OMF/Bento file: zero-length Bento TOC");
}

TEST_F(HelperDamagedFiles, TableThatRunsIntoTheFooter) {
    ContainerImage image = emptyImage();
    image.toc = smallTable();
    image.footer.tocSize = 19;
    expectOpeningFails(image.bytes(),
                       "Malformed OMF/Bento file: Bento TOC overlaps footer or is out of bounds");
}

TEST_F(HelperDamagedFiles, TableBehindTheEnd) {
    ContainerImage image = emptyImage();
    image.toc = smallTable();
    image.footer.tocOffset = 0xFFFF'FFFF;
    expectOpeningFails(image.bytes(),
                       "Malformed OMF/Bento file: Bento TOC overlaps footer or is out of bounds");
}

TEST_F(HelperDamagedFiles, TableLargerThanTheLimitIsNotRead) {
    constexpr std::uint32_t limit = 536'870'912;
    ContainerImage image = emptyImage();
    image.footer.tocOffset = 0;
    image.footer.tocSize = limit + 1;
    const Bytes footer = image.bytes();
    // A hole of more than the limit, then the footer: takes no room on the disk.
    const std::string file = writeFile(path("large.omf"), {});
    std::filesystem::resize_file(file, limit + 1);
    {
        std::FILE* end = std::fopen(file.c_str(), "ab");
        ASSERT_NE(end, nullptr);
        ASSERT_EQ(std::fwrite(footer.data(), 1, footer.size(), end), footer.size());
        ASSERT_EQ(std::fclose(end), 0);
    }
    expectFailed(run(requestFor("inspect", file, "")), progressLineText("opening", "0.05"),
                 "Unsupported OMF/Bento feature: TOC larger than 512 MiB");
}

TEST_F(HelperDamagedFiles, InvalidToken) {
    ContainerImage image = emptyImage();
    image.toc = joined({hex("FF FF FF FF FF FF FF"), hex("00")});
    expectOpeningFails(image.bytes(),
                       "Malformed OMF/Bento file: invalid compressed TOC token 0 at byte 7");
    image.toc = joined({smallTable(), hex("1B")});
    expectOpeningFails(image.bytes(),
                       "Malformed OMF/Bento file: invalid compressed TOC token 27 at byte 18");
}

TEST_F(HelperDamagedFiles, TruncatedToken) {
    ContainerImage image = emptyImage();
    image.toc = hex("01 01 00 00 00");
    expectOpeningFails(image.bytes(), "Malformed OMF/Bento file: truncated compressed TOC token");
}

TEST_F(HelperDamagedFiles, OlderTableOfUnevenLength) {
    ContainerImage image = emptyImage(TocForm::v1);
    image.toc = Bytes(25);
    expectOpeningFails(image.bytes(),
                       "Malformed OMF/Bento file: Bento 1.0d4 TOC is not a multiple of 24 bytes");
}

TEST_F(HelperDamagedFiles, OlderTableWithALongImmediateValue) {
    ContainerImage image = emptyImage(TocForm::v1);
    // Object 1, property 2, type 3, four bytes of value, length 5, generation 0, flag 1.
    image.toc = hex("01 00 00 00 02 00 00 00 03 00 00 00 41 42 43 44 05 00 00 00 00 00 01 00");
    expectOpeningFails(image.bytes(),
                       "Malformed OMF/Bento file: V1 immediate value longer than 4 bytes");
}

TEST_F(HelperDamagedFiles, ContainerOfSomethingElse) {
    ContainerImage image = emptyImage();
    image.toc = smallTable();
    expectOpeningFails(image.bytes(),
                       "Unsupported OMF/Bento feature: not an OMF 2.x object model "
                       "(OMFI:OOBJ:ObjClass registry entry missing)");
}

TEST_F(HelperDamagedFiles, DocumentWithoutHeader) {
    OmfBuilder omf = oneClipDocument();
    omf.head().bytes("OMFI:OOBJ:ObjClass", bytesOf("HEAP"));
    expectOpeningFails(omf.build(), "Malformed OMF/Bento file: OMF HEAD object not found");
}

TEST_F(HelperDamagedFiles, HeaderValueBehindTheEnd) {
    OmfBuilder omf = oneClipDocument();
    omf.head().without("OMFI:HEAD:ByteOrder");
    omf.container().addItem(omf.head(), "OMFI:HEAD:ByteOrder", BentoRange{1'000'000'000, 2});
    const Bytes file = omf.build();
    expectOpeningFails(file, "Read out of bounds (offset=1000000000, length=2, fileSize=" +
                                 std::to_string(file.size()) + ").");
}

TEST_F(HelperDamagedFiles, HeaderValueLargerThanMemoryMayBe) {
    OmfBuilder omf = oneClipDocument();
    omf.head().without("OMFI:HEAD:ByteOrder");
    omf.container().addItem(omf.head(), "OMFI:HEAD:ByteOrder", BentoRange{0, 0xFFFF'FFFF});
    expectOpeningFails(omf.build(),
                       "Unsupported OMF/Bento feature: property value larger than in-memory limit");
}

TEST_F(HelperDamagedFiles, DocumentWithoutComposition) {
    OmfBuilder omf;
    omf.audioFile({.id = {1, 2, 3}, .name = "Tone.wav", .media = toneWave(), .length = 480});
    expectMappingFails(omf, 0, "Malformed OMF/Bento file: no Composition Mob (CMOB) found");
}

TEST_F(HelperDamagedFiles, CompositionWithoutSlots) {
    OmfBuilder omf;
    omf.composition({.name = "Empty"});
    expectMappingFails(
        omf, 0, "Malformed OMF/Bento file: composition contains no resolvable audio Source Clips");
}

TEST_F(HelperDamagedFiles, CompositionWhoseClipsResolveNowhere) {
    OmfBuilder omf = oneClipDocument();
    omf.at(9).uid("OMFI:SCLP:SourceID", {9, 9, 9});
    expectMappingFails(
        omf, 1, "Malformed OMF/Bento file: composition contains no resolvable audio Source Clips");
}

TEST_F(HelperDamagedFiles, CompositionThatExpandsWithoutEnd) {
    OmfBuilder omf = oneClipDocument();
    // A thousand times a thousand times ten times the same filler, and the sequences themselves:
    // the shared subtree is small, its expansion is not.
    ObjectID segment = omf.filler(1);
    for (const std::size_t count : {std::size_t{10}, std::size_t{1'000}, std::size_t{1'000}}) {
        segment = omf.sequence(std::vector<ObjectID>(count, segment));
    }
    omf.at(12).ref("OMFI:MSLT:Segment", segment);
    expectMappingFails(omf, 1,
                       "Unsupported OMF/Bento feature: composition expands to more than 10000000 "
                       "segments");
}

TEST_F(HelperDamagedFiles, MediaBehindTheEndFailsTheExtraction) {
    OmfBuilder omf = oneClipDocument();
    omf.at(2).without("OMFI:WAVE:AudioData");
    omf.container().addItem(2, "OMFI:WAVE:AudioData", BentoRange{1'000'000'000, 3'000});
    const Bytes file = omf.build();
    const std::string source = writeFile(path("damaged.omf"), file);
    expectFailed(run(requestFor("extractAndInspect", source, path("work"))),
                 progressLineText("opening", "0.05") + progressLineText("reconstructing", "0.15") +
                     progressLineText("reconstructing", "0.15"),
                 "Read out of bounds (offset=1000000000, length=3000, fileSize=" +
                     std::to_string(file.size()) + ").");
}

TEST_F(HelperDamagedFiles, MediaBehindTheEndDoesNotMatterToInspect) {
    OmfBuilder omf = oneClipDocument();
    omf.at(2).without("OMFI:WAVE:AudioData");
    omf.container().addItem(2, "OMFI:WAVE:AudioData", BentoRange{1'000'000'000, 3'000});
    EXPECT_EQ(runOn(omf.build()).status, 0);
}

}  // namespace

}  // namespace trellant::testing
