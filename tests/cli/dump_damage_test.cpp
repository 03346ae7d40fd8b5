// SPDX-License-Identifier: Apache-2.0
// Where damaged files stop making sense, and what other files look like.
#include "dump/dump_object.h"
#include "dump/dump_overview.h"
#include "dump/dump_toc_list.h"
#include "dumped.h"

#include <gtest/gtest.h>

#include <trellant_testing/byte_writer.h>
#include <trellant_testing/container_builder.h>
#include <trellant_testing/omf_builder.h>
#include <trellant_testing/temporary_directory.h>

namespace trellant::testing {

namespace {

/// Object 1, class HEAD: the class's name of 19 bytes, a table of 18 + 22 = 40 bytes at byte 19,
/// the footer at byte 59.
ContainerImage headImage(TocForm form = TocForm::compressed) {
    ContainerBuilder container({.form = form});
    container.set(1, "OMFI:OOBJ:ObjClass", bytesOf("HEAD"));
    return container.image();
}

/// What is wrong with the file, without the file's name.
std::string damage(ByteView file) {
    const Said said = dumped(file);
    EXPECT_EQ(said.status, 2) << said.errors;
    const std::string prefix = "trellant: \"mix.omf\": ";
    EXPECT_EQ(said.errors.substr(0, prefix.size()), prefix);
    return said.errors.substr(std::min(prefix.size(), said.errors.size()));
}

/// What a file without a footer looks like.
std::string looks(const Bytes& file) {
    const std::string out = dumped(file).out;
    const std::string label = "Looks like ";
    const std::size_t start = out.find(label);
    return start == std::string::npos
               ? ""
               : out.substr(start + label.size(), out.find('\n', start) - start - label.size());
}

Bytes appended(Bytes bytes, std::string_view text) {
    const Bytes more = bytesOf(text);
    bytes.insert(bytes.end(), more.begin(), more.end());
    return bytes;
}

}  // namespace

TEST(DumpDamage, FindsNoneInASoundFile) {
    EXPECT_EQ(dumped(headImage().bytes()).status, 0);
    EXPECT_EQ(dumped(headImage(TocForm::v1).bytes()).status, 0);
}

TEST(DumpDamage, TellsAFileTooShortForAFooter) {
    EXPECT_EQ(damage(Bytes(23)), "shorter than the 24 bytes that end a container\n");
}

TEST(DumpDamage, ShowsTheEndOfAFileWithoutFooter) {
    const Said said = dumped(bytesOf("hello, this is no session at all\n"));
    EXPECT_EQ(said.out,
              "File       mix.omf\n"
              "Size       33 bytes\n"
              "Looks like a text\n"
              "Ends with  69 73 20 69 73 20 6E 6F 20 73 65 73 73 69 6F 6E 20 61 74 20 61 6C 6C 0A"
              "  |is is no session at all.|\n");
    EXPECT_EQ(said.errors, "trellant: \"mix.omf\": no container footer at the end\n");
    EXPECT_EQ(said.status, 2);
}

TEST(DumpDamage, ReadsOnBehindAnAppendix) {
    const Bytes file = appended(headImage().bytes(), "junk");
    EXPECT_EQ(damage(file), "the footer does not stand at the end: 4 bytes were appended to it\n");
    EXPECT_NE(dumped(file).out.find("\nHEAD       1  1\n"), std::string::npos);
}

TEST(DumpDamage, TellsAVersionThatDoesNotExist) {
    ContainerImage image = headImage();
    image.footer.majorVersion = 3;
    EXPECT_EQ(damage(image.bytes()),
              "the footer's major version is neither 1 nor 2 in any byte order\n");
}

TEST(DumpDamage, TellsAFooterWithoutTable) {
    ContainerImage image = headImage();
    image.footer.tocSize = 0;
    EXPECT_EQ(damage(image.bytes()), "the footer names no table of contents\n");
}

TEST(DumpDamage, TellsAMissingExtendedFooter) {
    ContainerImage image = headImage();
    image.footer.tocSize = 0;
    image.footer.minorVersion = 1;
    EXPECT_EQ(damage(image.bytes()),
              "the extended footer before the footer is missing\n"
              "trellant: \"mix.omf\": the footer names no table of "
              "contents\n");
}

TEST(DumpDamage, TellsATableBehindTheFooter) {
    ContainerImage image = headImage();
    image.footer.tocOffset = 5'000;
    EXPECT_EQ(
        damage(image.bytes()),
        "the table of contents would begin at byte 5000, not before the footer\n"
        "trellant: \"mix.omf\": the table of contents stops making sense at its byte 0, after "
        "0 items: the file ends here\n");
}

TEST(DumpDamage, TellsATableThatReachesIntoTheFooter) {
    ContainerImage image = headImage();
    image.footer.tocSize = 41;
    EXPECT_EQ(damage(image.bytes()),
              "the table of contents would end 1 bytes behind the footer's begin\n"
              "trellant: \"mix.omf\": the table of contents stops making sense at its byte 40, "
              "after 2 items: there is no token 164\n");
}

TEST(DumpDamage, TellsTheTokenThatDoesNotExist) {
    ContainerImage image = headImage();
    image.toc[18] = std::byte{27};
    EXPECT_EQ(damage(image.bytes()),
              "the table of contents stops making sense at its byte 18, "
              "after 1 items: there is no token 27\n");
    image.toc[0] = std::byte{0};
    EXPECT_EQ(damage(image.bytes()),
              "the table of contents stops making sense at its byte 0, "
              "after 0 items: there is no token 0\n");
}

TEST(DumpDamage, TellsACutToken) {
    ContainerImage image = headImage();
    image.footer.tocSize = 30;
    EXPECT_EQ(damage(image.bytes()),
              "the table of contents stops making sense at its byte 18, "
              "after 1 items: the last token is cut\n");
}

TEST(DumpDamage, TellsFaultsOfEntries) {
    ContainerImage cut = headImage(TocForm::v1);
    cut.footer.tocSize = 47;
    EXPECT_EQ(damage(cut.bytes()),
              "the table of contents stops making sense at its byte 24, "
              "after 1 items: the last entry is cut\n");
    ContainerImage tooLong = headImage(TocForm::v1);
    tooLong.toc[16] = std::byte{5};
    EXPECT_EQ(damage(tooLong.bytes()),
              "the table of contents stops making sense at its byte 0, after 0 items: an entry "
              "holds 5 bytes of its own, more than its 4\n");
}

TEST(DumpDamage, TellsValuesOutsideTheFile) {
    ContainerBuilder container;
    container.set(1, "OMFI:OOBJ:ObjClass", bytesOf("HEAD"));
    container.addItem(8, "OMFI:WAVE:AudioData", BentoRange{10, 0xFFFF'FFFF'FFFF'FFFF});
    EXPECT_EQ(damage(container.build()),
              "1 value does not lie wholly in the file, first that of object 8\n");
    container.addItem(9, "OMFI:WAVE:AudioData", BentoRange{0xFFFF'FFFF, 0});
    EXPECT_EQ(damage(container.build()),
              "2 values do not lie wholly in the file, first that of object 8\n");
}

TEST(DumpDamage, TellsAMissingHeader) {
    ContainerBuilder container;
    container.set(1, "OMFI:OOBJ:ObjClass", bytesOf("CMOB"));
    EXPECT_EQ(damage(container.build()), "there is no object of class HEAD\n");
}

TEST(DumpDamage, LeavesWhatCanBeReadOnStandardOutput) {
    ContainerImage image = headImage();
    image.toc[18] = std::byte{0};
    const Said said = dumped(image.bytes());
    EXPECT_NE(said.out.find("\nItems      1\n"), std::string::npos);
    EXPECT_EQ(said.status, 2);
}

TEST(DumpFileKind, KnowsWhatPeopleTakeForSessions) {
    EXPECT_EQ(looks({}), "an empty file");
    EXPECT_EQ(looks(bytesOf("RIFF\x01\x02\x03\x04WAVEfmt ")), "a WAVE audio file, not a session");
    EXPECT_EQ(looks(bytesOf("FORM\x01\x02\x03\x04"
                            "AIFFCOMM")),
              "an AIFF audio file, not a session");
    EXPECT_EQ(looks(bytesOf("FORM\x01\x02\x03\x04"
                            "AIFCFVER")),
              "an AIFC audio file, not a session");
    EXPECT_EQ(looks(hex("50 4B 03 04 14 00")), "a ZIP archive: unpack it first");
    EXPECT_EQ(looks(hex("1F 8B 08 00")), "a gzip archive: unpack it first");
    EXPECT_EQ(looks(hex("D0 CF 11 E0 A1 B1 1A E1 00")),
              "a compound file, as AAF files are: export the session as OMF");
    EXPECT_EQ(looks(hex("00 05 16 07 00 02 00 00")),
              "what a Mac leaves beside a file on other disks: the file itself has the same name "
              "without \"._\" in front");
    EXPECT_EQ(looks(hex("06 0E 2B 34 02 05")), "an MXF file: export the session as OMF");
    EXPECT_EQ(looks(bytesOf("<?xml version=\"1.0\"?>")), "an XML document");
}

TEST(DumpFileKind, KnowsZerosTextsAndNothing) {
    EXPECT_EQ(looks(Bytes(5'000)), "zero bytes, as an unfinished copy leaves them");
    EXPECT_EQ(looks(bytesOf("a line\r\n\tanother\n")), "a text");
    EXPECT_EQ(looks(bytesOf(std::string(4'095, 'a') + "\u00e4\u00e4")), "a text");
    EXPECT_EQ(looks(bytesOf("a\xFF")), "nothing known");
    EXPECT_EQ(looks(hex("01 02 03 FF")), "nothing known");
}

TEST(DumpFileKind, KnowsAContainerWithoutItsEnd) {
    OmfBuilder omf;
    omf.composition({.name = "Song"});
    Bytes file = omf.build();
    file.erase(file.end() - 24, file.end());
    EXPECT_EQ(looks(file),
              "the front of an OMF file whose end is missing: " + std::to_string(file.size()) +
                  " bytes are there. Copy or export it again");
}

// Whatever stands in a file, a dump ends by itself.
TEST(DumpDamage, SurvivesEveryCutAndEveryFlippedByte) {
    const TemporaryDirectory folder;
    for (const TocForm form : {TocForm::compressed, TocForm::v1}) {
        OmfBuilder omf({.container = {.form = form}});
        omf.composition({.name = "Song", .slots = {omf.slot({.segment = omf.filler(5)})}});
        const Bytes whole = omf.build();
        const Said said = saidWithStatus({}, [&](cli::Console& console) {
            const auto look = [&](ByteView file) {
                const cli::DumpContents contents(writeFile(folder.file("mix.omf"), file));
                cli::DumpOutput output(console);
                cli::dumpOverview(contents, true, output);
                cli::dumpToc(contents, true, output);
                for (const std::uint32_t object : contents.objects()) {
                    cli::dumpObject(contents, object, true, output);
                }
                static_cast<void>(cli::damagesOf(contents));
            };
            for (std::size_t size = 0; size < whole.size(); ++size) {
                look(ByteView(whole).first(size));
            }
            Bytes flipped = whole;
            for (std::byte& byte : flipped) {
                byte ^= std::byte{0xFF};
                look(flipped);
                byte ^= std::byte{0xFF};
            }
            return 7;
        });
        EXPECT_EQ(said.status, 7) << said.errors;
    }
}

}  // namespace trellant::testing
