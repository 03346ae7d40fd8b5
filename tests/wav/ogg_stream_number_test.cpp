// SPDX-License-Identifier: Apache-2.0
#include "ogg_stream_number.h"

#include "conversion_error.h"

#include <trellant/base/file_descriptor.h>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <trellant_testing/byte_writer.h>
#include <trellant_testing/temporary_directory.h>

namespace trellant::testing {
namespace {

class OggStreamNumber : public ::testing::Test {
  protected:
    void set(const Bytes& file, std::uint32_t number) {
        writeFile(path_, file);
        const FileDescriptor opened(::open(path_.c_str(), O_RDWR | O_CLOEXEC));
        wav::setStreamNumber(opened.number(), number);
    }
    std::string refusal(const Bytes& file) {
        try {
            set(file, 1);
        } catch (const wav::ConversionError& error) {
            return error.what();
        }
        return {};
    }
    /// A page with zeros for its number and its checksum, of three segments with 300 bytes.
    static Bytes page() {
        return joined({bytesOf("OggS"), hex("00 02"), Bytes(8), Bytes(4), hex("07000000"), Bytes(4),
                       hex("03 FF 2C 01"), Bytes(300, std::byte{0x5A})});
    }

    TemporaryDirectory folder_;
    std::string path_ = folder_.file("in.ogg");
};

TEST_F(OggStreamNumber, StandsInEveryPage) {
    const Bytes before = page();
    set(joined({before, before}), 0x04030201);
    const Bytes made = readFile(path_);
    ASSERT_EQ(made.size(), 2 * before.size());
    for (const std::size_t start : {std::size_t{0}, before.size()}) {
        const auto at = made.begin() + static_cast<std::ptrdiff_t>(start);
        EXPECT_EQ(Bytes(at + 14, at + 18), hex("01020304"));
        // All but the number and the checksum stays.
        EXPECT_EQ(Bytes(at, at + 14), Bytes(before.begin(), before.begin() + 14));
        EXPECT_EQ(Bytes(at + 26, at + static_cast<std::ptrdiff_t>(before.size())),
                  Bytes(before.begin() + 26, before.end()));
    }
}

TEST_F(OggStreamNumber, GoesWithTheChecksum) {
    // A page of 27 bytes whose only bits are those of its mark and its number. The expected
    // checksum was worked out by long division of the page's bits, highest first, by 0x104C11DB7.
    const Bytes head = joined({bytesOf("OggS"), Bytes(23)});
    set(head, 1);
    const Bytes made = readFile(path_);
    std::uint64_t rest = 0;
    Bytes dividend = made;
    std::fill(dividend.begin() + 22, dividend.begin() + 26, std::byte{0});
    dividend.insert(dividend.end(), 4, std::byte{0});
    for (const std::byte byte : dividend) {
        for (int bit = 7; bit >= 0; --bit) {
            rest = (rest << 1U) | ((std::to_integer<std::uint64_t>(byte) >> bit) & 1U);
            if ((rest >> 32U) != 0) {
                rest ^= 0x1'04C1'1DB7U;
            }
        }
    }
    EXPECT_EQ(u32(made, 22, OMFByteOrder::little), rest);
    EXPECT_NE(rest, 0U);
}

TEST_F(OggStreamNumber, IsNotForOtherFiles) {
    EXPECT_EQ(refusal(Bytes(27)),
              "the preview could not be finished (a page does not begin as one)");
    EXPECT_EQ(refusal(Bytes(26)), "the preview could not be finished (a page ends early)");
    Bytes cut = page();
    cut.pop_back();
    EXPECT_EQ(refusal(cut), "the preview could not be finished (a page ends early)");
    cut.resize(29);
    EXPECT_EQ(refusal(cut), "the preview could not be finished (a page ends early)");
    EXPECT_EQ(refusal({}), "");
}

}  // namespace
}  // namespace trellant::testing
