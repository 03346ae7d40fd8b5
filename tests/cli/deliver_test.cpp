// SPDX-License-Identifier: Apache-2.0
#include "terminal/deliver.h"

#include "said.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <trellant_testing/temporary_directory.h>

namespace trellant::testing {
namespace {

using cli::Console;
using cli::deliver;
using cli::Destination;
using cli::mayDeliver;

std::string contentOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::stringstream content;
    content << file.rdbuf();
    return content.str();
}

std::size_t filesIn(const std::filesystem::path& folder) {
    return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(folder), {}));
}

class Deliver : public ::testing::Test {
  protected:
    TemporaryDirectory folder_;
    std::string path_ = folder_.file("out.csv");
};

TEST_F(Deliver, AFileIsWrittenWholeWithNothingBesideIt) {
    Console console;
    EXPECT_TRUE(deliver({.path = path_}, "a,b\r\n", console));
    EXPECT_EQ(contentOf(path_), "a,b\r\n");
    EXPECT_EQ(filesIn(folder_.path()), 1U);
}

TEST_F(Deliver, AnExistingFileStaysWithoutForce) {
    std::ofstream(path_) << "mine";
    const Said said = saidWithStatus({}, [this](Console& console) {
        return (mayDeliver({.path = path_}, {}, console) ? 1 : 0) +
               (deliver({.path = path_}, "new", console) ? 2 : 0);
    });
    EXPECT_EQ(said.status, 0);
    const std::string line =
        "trellant: " + path_ + " is there already. Name another file, or replace it with --force\n";
    EXPECT_EQ(said.errors, line + line);
    EXPECT_EQ(contentOf(path_), "mine");
    EXPECT_EQ(filesIn(folder_.path()), 1U);
}

TEST_F(Deliver, ForceReplacesAFile) {
    std::ofstream(path_) << "mine";
    Console console;
    const Destination destination{.path = path_, .force = true};
    EXPECT_TRUE(mayDeliver(destination, {}, console));
    EXPECT_TRUE(deliver(destination, "new", console));
    EXPECT_EQ(contentOf(path_), "new");
    EXPECT_EQ(filesIn(folder_.path()), 1U);
}

TEST_F(Deliver, TheFileThatIsReadIsNeverReplaced) {
    std::ofstream(path_) << "session";
    const std::string link = folder_.file("link.omf");
    std::filesystem::create_symlink(path_, link);
    const Said said = saidWithStatus({}, [&](Console& console) {
        return mayDeliver({.path = path_, .force = true}, {"other", link}, console) ? 1 : 0;
    });
    EXPECT_EQ(said.status, 0);
    EXPECT_EQ(said.errors,
              "trellant: " + path_ + " is a file that is read. Name another file for the output\n");
}

TEST_F(Deliver, AnEmptyNameIsTold) {
    const Said said = saidWithStatus({}, [&](Console& console) {
        return mayDeliver({.path = "", .force = true}, {}, console) ? 1 : 0;
    });
    EXPECT_EQ(said.status, 0);
    EXPECT_EQ(said.errors, "trellant: -o needs the name of a file, or - for standard output\n");
}

TEST_F(Deliver, AFolderThatIsMissingIsTold) {
    const std::string path = folder_.file("missing/out.csv");
    const Said said = saidWithStatus(
        {}, [&](Console& console) { return deliver({.path = path}, "x", console) ? 1 : 0; });
    EXPECT_EQ(said.status, 0);
    EXPECT_EQ(said.errors, "trellant: cannot write " + path + ": No such file or directory\n");
}

TEST_F(Deliver, ADeviceIsWrittenToAndNotReplaced) {
    Console console;
    EXPECT_TRUE(mayDeliver({.path = "/dev/null"}, {}, console));
    EXPECT_TRUE(deliver({.path = "/dev/null"}, "x", console));
    EXPECT_TRUE(std::filesystem::is_character_file("/dev/null"));
}

TEST_F(Deliver, WhatIsNotFinishedLeavesTheOldFile) {
    std::ofstream(path_) << "mine";
    Console console;
    {
        cli::Delivery delivery({.path = path_, .force = true}, console);
        delivery.write("half");
        delivery.flush();
        EXPECT_EQ(contentOf(path_), "mine");
    }
    EXPECT_EQ(contentOf(path_), "mine");
    EXPECT_EQ(filesIn(folder_.path()), 1U);
}

TEST_F(Deliver, PiecesComeOutInTheirOrder) {
    Console console;
    cli::Delivery delivery({.path = path_}, console);
    std::string expected;
    for (int i = 0; i < 10'000; ++i) {
        const std::string piece = std::to_string(i) + " and further\n";
        delivery.write(piece);
        expected += piece;
    }
    EXPECT_TRUE(delivery.finish());
    EXPECT_EQ(contentOf(path_), expected);
}

TEST_F(Deliver, AFileThatTurnsOutToBeReadStays) {
    std::ofstream(path_) << "audio";
    const Said said = saidWithStatus({}, [this](Console& console) {
        cli::Delivery delivery({.path = path_, .force = true}, console);
        delivery.write("table");
        delivery.protect(path_);
        return delivery.finish() ? 0 : 7;
    });
    EXPECT_EQ(said.status, 7);
    EXPECT_EQ(said.errors,
              "trellant: " + path_ + " is a file that is read. Name another file for the output\n");
    EXPECT_EQ(contentOf(path_), "audio");
    EXPECT_EQ(filesIn(folder_.path()), 1U);
}

TEST_F(Deliver, StandardOutputGetsEachPieceThatIsFlushed) {
    const Said said = saidWithStatus({}, [](Console& console) {
        cli::Delivery delivery({}, console);
        delivery.write("a");
        delivery.flush();
        console.error("between");
        delivery.write("b");
        return delivery.finish() ? 0 : 1;
    });
    EXPECT_EQ(said.status, 0);
    EXPECT_EQ(said.out, "ab");
}

TEST_F(Deliver, ADeviceIsWrittenToAndStays) {
    Console console;
    EXPECT_TRUE(deliver({.path = "/dev/null"}, "x", console));
    EXPECT_TRUE(std::filesystem::is_character_file("/dev/null"));
}

}  // namespace
}  // namespace trellant::testing
