// SPDX-License-Identifier: Apache-2.0
// The whole command: files that cannot be opened, readers that go, files of real workstations.
#include "dump/dump.h"

#include "dumped.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <trellant_testing/byte_writer.h>
#include <trellant_testing/omf_builder.h>
#include <trellant_testing/temporary_directory.h>

namespace trellant::testing {

namespace {

Said dumpedFile(const cli::DumpOptions& options) {
    return saidWithStatus(
        {}, [&](cli::Console& console) { return static_cast<int>(runDump(options, console)); });
}

Bytes song() {
    OmfBuilder omf;
    omf.composition({.name = "Song"});
    return omf.build();
}

}  // namespace

TEST(Dump, SaysWhyAFileDoesNotOpen) {
    const TemporaryDirectory folder;
    const Said missing = dumpedFile({.file = folder.file("none.omf")});
    EXPECT_EQ(missing.errors, "trellant: cannot open \"" + folder.file("none.omf") +
                                  "\": No such file or directory\n");
    EXPECT_EQ(missing.out, "");
    EXPECT_EQ(missing.status, 2);
    const Said directory = dumpedFile({.file = folder.path().string()});
    EXPECT_EQ(directory.errors,
              "trellant: cannot open \"" + folder.path().string() + "\": Is a directory\n");
    EXPECT_EQ(directory.status, 2);
}

TEST(Dump, TellsAReaderThatHasGone) {
    const Said said = dumped(song(), {}, {.out = Listener::gone});
    EXPECT_EQ(said.status, 91);
    EXPECT_EQ(said.errors, "");
}

TEST(Dump, SaysThatStandardOutputFails) {
    const Said said = dumped(song(), {}, {.out = Listener::closed});
    EXPECT_EQ(said.errors, "trellant: cannot write \"standard output\": Bad file descriptor\n");
    EXPECT_EQ(said.status, 2);
}

TEST(Dump, WritesLongListsAsTheyCome) {
    ContainerBuilder container;
    for (ObjectID object = 1; object <= 50'000; ++object) {
        container.addItem({.object = object, .segment = {BentoImmediate{}, false}});
    }
    const Said said = dumped(container.build(), {.toc = true, .all = true});
    EXPECT_EQ(std::count(said.out.begin(), said.out.end(), '\n'), 50'001);
    EXPECT_EQ(said.status, 0);
}

TEST(Dump, EndsWithEveryRealFile) {
    const char* folder = std::getenv("TRELLANT_REAL_FILES");
    if (folder == nullptr) {
        GTEST_SKIP() << "TRELLANT_REAL_FILES is not set";
    }
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        if (entry.path().extension() != ".omf") {
            continue;
        }
        const std::string path = entry.path().string();
        SCOPED_TRACE(path);
        for (const cli::DumpOptions& options :
             {cli::DumpOptions{.file = path, .all = true},
              cli::DumpOptions{.file = path, .toc = true, .all = true},
              cli::DumpOptions{.file = path, .object = 1}}) {
            const Said said = dumpedFile(options);
            EXPECT_EQ(said.status, 0) << said.errors;
            EXPECT_FALSE(said.out.empty());
        }
    }
}

}  // namespace trellant::testing
