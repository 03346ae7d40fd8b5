// SPDX-License-Identifier: Apache-2.0
// The compositions that measurements are made on, small ones: the worker reads each as what it was
// meant to be, in every written form.
#include <trellant/io/bento_container.h>
#include <trellant/protocol/messages.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <spawn.h>
#include <sys/wait.h>
#include <trellant_testing/requests.h>
#include <trellant_testing/temporary_directory.h>
#include <trellant_testing/worker_process.h>
#include <unistd.h>

namespace trellant::testing {

namespace {

struct GeneratedShape {
    std::string name;
    std::vector<std::string> options{};
    std::size_t events = 50;
    std::size_t tracks = 1;
    /// One source for ten clips, and one more.
    std::size_t essences = 6;
    std::size_t losses = 0;
};

struct WrittenForm {
    std::string table;
    std::string byteOrder;
};

/// The exit status of the generator, -1 when it did not come to an end of its own.
int generate(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), TRELLANT_GENERATOR);
    std::vector<char*> pointers;
    for (std::string& argument : arguments) {
        pointers.push_back(argument.data());
    }
    pointers.push_back(nullptr);
    pid_t child = 0;
    if (::posix_spawn(&child, TRELLANT_GENERATOR, nullptr, nullptr, pointers.data(), environ) !=
        0) {
        return -1;
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

std::string requestText(const TemporaryDirectory& folder) {
    return requestFor("inspect", folder.file("some.omf"), folder.file("work"), folder.file("tree"))
        .json();
}

AAFTimeline timelineOf(const TemporaryDirectory& folder) {
    const auto run = runWorker({.input = requestText(folder)});
    EXPECT_EQ(run.status, 0) << run.errors;
    return run.status == 0 ? decodeResult(run.output).timeline : AAFTimeline();
}

using GeneratedFiles = ::testing::TestWithParam<std::tuple<GeneratedShape, WrittenForm>>;

TEST_P(GeneratedFiles, AreReadAsTheyWereMeant) {
    const auto& [shape, form] = GetParam();
    const TemporaryDirectory folder;
    std::vector<std::string> arguments{
        shape.name, folder.file("some.omf"), "--count",     "50", "--table",
        form.table, "--byte-order",          form.byteOrder};
    arguments.insert(arguments.end(), shape.options.begin(), shape.options.end());
    ASSERT_EQ(generate(arguments), 0);
    const AAFTimeline timeline = timelineOf(folder);
    EXPECT_EQ(timeline.events.size(), shape.events);
    EXPECT_EQ(timeline.tracks.size(), shape.tracks);
    EXPECT_EQ(timeline.essences.size(), shape.essences);
    EXPECT_EQ(timeline.unsupportedFeatures.size(), shape.losses);
}

/// A chain may have 32 clips: the composition's and those of 31 mobs. Of 48 levels 44 are scopes,
/// the others the sequence, the selector two below it and the clip.
const std::vector<GeneratedShape> everyShape{
    {"plain"},
    {"real"},
    {"effects"},
    {"scopes"},
    {"chains", {"--levels", "31"}},
    {.name = "external", .essences = 50},
    {.name = "reels", .tracks = 50, .essences = 50},
    {.name = "embedded", .essences = 50},
    {"sequence"},
    {.name = "mobs", .events = 10, .essences = 10},
    {.name = "pieces", .events = 1, .essences = 1},
    {.name = "names", .essences = 50},
    {"inputs"},
    {"levels", {"--levels", "48"}},
    {.name = "tracks", .tracks = 50},
    {.name = "losses", .losses = 50},
    {.name = "foreign", .events = 1, .essences = 1},
    {.name = "together", .losses = 50},
};
const std::vector<WrittenForm> everyForm{
    {"compressed", "little"}, {"compressed", "big"}, {"v1", "little"}, {"v1", "big"}};

std::string nameOf(const ::testing::TestParamInfo<GeneratedFiles::ParamType>& info) {
    const auto& shape = std::get<0>(info.param);
    const auto& form = std::get<1>(info.param);
    return shape.name + "_" + form.table + "_" + form.byteOrder;
}

INSTANTIATE_TEST_SUITE_P(Shapes, GeneratedFiles,
                         ::testing::Combine(::testing::ValuesIn(everyShape),
                                            ::testing::ValuesIn(everyForm)),
                         nameOf);

TEST(GeneratedMedia, LieAtTheOffsetAskedFor) {
    const TemporaryDirectory folder;
    ASSERT_EQ(generate({"embedded", folder.file("some.omf"), "--count", "2", "--media-bytes",
                        "70000", "--alignment", "4096", "--remainder", "1"}),
              0);
    const BentoContainer container(folder.file("some.omf"));
    std::size_t values = 0;
    for (const std::uint32_t object : container.objectIDs()) {
        for (const auto& segment : container.valueSegments(object, "OMFI:WAVE:AudioData")) {
            const auto& range = std::get<BentoRange>(segment.storage);
            EXPECT_EQ(range.offset % 4096, 1U);
            EXPECT_EQ(range.length, 70'000U);
            ++values;
        }
    }
    EXPECT_EQ(values, 2U);
}

TEST(GeneratedMedia, ExternalOnesAreFoundInTheTree) {
    const TemporaryDirectory folder;
    ASSERT_EQ(generate({"external", folder.file("some.omf"), "--count", "30", "--tree",
                        folder.file("tree"), "--tree-files", "250"}),
              0);
    std::size_t files = 0;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder.file("tree"))) {
        files += entry.is_regular_file() ? 1U : 0U;
    }
    EXPECT_EQ(files, 250U);
    const AAFTimeline timeline = timelineOf(folder);
    EXPECT_EQ(timeline.essences.size(), 30U);
    for (const AAFSourceEssence& essence : timeline.essences) {
        EXPECT_TRUE(essence.fileURL.has_value()) << essence.id;
    }
}

TEST(GeneratedMedia, OneNameMakesAsManyFiles) {
    const TemporaryDirectory folder;
    ASSERT_EQ(generate({"names", folder.file("some.omf"), "--count", "3"}), 0);
    const auto run = runWorker(
        {.input =
             requestFor("extractAndInspect", folder.file("some.omf"), folder.file("work")).json()});
    EXPECT_EQ(run.status, 0) << run.errors;
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder.file("work"))) {
        names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    EXPECT_EQ(names, (std::vector<std::string>{"Take.wav", "Take_2.wav", "Take_3.wav"}));
}

}  // namespace

}  // namespace trellant::testing
