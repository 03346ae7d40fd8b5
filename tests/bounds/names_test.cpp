// SPDX-License-Identifier: Apache-2.0
// A container that names more than it uses, and objects of more classes than there are.
//
// Bound: 15 bytes for each byte of the table, the long names (64 MiB for properties, 64 MiB for
// types), and a constant. The smallest named object takes 18 bytes of the table, 13 and a value of
// 5. Beside 32 + 4 + 4 + 2 * 28 bytes as an object (every seventh number used), it takes 64 bytes
// for the name by number, 48 for the number by name, and in each of these two maps at most 16 for
// its place; while a map grows, 8 more. In all 248, or 13.8 for each byte. A class of its own takes
// 64 bytes with its number, 16 to 24 for its place, and 32 in a list that doubles its room, so at
// worst twice that: 248 too.
#include "bounds_fixture.h"
#include "growing_file.h"
#include "worker_fixture.h"

namespace trellant::testing {
namespace {

constexpr std::uint32_t count = sanitized ? 100'000 : 1'000'000;
constexpr std::uint64_t bytesOfSmallest = 18;
constexpr std::uint64_t bytesForEachByte = 15;
/// Beyond the names of the document.
constexpr std::uint32_t firstObject = 131'072;
constexpr std::uint32_t stride = 7;

/// Four characters, others for every number.
std::string fourCharacters(std::uint32_t number) {
    constexpr std::string_view digits =
        "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz+-";
    constexpr std::uint32_t base64 = 64;
    static_assert(digits.size() == base64);
    std::string text;
    for (int place = 0; place < 4; ++place) {
        text += digits[number % base64];
        number /= base64;
    }
    return text;
}

class ManyNames : public BoundsTest {
  protected:
    /// Objects with a value of their own for `property`.
    void writeObjects(OmfBuilder& omf, std::uint32_t property) const {
        GrowingFile table(file(), omf.image());
        for (std::uint32_t i = 0; i < count; ++i) {
            table.object(firstObject + i * stride, property);
            table.immediate(fourCharacters(i));
        }
        table.finish();
    }
    void expectAnswered(std::string_view shape) const {
        const std::uint64_t bound = count * bytesOfSmallest * bytesForEachByte + base;
        const auto run = inspect(bound * 3 / 2);
        EXPECT_EQ(run.output, smallAnswer());
        expectPeak(run, shape, bound);
        expectOutOfMemory(inspect(bound / 3));
    }
};

TEST_F(ManyNames, OfAMillionPropertiesLeaveTheAnswerAsItWas) {
    OmfBuilder omf = oneClipDocument();
    writeObjects(omf, propertyNameProperty);
    expectAnswered("PropertyNames");
}

TEST_F(ManyNames, OfAMillionTypesLeaveTheAnswerAsItWas) {
    OmfBuilder omf = oneClipDocument();
    writeObjects(omf, typeNameProperty);
    expectAnswered("TypeNames");
}

TEST_F(ManyNames, OfAMillionClassesLeaveTheAnswerAsItWas) {
    OmfBuilder omf = oneClipDocument();
    writeObjects(omf, omf.container().propertyID("OMFI:OOBJ:ObjClass"));
    expectAnswered("Classes");
}

class LongNames : public BoundsTest {
  protected:
    static constexpr std::uint64_t nameLimit_ = 131'072;
    static constexpr std::uint64_t allNamesLimit_ = 64 * mebibyte;
    static constexpr std::uint32_t count_ = sanitized ? 1'000 : 100'000;

    /// Many objects whose names are one text of `length` bytes.
    void writeNames(std::uint32_t property, std::uint64_t length) const {
        GrowingFile names(file(), oneClipDocument().image());
        const auto offset = names.value(std::string(length, 'n'));
        for (std::uint32_t i = 0; i < count_; ++i) {
            names.object(firstObject + i, property);
            names.range(offset, length);
        }
        names.finish();
    }
    void expectAnswered(std::string_view shape, std::uint64_t namesBound) const {
        // The names, one more on its way, and the objects: 22 bytes of the table each.
        const std::uint64_t bound = namesBound + count_ * 22 * bytesForEachByte + base;
        const auto run = inspect(bound + addressBase);
        EXPECT_EQ(run.output, smallAnswer());
        expectPeak(run, shape, bound);
    }
};

TEST_F(LongNames, OfPropertiesFillTheirRoomAndNoMore) {
    writeNames(propertyNameProperty, nameLimit_);
    expectAnswered("LongPropertyNames", allNamesLimit_ + 2 * nameLimit_);
}

TEST_F(LongNames, OfTypesFillTheirRoomAndNoMore) {
    writeNames(typeNameProperty, nameLimit_);
    expectAnswered("LongTypeNames", allNamesLimit_ + 2 * nameLimit_);
}

TEST_F(LongNames, BeyondTheirCapTakeNothing) {
    writeNames(propertyNameProperty, nameLimit_ + 1);
    expectAnswered("TooLongPropertyNames", 0);
}

}  // namespace
}  // namespace trellant::testing
