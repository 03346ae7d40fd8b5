// SPDX-License-Identifier: Apache-2.0
// AAF sessions written to memory and read back. Readers must find no fault in them.
#pragma once

#include "aaf_plan_reader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <trellant_testing/aaf_reader.h>

namespace trellant::sessions {

inline void writeInto(testing::MemoryImage& image, const Session& session) {
    writeAafSession(session, [&](ByteView bytes) { image.append(bytes); });
}

/// What a session is to the reader of sessions.
inline ReadAafSession readBack(const Session& session) {
    testing::MemoryImage image;
    writeInto(image, session);
    ReadAafSession read = readAafSession(image);
    EXPECT_THAT(read.problems, ::testing::IsEmpty());
    return read;
}

/// The objects of a session, as text.
class WrittenObjects {
  public:
    explicit WrittenObjects(const Session& session) : image_(), reader_(written(image_, session)) {
        EXPECT_THAT(reader_.problems(), ::testing::IsEmpty());
    }

    [[nodiscard]] const testing::AafReader& reader() const noexcept { return reader_; }

    /// Where the first mob of this class and name lies.
    [[nodiscard]] std::string pathOf(std::string_view objectClass, std::string_view name) const {
        const std::string head = std::string(objectClass) + "\n";
        for (std::size_t index = 0;; ++index) {
            std::string path = "Header/Content/Mobs/" + std::to_string(index);
            const std::string text = reader_.textOf(path);
            if (text.starts_with("nothing")) {
                ADD_FAILURE() << "no " << objectClass << " " << name;
                return "";
            }
            if (text.starts_with(head) &&
                reader_.valueOf(path, "Name") == '"' + std::string(name) + '"') {
                return path;
            }
        }
    }

  private:
    static const testing::MemoryImage& written(testing::MemoryImage& image,
                                               const Session& session) {
        writeInto(image, session);
        return image;
    }

    testing::MemoryImage image_;
    testing::AafReader reader_;
};

}  // namespace trellant::sessions
