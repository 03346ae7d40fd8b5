// SPDX-License-Identifier: Apache-2.0
// What a file has beside its mobs: header, identification, dictionary, essence.
#include "written_aaf.h"

#include <trellant/compound/compound_file.h>

#include <algorithm>
#include <chrono>
#include <stdexcept>
#include <trellant_testing/byte_writer.h>

namespace trellant::aaf {
namespace {

using Fault = AafError::Fault;
using testing::bytesOf;
using testing::hex;
using testing::patternBytes;

EssenceData essence(unsigned char mob, const Bytes& bytes) {
    return {.mobID = mobNumber(mob), .byteCount = bytes.size(), .data = [bytes](const auto& sink) {
                sink(bytes);
            }};
}

TEST(AafFiles, EmptyOneHasNoMobsAndNoEssence) {
    const WrittenAaf written(AafFile{});
    EXPECT_EQ(written.textOf("Header/Content"),
              "ContentStorage\n"
              "  EssenceData\n"
              "  Mobs\n");
}

TEST(AafFiles, ContainerSaysWhatItIsByItsClasses) {
    const WrittenAaf written(AafFile{});
    const auto& container = written.reader->stored().container();
    const auto classOf = [](std::string_view digits) {
        const Bytes bytes = hex(digits);
        std::array<std::byte, 16> result{};
        std::copy(bytes.begin(), bytes.end(), result.begin());
        return result;
    };
    EXPECT_EQ(container.headerClass(), classOf("01 02 01 0D 00 02 00 00 06 0E 2B 34 02 06 01 01"));
    EXPECT_EQ(container.entries()[0].classID,
              classOf("A5 98 B3 B3 90 1C D4 11 80 53 08 00 36 21 08 04"));
}

TEST(AafFiles, RootStreamsByteForByte) {
    const WrittenAaf written(AafFile{});
    const auto& container = written.reader->stored().container();
    EXPECT_EQ(
        container.content(container.find(0, u"properties").value()),
        hex("4C 20 02 00"
            "01 00 22 00 22 00"
            "02 00 22 00 12 00"
            "4D 00 65 00 74 00 61 00 44 00 69 00 63 00 74 00 69 00 6F 00 6E 00 61 00 72 00 79 00"
            "2D 00 31 00 00 00"
            "48 00 65 00 61 00 64 00 65 00 72 00 2D 00 32 00 00 00"));
    EXPECT_EQ(container.content(container.find(0, u"referenced properties").value()),
              hex("4C 07 00 1A 00 00 00"
                  "01 00 03 00 00 00"
                  "01 00 04 00 00 00"
                  "02 00 04 3B 05 26 00 00"
                  "02 00 04 3B 03 26 00 00"
                  "02 00 04 3B 04 26 00 00"
                  "02 00 04 3B 09 26 00 00"
                  "02 00 04 3B 08 26 00 00"));
}

TEST(AafFiles, IndexOfMobsByteForByte) {
    AafFile file;
    file.compositionMobs.push_back({.mobID = mobNumber(9)});
    file.masterMobs.push_back({.mobID = mobNumber(3)});
    const WrittenAaf written(file);
    const auto& container = written.reader->stored().container();
    const auto header = container.find(0, u"Header-2").value();
    const auto content = container.find(header, u"Content-3b03").value();
    EXPECT_EQ(container.content(container.find(content, u"Mobs-1901 index").value()),
              hex("02 00 00 00 02 00 00 00 FF FF FF FF 01 44 20"
                  "01 00 00 00 01 00 00 00"
                  "06 0A 2B 34 01 01 01 05 01 01 0F 20 13 00 00 00"
                  "03 03 03 03 03 03 03 03 03 03 03 03 03 03 03 03"
                  "00 00 00 00 01 00 00 00"
                  "06 0A 2B 34 01 01 01 05 01 01 0F 20 13 00 00 00"
                  "09 09 09 09 09 09 09 09 09 09 09 09 09 09 09 09"));
    EXPECT_TRUE(container.find(content, u"Mobs-1901{0}").has_value());
    EXPECT_TRUE(container.find(content, u"Mobs-1901{1}").has_value());
}

TEST(AafFiles, HeaderAndIdentification) {
    AafFile file;
    file.lastModified = {2024, 2, 29, 12, 30, 15, 125};
    file.identification = {.companyName = "Company",
                           .productName = "Product",
                           .productVersionString = "1.2 beta",
                           .productVersion = {1, 2, 3, 65'535, ReleaseType::beta},
                           .productID = auid("00112233-4455-6677-8899-aabbccddeeff"),
                           .date = {1999, 12, 31, 23, 59, 59, 0},
                           .toolkitVersion = {4, 5, 6, 7, ReleaseType::released},
                           .platform = "Linux",
                           .generationAUID = auid("ffeeddcc-bbaa-9988-7766-554433221100")};
    const WrittenAaf written(file);
    EXPECT_EQ(written.textOf("Header/IdentificationList/0"),
              "Identification\n"
              "  CompanyName \"Company\"\n"
              "  Date 1999-12-31 23:59:59.0\n"
              "  GenerationAUID ffeeddcc-bbaa-9988-7766-554433221100\n"
              "  Platform \"Linux\"\n"
              "  ProductID 00112233-4455-6677-8899-aabbccddeeff\n"
              "  ProductName \"Product\"\n"
              "  ProductVersion {1, 2, 3, 65535, VersionBeta}\n"
              "  ProductVersionString \"1.2 beta\"\n"
              "  ToolkitVersion {4, 5, 6, 7, VersionReleased}\n");
    EXPECT_EQ(written.reader->valueOf("Header", "ByteOrder"), "18761");
    EXPECT_EQ(written.reader->valueOf("Header", "LastModified"), "2024-02-29 12:30:15.125");
    EXPECT_EQ(written.reader->valueOf("Header", "ObjectModelVersion"), "1");
    EXPECT_EQ(written.reader->valueOf("Header", "OperationalPattern"),
              "0d011201-0100-0000-060e-2b3404010105");
    EXPECT_EQ(written.reader->valueOf("Header", "Version"), "{1, 1}");
}

TEST(AafFiles, DictionaryDefinesWhatComponentsNeed) {
    const WrittenAaf written(AafFile{});
    EXPECT_EQ(written.textOf("Header/Dictionary/OperationDefinitions/2"),
              "OperationDefinition\n"
              "  DataDefinition DataDef_Sound\n"
              "  Description \"Changes the level of one channel\"\n"
              "  Identification 9d2ea894-0968-11d3-8a38-0050040ef7d2\n"
              "  IsTimeWarp False\n"
              "  Name \"Mono Audio Gain\"\n"
              "  NumberInputs 1\n"
              "  OperationCategory OperationCategory_Effect\n"
              "  ParametersDefined [Amplitude]\n");
    EXPECT_EQ(written.textOf("Header/Dictionary/ParameterDefinitions/0"),
              "ParameterDefinition\n"
              "  Description \"From 0, outgoing, to 1, incoming\"\n"
              "  Identification e4962320-2267-11d3-8a4c-0050040ef7d2\n"
              "  Name \"Level\"\n"
              "  Type Rational\n");
    EXPECT_EQ(written.reader->valueOf("Header/Dictionary/OperationDefinitions/0", "NumberInputs"),
              "2");
    const auto count = [&](const char* property) {
        return written.reader->valueOf("Header/Dictionary", property);
    };
    EXPECT_EQ(count("DataDefinitions"), "3 objects");
    EXPECT_EQ(count("ContainerDefinitions"), "3 objects");
    EXPECT_EQ(count("InterpolationDefinitions"), "4 objects");
    EXPECT_EQ(count("ParameterDefinitions"), "3 objects");
    EXPECT_EQ(count("OperationDefinitions"), "3 objects");
}

TEST(AafFiles, EssenceIsStoredByteForByte) {
    AafFile file;
    const Bytes longOne = patternBytes(300'000);
    const Bytes shortOne = bytesOf("RIFF");
    file.essenceData = {essence(7, longOne), essence(2, shortOne), essence(5, {})};
    const WrittenAaf written(file);
    EXPECT_EQ(written.textOf("Header/Content/EssenceData/0"),
              "EssenceData\n"
              "  Data 4 bytes\n"
              "  MobID " +
                  mobText(2) + "\n");
    EXPECT_EQ(written.reader->streamOf("Header/Content/EssenceData/0", "Data"), shortOne);
    EXPECT_EQ(written.reader->streamOf("Header/Content/EssenceData/1", "Data"), Bytes{});
    EXPECT_EQ(written.reader->streamOf("Header/Content/EssenceData/2", "Data"), longOne);
}

TEST(AafFiles, EssenceIsAskedForWhenItIsWritten) {
    AafFile file;
    int calls = 0;
    file.essenceData.push_back(
        {.mobID = mobNumber(1), .byteCount = 3, .data = [&](const auto& sink) {
             ++calls;
             sink(bytesOf("abc"));
         }});
    std::size_t before = 0;
    writeAaf(file, [&](ByteView) { before += calls == 0 ? 1 : 0; });
    EXPECT_EQ(calls, 1);
}

TEST(AafFiles, EssenceOfAnotherLengthIsAnError) {
    AafFile file;
    file.essenceData.push_back({.mobID = mobNumber(1),
                                .byteCount = 4,
                                .data = [](const auto& sink) { sink(bytesOf("abc")); }});
    EXPECT_THROW(writeAaf(file, [](ByteView) {}), compound::CompoundError);
}

TEST(AafFiles, TwoEssencesOfOneMobAreRefused) {
    AafFile file;
    file.essenceData = {essence(7, bytesOf("a")), essence(7, bytesOf("b"))};
    EXPECT_EQ(faultOf(file), Fault(AafError::Duplicate{"EssenceData"}));
}

TEST(AafFiles, WhatTheSinkThrowsComesThrough) {
    EXPECT_THROW(writeAaf(AafFile{}, [](ByteView) { throw std::runtime_error("full"); }),
                 std::runtime_error);
}

AafFile largeFile(unsigned clips) {
    AafFile file;
    Sequence sequence;
    for (unsigned index = 0; index < clips; ++index) {
        VaryingValue automation;
        for (int point = 0; point < 10; ++point) {
            automation.points.push_back({{point, 9}, {point, 10}});
        }
        sequence.components.emplace_back(SourceClip{
            .length = 100,
            .sourceID = mobNumber(1),
            .operationGroups = {{.operation = Operation::monoAudioGain,
                                 .parameters = {{ParameterKind::amplitude, automation}}}}});
    }
    Mob mob{.mobID = mobNumber(2)};
    mob.slots.emplace_back(
        TimelineMobSlot{.slotID = 1, .editRate = samples48k, .segment = std::move(sequence)});
    file.compositionMobs.push_back(std::move(mob));
    return file;
}

TEST(AafFiles, SameValuesGiveTheSameBytes) {
    EXPECT_EQ(WrittenAaf(largeFile(20)).image.bytes(), WrittenAaf(largeFile(20)).image.bytes());
}

TEST(AafFiles, ThreeHundredClipsComeBack) {
    const WrittenAaf written(largeFile(300));
    const std::string place = "Header/Content/Mobs/0/Slots/0/Segment";
    EXPECT_EQ(written.reader->valueOf(place, "Components"), "300 objects");
    EXPECT_EQ(written.reader->valueOf(place + "/Components/299/Parameters/0/PointList/9", "Time"),
              "9/9");
}

double secondsFor(const AafFile& file) {
    double quickest = 1e9;
    for (int attempt = 0; attempt < 3; ++attempt) {
        const auto before = std::chrono::steady_clock::now();
        writeAaf(file, [](ByteView) {});
        const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - before;
        quickest = std::min(quickest, taken.count());
    }
    return quickest;
}

TEST(AafFiles, TimeGrowsWithTheirClipsNotWithTheSquare) {
    // Sixteen times as many would take 256 times as long.
    EXPECT_LT(secondsFor(largeFile(800)), 64 * secondsFor(largeFile(50)));
}

}  // namespace
}  // namespace trellant::aaf
