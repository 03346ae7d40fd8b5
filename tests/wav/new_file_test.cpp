// SPDX-License-Identifier: Apache-2.0
#include "new_file.h"

#include "conversion_error.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <trellant_testing/byte_writer.h>
#include <trellant_testing/temporary_directory.h>

namespace trellant::testing {
namespace {

namespace fs = std::filesystem;

TEST(NewFile, GoesAgainUnlessItIsKept) {
    const TemporaryDirectory folder;
    const std::string path = folder.file("out");
    {
        wav::NewFile file(path, "preview");
        file.write(bytesOf("half"));
        EXPECT_EQ(textOf(readFile(path)), "half");
    }
    EXPECT_FALSE(fs::exists(path));
    {
        wav::NewFile file(path, "preview");
        file.write(bytesOf("whole"));
        file.keep();
    }
    EXPECT_EQ(textOf(readFile(path)), "whole");
}

TEST(NewFile, ReplacesNothingAndFollowsNoLink) {
    const TemporaryDirectory folder;
    const std::string path = folder.file("out");
    fs::create_symlink(folder.file("elsewhere"), path);
    try {
        const wav::NewFile file(path, "preview");
        FAIL() << "no error";
    } catch (const wav::ConversionError& error) {
        EXPECT_STREQ(error.what(), "no preview could be created (File exists)");
    }
    EXPECT_TRUE(fs::is_symlink(path));
    EXPECT_FALSE(fs::exists(folder.file("elsewhere")));
}

}  // namespace
}  // namespace trellant::testing
