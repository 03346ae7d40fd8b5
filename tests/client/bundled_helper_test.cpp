// SPDX-License-Identifier: Apache-2.0
// Where a worker is looked for: from hosts that stand in folders as an installation makes them.
#include "host_program.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <trellant_testing/temporary_directory.h>

namespace trellant::testing {

namespace {

class BundledHelper : public ::testing::Test {
  protected:
    /// A copy of the host below the prefix.
    void hostIn(const std::string& folder) {
        std::filesystem::create_directories(path(folder));
        host_ = path(folder) + "/host";
        std::filesystem::copy_file(TRELLANT_LOOKING_HOST, host_);
    }
    void workerAt(const std::string& place) const {
        std::filesystem::create_directories(std::filesystem::path(path(place)).parent_path());
        writeFile(path(place), {});
    }
    void folderAt(const std::string& place) const {
        std::filesystem::create_directories(path(place));
    }
    /// Where the host finds the worker, seen from the prefix; "nothing" when it does not.
    [[nodiscard]] std::string found(const std::string& name = "trellant-omf") const {
        const std::string output = outputOfProgram({host_, name});
        if (!output.ends_with('\n') || output == "nothing\n") {
            return output.substr(0, output.find('\n'));
        }
        const std::filesystem::path place = output.substr(0, output.size() - 1);
        return std::filesystem::canonical(place)
            .lexically_relative(std::filesystem::canonical(directory_.path()))
            .string();
    }
    /// How a call of the host ends that has no worker: the worker's name, and where it was looked
    /// for, seen from the prefix.
    [[nodiscard]] std::string missing(const std::string& name, const std::string& file) const {
        std::string output = outputOfProgram({host_, name, file});
        const std::string prefix = std::filesystem::canonical(directory_.path()).string() + "/";
        for (std::size_t at = output.find(prefix); at != std::string::npos;
             at = output.find(prefix)) {
            output.erase(at, prefix.size());
        }
        return output;
    }
    [[nodiscard]] std::string path(const std::string& place) const {
        return directory_.file(place);
    }

  private:
    TemporaryDirectory directory_;
    std::string host_;
};

TEST_F(BundledHelper, NothingIsFoundWhereNothingIs) {
    hostIn("bin");
    EXPECT_EQ(found(), "nothing");
}

TEST_F(BundledHelper, FolderBesideTheHostComesFirst) {
    hostIn("bin");
    workerAt("bin/AAFTools/trellant-omf");
    workerAt("libexec/trellant/AAFTools/trellant-omf");
    workerAt("bin/trellant-omf");
    EXPECT_EQ(found(), "bin/AAFTools/trellant-omf");
}

TEST_F(BundledHelper, LibexecComesBeforeBin) {
    hostIn("bin");
    workerAt("libexec/trellant/AAFTools/trellant-omf");
    workerAt("bin/trellant-omf");
    EXPECT_EQ(found(), "libexec/trellant/AAFTools/trellant-omf");
}

TEST_F(BundledHelper, BinIsTheLastPlace) {
    hostIn("bin");
    workerAt("bin/trellant-omf");
    EXPECT_EQ(found(), "bin/trellant-omf");
}

TEST_F(BundledHelper, BinIsFoundFromAFolderBesideIt) {
    hostIn("tools");
    workerAt("bin/trellant-omf");
    EXPECT_EQ(found(), "bin/trellant-omf");
}

TEST_F(BundledHelper, WorkerBesideTheHostOutsideOfBinIsNotFound) {
    hostIn("tools");
    workerAt("tools/trellant-omf");
    EXPECT_EQ(found(), "nothing");
}

TEST_F(BundledHelper, FolderOfThatNameIsSkipped) {
    hostIn("bin");
    folderAt("bin/AAFTools/trellant-omf");
    workerAt("libexec/trellant/AAFTools/trellant-omf");
    EXPECT_EQ(found(), "libexec/trellant/AAFTools/trellant-omf");
}

TEST_F(BundledHelper, FoldersEverywhereAreNoWorker) {
    hostIn("bin");
    folderAt("bin/AAFTools/trellant-omf");
    folderAt("libexec/trellant/AAFTools/trellant-omf");
    folderAt("bin/trellant-omf");
    EXPECT_EQ(found(), "nothing");
}

TEST_F(BundledHelper, EachNameIsLookedForByItself) {
    hostIn("bin");
    workerAt("bin/AAFTools/trellant-aaf");
    workerAt("bin/trellant-omf");
    EXPECT_EQ(found("trellant-aaf"), "bin/AAFTools/trellant-aaf");
    EXPECT_EQ(found("trellant-omf"), "bin/trellant-omf");
    EXPECT_EQ(found("trellant"), "nothing");
}

TEST_F(BundledHelper, EmptyNameFindsNothing) {
    hostIn("bin");
    folderAt("bin/AAFTools");
    EXPECT_EQ(found(""), "nothing");
}

TEST_F(BundledHelper, NameThatLeadsElsewhereFindsNothing) {
    hostIn("bin");
    folderAt("bin/AAFTools");
    workerAt("secret/trellant-omf");
    EXPECT_EQ(found("../../secret/trellant-omf"), "nothing");
}

TEST_F(BundledHelper, CallWithoutAWorkerTellsWhereItWasLookedFor) {
    hostIn("bin");
    EXPECT_EQ(missing("trellant-aaf", "/mix.aaf"),
              "trellant-aaf bin/AAFTools/trellant-aaf libexec/trellant/AAFTools/trellant-aaf "
              "bin/trellant-aaf\n");
    EXPECT_EQ(missing("../worker", "/mix.omf"), "../worker\n");
}

TEST_F(BundledHelper, ClientThatNamesNoWorkerReadsOmfWithTheOneThatIsShipped) {
    hostIn("bin");
    constexpr const char* places =
        "trellant-omf bin/AAFTools/trellant-omf libexec/trellant/AAFTools/trellant-omf "
        "bin/trellant-omf\n";
    EXPECT_EQ(missing("", "/mix.omf"), places);
    EXPECT_EQ(missing("", "/mix.OMFI"), places);
    EXPECT_TRUE(missing("", "/mix.aaf").starts_with("trellant-aaf "));
    workerAt("bin/trellant-omf");
    EXPECT_TRUE(missing("", "/mix.omf").starts_with("helper launch failed: cannot start \""));
}

TEST_F(BundledHelper, LinkToAWorkerCounts) {
    hostIn("bin");
    workerAt("elsewhere/worker");
    folderAt("bin/AAFTools");
    std::filesystem::create_symlink(path("elsewhere/worker"), path("bin/AAFTools/trellant-omf"));
    EXPECT_EQ(found(), "elsewhere/worker");
}

}  // namespace

}  // namespace trellant::testing
