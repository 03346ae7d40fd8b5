// SPDX-License-Identifier: Apache-2.0
#include "name_based_uuid.h"

#include <gtest/gtest.h>

namespace trellant::sessions {
namespace {

TEST(NameBasedUuid, TheSameNameGivesTheSameIdentifierAndAnotherNameAnother) {
    EXPECT_EQ(nameBasedUuid("clip 1"), nameBasedUuid("clip 1"));
    EXPECT_NE(nameBasedUuid("clip 1"), nameBasedUuid("clip 2"));
    EXPECT_NE(nameBasedUuid(""), nameBasedUuid("clip 1"));
}

// By another implementation of the same rules: Python's uuid.uuid5 with the same namespace.
TEST(NameBasedUuid, AgreesWithOthers) {
    EXPECT_EQ(uuidText(nameBasedUuid("clip 1")), "AF163BA5-D37F-5E11-804E-70EA40A1536D");
}

TEST(NameBasedUuid, SaysItsVersionAndVariant) {
    const std::string text = uuidText(nameBasedUuid("clip 1"));
    ASSERT_EQ(text.size(), 36U);
    EXPECT_EQ(text[14], '5');
    EXPECT_NE(std::string("89AB").find(text[19]), std::string::npos);
}

TEST(NameBasedUuid, IsWrittenInUpperCaseGroups) {
    std::array<std::byte, 16> uuid{};
    for (std::size_t i = 0; i < uuid.size(); ++i) {
        uuid.at(i) = static_cast<std::byte>(i * 17);
    }
    EXPECT_EQ(uuidText(uuid), "00112233-4455-6677-8899-AABBCCDDEEFF");
}

}  // namespace
}  // namespace trellant::sessions
