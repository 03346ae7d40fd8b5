// SPDX-License-Identifier: Apache-2.0
// A document is decoded in a confined child: what it answers, and that it says the same as one that
// has given up nothing.
#include "commands.h"
#include "confined_child.h"
#include "look/timeline_check.h"
#include "process/packed_texts.h"
#include "said.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <fstream>
#include <limits>
#include <string>
#include <sys/stat.h>
#include <thread>
#include <trellant_testing/byte_writer.h>
#include <trellant_testing/temporary_directory.h>
#include <utility>
#include <vector>

namespace trellant::testing {
namespace {

using cli::packedCheck;
using cli::packedTexts;
using cli::TimelineCheck;
using cli::unpackedCheck;
using cli::unpackedTexts;

constexpr const char* variable = "TRELLANT_SANDBOX";

Said validatedUnder(const std::string& wish, const cli::ValidateOptions& options) {
    return saidWithStatus({.environment = {{variable, wish}}}, [&](cli::Console& console) {
        return static_cast<int>(runValidate(options, console));
    });
}

/// An example whose four audio files are one beside it, one elsewhere, and two nowhere.
std::string documentNaming(const std::string& elsewhere) {
    std::string text = textOf(readFile(std::string(TRELLANT_EXAMPLES) + "/session.accepted.json"));
    for (const auto& [from, to] :
         {std::pair<std::string, std::string>{"file:\\/\\/WORK\\/Voice_Anna.wav", "beside.wav"},
          {"file:\\/\\/WORK\\/Voice_Ben.wav", "file://" + elsewhere}}) {
        const std::size_t at = text.find(from);
        EXPECT_NE(at, std::string::npos);
        text.replace(std::min(at, text.size()), from.size(), to);
    }
    return text;
}

}  // namespace

TEST(PackedTexts, ComeBackAsTheyWere) {
    const std::vector<std::string> texts{"one", "", std::string("\0\n:", 3), "two"};
    EXPECT_EQ(unpackedTexts(packedTexts(texts)), texts);
    EXPECT_EQ(packedTexts({}), "");
    EXPECT_EQ(unpackedTexts(""), std::vector<std::string>{});
}

TEST(PackedTexts, AreRefusedWhereALengthIsCutOrTooLong) {
    const std::string packed = packedTexts({"one", "two"});
    for (std::size_t size = 1; size < packed.size(); ++size) {
        const auto whole = size == sizeof(std::uint64_t) + 3;
        EXPECT_EQ(unpackedTexts(packed.substr(0, size)).has_value(), whole) << size;
    }
    EXPECT_EQ(unpackedTexts(std::string(8, '\xFF') + "one"), std::nullopt);
}

TEST(TimelineCheckAnswer, ComesBackAsItWas) {
    const TimelineCheck invalid{.failure = TimelineCheck::Failure{"overlap", "event[3]"},
                                .place = "track A",
                                .tracks = 2,
                                .clips = std::numeric_limits<std::size_t>::max(),
                                .audio = {{"/a/b.wav", true}, {"", true}, {"http://c", false}}};
    EXPECT_EQ(unpackedCheck(packedCheck(invalid)), invalid);
    const TimelineCheck valid{.valid = true, .tracks = 1, .clips = 1};
    EXPECT_EQ(unpackedCheck(packedCheck(valid)), valid);
    const TimelineCheck fault{.fault = "missing key"};
    EXPECT_EQ(unpackedCheck(packedCheck(fault)), fault);
}

TEST(TimelineCheckAnswer, OfAnotherFormIsNone) {
    EXPECT_EQ(unpackedCheck(""), std::nullopt);
    EXPECT_EQ(unpackedCheck("yes"), std::nullopt);
    EXPECT_EQ(unpackedCheck(packedTexts({"yes", "", "", "", "", "", "1"})), std::nullopt);
    EXPECT_EQ(unpackedCheck(packedTexts({"yes", "", "", "", "", "", "1", "two"})), std::nullopt);
    EXPECT_EQ(unpackedCheck(packedTexts({"yes", "", "", "", "", "", "", "2"})), std::nullopt);
}

TEST(ValidateConfined, SaysThatTheWishIsNoneBeforeItOpensTheFile) {
    const Said said = validatedUnder("yes", {.files = {"/none/timeline.json"}});
    EXPECT_EQ(said.out, "");
    EXPECT_EQ(said.errors, "trellant: TRELLANT_SANDBOX is neither \"require\" nor \"off\"\n");
    EXPECT_EQ(said.status, 2);
}

TEST(ValidateConfined, FindsAudioThatItCouldNotOpen) {
    const TemporaryDirectory folder;
    const TemporaryDirectory other;
    const std::string elsewhere = other.file("elsewhere.wav");
    std::ofstream(elsewhere) << "audio";
    const std::string file = folder.file("timeline.json");
    std::ofstream(file) << documentNaming(elsewhere);
    const Said said = validatedUnder("", {.files = {file}});
    EXPECT_EQ(said.out, file + ": valid, 5 tracks, 11 clips, 4 audio files, 3 of them not there\n");
    const std::string line = "trellant: " + file + ": not there: ";
    EXPECT_EQ(said.errors, line + folder.file("beside.wav") + "\n" + line +
                               "file://WORK/Theme.aifc\n" + line +
                               "file://WORK/Rain_%20garden.wav\n");
    EXPECT_EQ(said.status, 0);
}

TEST(ValidateConfined, ReadsPipesToTheirEnd) {
    if (landlockGeneration() == 0) {
        GTEST_SKIP() << "this kernel has no Landlock";
    }
    const TemporaryDirectory folder;
    const std::string file = folder.file("pipe");
    ASSERT_EQ(::mkfifo(file.c_str(), 0600), 0);
    std::thread writer([&] { std::ofstream(file) << documentNaming("/none/elsewhere.wav"); });
    const Said said = validatedUnder("require", {.files = {file}});
    writer.join();
    EXPECT_EQ(said.out, file + ": valid, 5 tracks, 11 clips, 4 audio files, 4 of them not there\n");
    EXPECT_EQ(said.status, 0);
}

TEST(ValidateConfined, SaysTheSameAsWithoutConfinement) {
    if (landlockGeneration() == 0) {
        GTEST_SKIP() << "this kernel has no Landlock";
    }
    const std::string examples = TRELLANT_EXAMPLES;
    const std::vector<std::string> files{examples + "/session.accepted.json",
                                         examples + "/README.md", "/none/timeline.json", examples};
    for (const bool json : {false, true}) {
        const Said confined = validatedUnder("require", {.files = files, .json = json});
        const Said free = validatedUnder("off", {.files = files, .json = json});
        EXPECT_EQ(confined.out, free.out);
        EXPECT_EQ(confined.errors, free.errors);
        EXPECT_EQ(confined.status, 2);
        EXPECT_EQ(free.status, 2);
    }
}

}  // namespace trellant::testing
