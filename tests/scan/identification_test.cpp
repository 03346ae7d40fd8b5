// SPDX-License-Identifier: Apache-2.0
#include <trellant/scan/identification.h>

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <trellant_testing/byte_writer.h>
#include <trellant_testing/omf_builder.h>
#include <trellant_testing/temporary_directory.h>

namespace trellant::scan {
namespace {

using testing::bytesOf;
using testing::OmfBuilder;
using testing::TemporaryDirectory;
using testing::writeFile;
using namespace std::string_view_literals;

class Identified : public ::testing::Test {
  protected:
    [[nodiscard]] std::optional<Identification> identify(ByteView bytes) const {
        return identified(RandomAccessFile(writeFile(folder_.file("any.txt"), bytes)));
    }

    TemporaryDirectory folder_;
};

TEST_F(Identified, AContainerIsToldByItsEndWhateverItIsCalled) {
    const auto found = identify(OmfBuilder().build());
    ASSERT_TRUE(found);
    EXPECT_TRUE(found->hasFooter);
    EXPECT_EQ(found->pronom, "fmt/1855");
}

TEST_F(Identified, TheModelIsToldByItsNamesAtTheEndToo) {
    Bytes file(2 * searchedEnd);
    const Bytes container = OmfBuilder().build();
    file.insert(file.end(), container.begin(), container.end());
    const auto found = identify(file);
    ASSERT_TRUE(found);
    EXPECT_EQ(found->pronom, "fmt/1855");
}

TEST_F(Identified, TheOlderModelHasAnotherName) {
    Bytes file = OmfBuilder().build();
    const Bytes footer(file.end() - 24, file.end());
    Bytes older = bytesOf("\0OMFI:ObjID\0"sv);
    older.insert(older.end(), footer.begin(), footer.end());
    const auto found = identify(older);
    ASSERT_TRUE(found);
    EXPECT_EQ(found->pronom, "fmt/1854");
}

TEST_F(Identified, AFileThatLostItsEndIsOneByItsFront) {
    const auto found = identify(bytesOf("\0\0omfi:data:Sound\0OMFI:OOBJ:ObjClass"sv));
    ASSERT_TRUE(found);
    EXPECT_FALSE(found->hasFooter);
    EXPECT_EQ(found->pronom, "fmt/1855");
}

TEST_F(Identified, TextsAndProgramsThatNameTheModelAreNone) {
    EXPECT_FALSE(identify(bytesOf("OMFI:OOBJ:ObjClass is a property.\n")));
    EXPECT_FALSE(
        identify(bytesOf("\x7F"
                         "ELF\0\0OMFI:OOBJ:ObjClass"sv)));
}

TEST_F(Identified, AllElseIsNone) {
    EXPECT_FALSE(identify({}));
    EXPECT_FALSE(identify(Bytes(23)));
    EXPECT_FALSE(identify(Bytes(100'000)));
    // The footer's signature, but nothing behind it.
    EXPECT_FALSE(identify(testing::hex("A4 43 4D A5 48 64 72 D7")));
}

}  // namespace
}  // namespace trellant::scan
