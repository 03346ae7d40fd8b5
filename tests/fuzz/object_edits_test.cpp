// SPDX-License-Identifier: Apache-2.0
#include "object_edits.h"

#include "object_model.h"
#include "seeds.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <set>
#include <trellant_testing/byte_writer.h>
#include <trellant_testing/container_builder.h>

namespace trellant::fuzzing {
namespace {

using testing::bytesOf;
using testing::ContainerBuilder;
using ::testing::Contains;

void addByte(Bytes& bytes) {
    bytes.push_back(std::byte{0x5A});
}

bool lessThan(const ObjectValue& left, const ObjectValue& right) {
    return std::tie(left.object, left.property, left.bytes) <
           std::tie(right.object, right.property, right.bytes);
}

std::vector<ObjectValue> valuesOf(ByteView container) {
    const auto model = objectModelOf(container);
    std::vector<ObjectValue> values = model ? model->values : std::vector<ObjectValue>{};
    std::sort(values.begin(), values.end(), lessThan);
    return values;
}

TEST(ObjectEdits, EveryResultIsAContainerWithValues) {
    for (const Seed& seed : compositionSeeds()) {
        Bytes container = seed.bytes;
        for (unsigned round = 0; round < 40; ++round) {
            const auto edited = editedContainer(container, round, addByte);
            ASSERT_TRUE(edited) << seed.name << " " << round;
            ASSERT_FALSE(valuesOf(*edited).empty()) << seed.name << " " << round;
            container = *edited;
        }
    }
}

TEST(ObjectEdits, NearlyEveryResultDiffersInAValue) {
    const Bytes container = compositionSeeds().front().bytes;
    const auto before = valuesOf(container);
    int same = 0;
    std::set<Bytes> different;
    for (unsigned round = 0; round < 200; ++round) {
        const auto edited = editedContainer(container, round, addByte).value_or(Bytes{});
        different.insert(edited);
        same += valuesOf(edited) == before ? 1 : 0;
    }
    // The form of the container changes once in twelve times, and values may come out as they were.
    EXPECT_LT(same, 40);
    EXPECT_GT(different.size(), 150U);
}

TEST(ObjectEdits, SameSeedIsTheSameEdit) {
    const Bytes container = compositionSeeds().front().bytes;
    for (unsigned round = 0; round < 20; ++round) {
        EXPECT_EQ(editedContainer(container, round, addByte),
                  editedContainer(container, round, addByte));
    }
}

TEST(ObjectEdits, ValueIsLeftToTheCallerAtTimes) {
    const Bytes container = compositionSeeds().front().bytes;
    int calls = 0;
    for (unsigned round = 0; round < 100; ++round) {
        static_cast<void>(editedContainer(container, round, [&](Bytes&) { ++calls; }));
    }
    EXPECT_GT(calls, 5);
}

TEST(ObjectEdits, WhatIsNoContainerIsLeftAlone) {
    EXPECT_EQ(editedContainer(bytesOf("no container"), 1, addByte), std::nullopt);
    EXPECT_EQ(crossedContainers(bytesOf("no container"), compositionSeeds().front().bytes, 1),
              std::nullopt);
    EXPECT_EQ(crossedContainers(compositionSeeds().front().bytes, bytesOf("no container"), 1),
              std::nullopt);
}

TEST(CrossedContainers, ObjectsOfTheOtherTakeThePlaceOfOwnOnes) {
    ContainerBuilder own;
    own.set(1, "OMFI:A", bytesOf("own")).set(2, "OMFI:A", bytesOf("own"));
    ContainerBuilder other;
    other.set(2, "OMFI:A", bytesOf("other")).set(3, "OMFI:A", bytesOf("other"));
    std::set<std::vector<ObjectValue>,
             bool (*)(const std::vector<ObjectValue>&, const std::vector<ObjectValue>&)>
        results([](const auto& left, const auto& right) {
            return std::lexicographical_compare(left.begin(), left.end(), right.begin(),
                                                right.end(), lessThan);
        });
    for (unsigned seed = 0; seed < 100; ++seed) {
        const auto crossed = crossedContainers(own.build(), other.build(), seed);
        ASSERT_TRUE(crossed);
        results.insert(valuesOf(*crossed));
    }
    const ObjectValue first{1, "OMFI:A", bytesOf("own")};
    const ObjectValue third{3, "OMFI:A", bytesOf("other")};
    const std::vector ownOnly{first, {2, "OMFI:A", bytesOf("own")}};
    const std::vector ownAndThird{first, {2, "OMFI:A", bytesOf("own")}, third};
    const std::vector replaced{first, {2, "OMFI:A", bytesOf("other")}};
    const std::vector both{first, {2, "OMFI:A", bytesOf("other")}, third};
    EXPECT_THAT(results, ::testing::UnorderedElementsAre(ownOnly, ownAndThird, replaced, both));
}

}  // namespace
}  // namespace trellant::fuzzing
