// SPDX-License-Identifier: Apache-2.0
// Compound files of tests, written to memory and read back.
#pragma once

#include <trellant/compound/compound_file.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <trellant_testing/compound_reader.h>
#include <vector>

namespace trellant::compound {

using Storage = CompoundFile::Storage;
using testing::CompoundReader;
using testing::MemoryImage;
using testing::SparseImage;
using testing::StoredEntry;

constexpr ClassID classOf(unsigned char value) {
    ClassID result{};
    result.fill(std::byte{value});
    return result;
}

inline CompoundFile newFile() {
    return {classOf(0xA1), classOf(0xB2)};
}

/// What a file looks like to a reader, which must find no fault in it.
struct Written {
    MemoryImage image;
    std::optional<CompoundReader> reader;

    explicit Written(const CompoundFile& file) {
        file.write([this](ByteView bytes) { image.append(bytes); });
        reader.emplace(image);
        EXPECT_THAT(reader->problems(), ::testing::IsEmpty());
    }

    [[nodiscard]] std::vector<std::u16string> namesIn(std::uint32_t storage) const {
        std::vector<std::u16string> names;
        for (const std::uint32_t member : reader->entries().at(storage).members) {
            names.push_back(reader->entries()[member].name);
        }
        return names;
    }
};

/// What an action that must fail with a CompoundError says of it.
template <class Action>
CompoundError::Fault faultOf(Action&& action) {
    try {
        action();
    } catch (const CompoundError& error) {
        return error.fault();
    }
    ADD_FAILURE() << "no CompoundError";
    return CompoundError::TooLarge{};
}

}  // namespace trellant::compound
