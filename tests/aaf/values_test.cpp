// SPDX-License-Identifier: Apache-2.0
// Identifiers and moments.
#include <trellant/aaf/identifiers.h>
#include <trellant/aaf/values.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <limits>
#include <trellant_testing/byte_writer.h>

namespace trellant::aaf {
namespace {

using testing::hex;

template <class Identifier>
Bytes bytesOf(const Identifier& identifier) {
    return {identifier.bytes.begin(), identifier.bytes.end()};
}

TEST(AafIdentifiers, FirstThreeGroupsAreStoredLittleEndian) {
    EXPECT_EQ(bytesOf(auid("00112233-4455-6677-8899-aabbccddeeff")),
              hex("33 22 11 00 55 44 77 66 88 99 AA BB CC DD EE FF"));
}

TEST(AafIdentifiers, UUIDBecomesTheAUIDOfTheSameText) {
    const Bytes uuid = hex("00 11 22 33 44 55 66 77 88 99 AA BB CC DD EE FF");
    std::array<std::byte, 16> bytes{};
    std::copy(uuid.begin(), uuid.end(), bytes.begin());
    EXPECT_EQ(auidOfUUID(bytes), auid("00112233-4455-6677-8899-aabbccddeeff"));
}

TEST(AafIdentifiers, UMIDOfAMaterialIsABasicOne) {
    EXPECT_EQ(bytesOf(mobIDOfMaterial(auid("00112233-4455-6677-8899-aabbccddeeff"))),
              hex("06 0A 2B 34 01 01 01 05 01 01 0F 20 13 00 00 00"
                  "33 22 11 00 55 44 77 66 88 99 AA BB CC DD EE FF"));
}

TEST(AafIdentifiers, AreOrderedAsTheyAreStored) {
    EXPECT_LT(auid("ff000001-0000-0000-0000-000000000000"),
              auid("00000002-0000-0000-0000-000000000000"));
    EXPECT_LT(mobIDOfMaterial(auid("00000001-0000-0000-0000-000000000000")),
              mobIDOfMaterial(auid("00000002-0000-0000-0000-000000000000")));
}

TEST(AafTimeStamps, CountFromTheBeginningOf1970) {
    EXPECT_EQ(timeStampOf(0), (TimeStamp{1970, 1, 1, 0, 0, 0, 0}));
    EXPECT_EQ(timeStampOf(86'399), (TimeStamp{1970, 1, 1, 23, 59, 59, 0}));
    EXPECT_EQ(timeStampOf(1'000'000'000), (TimeStamp{2001, 9, 9, 1, 46, 40, 0}));
    EXPECT_EQ(timeStampOf(951'782'400), (TimeStamp{2000, 2, 29, 0, 0, 0, 0}));
}

TEST(AafTimeStamps, GoBackToTheYearOne) {
    EXPECT_EQ(timeStampOf(-1), (TimeStamp{1969, 12, 31, 23, 59, 59, 0}));
    EXPECT_EQ(timeStampOf(std::numeric_limits<std::int64_t>::min()),
              (TimeStamp{1, 1, 1, 0, 0, 0, 0}));
}

TEST(AafTimeStamps, EndWithTheYear9999) {
    EXPECT_EQ(timeStampOf(253'402'300'799), (TimeStamp{9999, 12, 31, 23, 59, 59, 0}));
    EXPECT_EQ(timeStampOf(253'402'300'800), (TimeStamp{9999, 12, 31, 23, 59, 59, 0}));
    EXPECT_EQ(timeStampOf(std::numeric_limits<std::int64_t>::max()),
              (TimeStamp{9999, 12, 31, 23, 59, 59, 0}));
}

}  // namespace
}  // namespace trellant::aaf
