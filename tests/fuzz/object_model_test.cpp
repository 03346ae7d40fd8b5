// SPDX-License-Identifier: Apache-2.0
#include "object_model.h"

#include <gmock/gmock.h>

#include <trellant_testing/byte_writer.h>

namespace trellant::fuzzing {
namespace {

using testing::bytesOf;
using testing::ContainerBuilder;
using ::testing::ElementsAre;
using testing::TocForm;
using ::testing::UnorderedElementsAre;

TEST(ObjectModel, IsTheNamedValuesOfAContainer) {
    ContainerBuilder builder;
    builder.set(3, "OMFI:A", bytesOf("ab"));
    builder.setPieces(3, "OMFI:B", {bytesOf("hello "), bytesOf("world")});
    builder.set(7, "OMFI:A", {});
    const auto model = objectModelOf(builder.build());
    ASSERT_TRUE(model);
    EXPECT_THAT(model->values,
                UnorderedElementsAre(ObjectValue{3, "OMFI:A", bytesOf("ab")},
                                     ObjectValue{3, "OMFI:B", bytesOf("hello world")},
                                     ObjectValue{7, "OMFI:A", {}}));
}

TEST(ObjectModel, KeepsTheFormOfTheContainer) {
    ContainerBuilder builder(
        {.byteOrder = OMFByteOrder::big, .form = TocForm::v1, .extendedFooter = true});
    builder.set(3, "OMFI:A", bytesOf("ab"));
    const Bytes bytes = builder.build();
    const auto model = objectModelOf(bytes);
    ASSERT_TRUE(model);
    EXPECT_EQ(model->options.byteOrder, OMFByteOrder::big);
    EXPECT_EQ(model->options.form, TocForm::v1);
    EXPECT_TRUE(model->options.extendedFooter);
    EXPECT_EQ(containerOf(*model), bytes);
}

TEST(ObjectModel, NumbersAreInTheOrderThatTheHeaderNames) {
    ContainerBuilder builder;
    builder.set(3, "OMFI:A", bytesOf("ab"));
    EXPECT_EQ(objectModelOf(builder.build())->valueOrder, OMFByteOrder::little);
    builder.set(1, "OMFI:HEAD:ByteOrder", bytesOf("MM"));
    EXPECT_EQ(objectModelOf(builder.build())->valueOrder, OMFByteOrder::big);
}

TEST(ObjectModel, OfNoContainerIsAbsent) {
    EXPECT_FALSE(objectModelOf(bytesOf("no container at all, however long it may be")));
    EXPECT_FALSE(objectModelOf({}));
    EXPECT_FALSE(objectModelOf(ContainerBuilder().build()));
}

}  // namespace
}  // namespace trellant::fuzzing
