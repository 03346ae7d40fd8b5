// SPDX-License-Identifier: Apache-2.0
// Damaged containers: whatever is wrong with the bytes, opening succeeds or throws one of the two
// error types, and so does the reading of every value afterwards.
#include <trellant/io/bento_container.h>
#include <trellant/io/errors.h>

#include <gtest/gtest.h>

#include <array>
#include <set>
#include <trellant_testing/byte_writer.h>
#include <trellant_testing/container_builder.h>
#include <trellant_testing/temporary_directory.h>
#include <utility>

namespace trellant {
namespace {

using testing::ContainerBuilder;
using testing::FileLayout;
using testing::patternBytes;
using testing::TemporaryDirectory;
using testing::TocForm;
using testing::writeFile;

Bytes validFile(const ContainerBuilder::Options& options) {
    ContainerBuilder builder(options);
    builder.set(1, "OMFI:A", patternBytes(3));
    builder.set(1, "OMFI:B", patternBytes(70), "omfi:Kind");
    builder.setPieces(2, "OMFI:B", {patternBytes(5), patternBytes(6)});
    builder.setReferences(2, "OMFI:C", {1, 2, 3}, options.byteOrder);
    builder.setReference(3, "OMFI:D", 2, options.byteOrder);
    return builder.build();
}

/// The fast path must agree with the plain one.
void readSmall(const BentoContainer& container, std::uint32_t object, std::uint32_t property) {
    std::optional<Bytes> plain;
    try {
        plain = container.valueData(object, property, 64);
    } catch (const OMFIOError&) {
        plain.reset();
    }
    Bytes buffer(64);
    const auto small = container.smallValue(object, property, buffer);
    ASSERT_EQ(small.has_value(), plain.has_value());
    if (plain) {
        ASSERT_EQ(Bytes(small->begin(), small->end()), *plain);
    }
}

template <typename Read>
void readAllowingFaults(Read read) {
    try {
        static_cast<void>(read());
    } catch (const OMFIOError&) {
        SUCCEED();
    }
}

void readEverything(const BentoContainer& container) {
    std::set<std::pair<std::uint32_t, std::uint32_t>> keys;
    const std::vector<BentoTOCItem> items = container.tableItems();
    for (const BentoTOCItem& item : items) {
        keys.emplace(item.object, item.property);
    }
    for (const auto& key : keys) {
        const std::uint32_t object = key.first;
        const std::uint32_t property = key.second;
        ASSERT_TRUE(container.objectIndex(object).has_value());
        ASSERT_FALSE(container.items(object, property).empty());
        readSmall(container, object, property);
        readAllowingFaults([&] { return container.valueData(object, property); });
        const auto name = container.propertyName(property);
        if (name) {
            readAllowingFaults([&] { return container.valuePrefix(object, *name, 9); });
            ASSERT_LE(container.valueSegments(object, *name).size(), items.size());
        }
    }
}

class BentoDamage : public ::testing::TestWithParam<ContainerBuilder::Options> {
  protected:
    /// Whether the bytes still make a container.
    bool survives(const Bytes& bytes) {
        const std::string path = writeFile(folder_.file("container"), bytes);
        try {
            const BentoContainer container(path);
            readEverything(container);
            return true;
        } catch (const OMFIOError&) {
            return false;
        }
    }

    TemporaryDirectory folder_;
    Bytes valid_ = validFile(GetParam());
};

TEST_P(BentoDamage, TheUndamagedFileOpens) {
    EXPECT_TRUE(survives(valid_));
}

TEST_P(BentoDamage, NoTruncatedFileOpens) {
    for (std::size_t length = 0; length < valid_.size(); ++length) {
        ASSERT_FALSE(
            survives(Bytes(valid_.begin(), valid_.begin() + static_cast<std::ptrdiff_t>(length))))
            << length;
    }
}

TEST_P(BentoDamage, EveryChangedByteIsReadOrReported) {
    for (std::size_t index = 0; index < valid_.size(); ++index) {
        for (const unsigned mask : {0xFFU, 0x01U, 0x80U}) {
            Bytes damaged = valid_;
            damaged[index] ^= static_cast<std::byte>(mask);
            static_cast<void>(survives(damaged));
            ASSERT_FALSE(HasFatalFailure()) << index << " " << mask;
        }
    }
}

TEST_P(BentoDamage, EveryBitOfTheFooterIsReadOrReported) {
    const std::size_t footers = GetParam().extendedFooter ? 48 : 24;
    for (std::size_t bit = 0; bit < footers * 8; ++bit) {
        Bytes damaged = valid_;
        damaged[damaged.size() - footers + bit / 8] ^= static_cast<std::byte>(1U << bit % 8);
        static_cast<void>(survives(damaged));
        ASSERT_FALSE(HasFatalFailure()) << bit;
    }
}

std::string formName(const ::testing::TestParamInfo<ContainerBuilder::Options>& instance) {
    constexpr std::array names{"Compressed", "CompressedReal", "V1", "V1Extended"};
    return names.at(instance.index);
}

INSTANTIATE_TEST_SUITE_P(EveryForm, BentoDamage,
                         ::testing::Values(ContainerBuilder::Options{},
                                           ContainerBuilder::Options{.byteOrder = OMFByteOrder::big,
                                                                     .layout = FileLayout::real},
                                           ContainerBuilder::Options{.byteOrder = OMFByteOrder::big,
                                                                     .form = TocForm::v1},
                                           ContainerBuilder::Options{.form = TocForm::v1,
                                                                     .extendedFooter = true}),
                         formName);

}  // namespace
}  // namespace trellant
