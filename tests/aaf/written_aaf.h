// SPDX-License-Identifier: Apache-2.0
// AAF files of tests, written to memory and read back.
#pragma once

#include <trellant/aaf/aaf_file.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <trellant_testing/aaf_reader.h>
#include <utility>

namespace trellant::aaf {

/// An identifier of mobs that a test can tell from others.
inline MobID mobNumber(unsigned char number) {
    AUID material;
    material.bytes.fill(std::byte{number});
    return mobIDOfMaterial(material);
}

/// As readers of tests write it.
inline std::string mobText(unsigned char number) {
    constexpr std::string_view digits = "0123456789abcdef";
    const std::string byte{digits[number / 16], digits[number % 16]};
    std::string text = "342b0a06-0101-0501-0101-0f2013000000.";
    for (int index = 0; index < 16; ++index) {
        text += (index == 4 || index == 6 || index == 8 || index == 10 ? "-" : "") + byte;
    }
    return text;
}

inline constexpr Rational samples48k{48'000, 1};

/// What a file looks like to a reader, which must find no fault in it.
struct WrittenAaf {
    testing::MemoryImage image;
    std::optional<testing::AafReader> reader;

    explicit WrittenAaf(const AafFile& file) {
        writeAaf(file, [this](ByteView bytes) { image.append(bytes); });
        reader.emplace(image);
        EXPECT_THAT(reader->problems(), ::testing::IsEmpty());
    }

    [[nodiscard]] std::string textOf(std::string_view path) const { return reader->textOf(path); }
};

/// A file of one composition of one slot.
inline AafFile fileOf(MobSlot slot) {
    AafFile file;
    Mob composition{.mobID = mobNumber(1)};
    composition.slots.push_back(std::move(slot));
    file.compositionMobs.push_back(std::move(composition));
    return file;
}

inline AafFile fileOf(Segment segment, DataKind kind = DataKind::sound) {
    return fileOf(TimelineMobSlot{
        .slotID = 1, .editRate = samples48k, .dataKind = kind, .segment = std::move(segment)});
}

/// The slot's segment in such a file.
inline std::string textOfSegment(Segment segment, DataKind kind = DataKind::sound) {
    return WrittenAaf(fileOf(std::move(segment), kind))
        .textOf("Header/Content/Mobs/0/Slots/0/Segment");
}

/// What writing this must fail with.
inline AafError::Fault faultOf(const AafFile& file) {
    bool wrote = false;
    try {
        writeAaf(file, [&](ByteView) { wrote = true; });
    } catch (const AafError& error) {
        EXPECT_FALSE(wrote);
        return error.fault();
    }
    ADD_FAILURE() << "no AafError";
    return AafError::LengthOutOfRange{};
}

}  // namespace trellant::aaf
