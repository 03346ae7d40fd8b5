// SPDX-License-Identifier: Apache-2.0
#include <trellant/scan/shard_file.h>
#include <trellant/version.h>

#include <gmock/gmock.h>

#include <filesystem>
#include <optional>
#include <string>
#include <sys/wait.h>
#include <trellant_testing/byte_writer.h>
#include <trellant_testing/temporary_directory.h>
#include <unistd.h>

namespace trellant::scan {
namespace {

using testing::bytesOf;
using testing::readFile;
using testing::TemporaryDirectory;
using testing::writeFile;

std::string textOf(const std::string& path) {
    const Bytes bytes = readFile(path);
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

std::string lineOf(const std::string& path, FileStatus status = FileStatus::ok) {
    ScanRow row;
    row.path = path;
    row.size = 10;
    row.modified = timeText(1'000'000'000);
    row.program = versionText;
    row.status = status;
    return rowLine(row);
}

FoundFile fileOf(const std::string& path) {
    return {.path = path, .size = 10, .modified = 1'000'000'000};
}

class Shards : public ::testing::Test {
  protected:
    /// What opening a shard with that text says; absent when it is fine.
    std::optional<std::string> refusal(const std::string& text) {
        writeFile(path_, bytesOf(text));
        try {
            DoneRows done;
            const ShardFile shard(path_, done);
            return std::nullopt;
        } catch (const ShardError& error) {
            return error.what();
        }
    }

    TemporaryDirectory folder_;
    std::string path_ = folder_.file("shard.ndjson");
};

TEST_F(Shards, RowsAreThereOnceTheyAreFlushed) {
    DoneRows done;
    ShardFile shard(path_, done);
    shard.add(lineOf("/a"));
    shard.add(lineOf("/b"));
    shard.flush();
    EXPECT_EQ(textOf(path_), lineOf("/a") + lineOf("/b"));
    EXPECT_TRUE(shard.isAt(path_));
    EXPECT_FALSE(shard.isAt(folder_.path().native()));
}

TEST_F(Shards, ATornRowIsCutOffWhereverItEnds) {
    const std::string whole = lineOf("/a");
    const std::string torn = lineOf("/b");
    for (std::size_t length = 0; length < torn.size(); ++length) {
        EXPECT_EQ(refusal(whole + torn.substr(0, length)), std::nullopt) << length;
        EXPECT_EQ(textOf(path_), whole) << length;
        EXPECT_EQ(refusal(torn.substr(0, length)), std::nullopt) << length;
        EXPECT_EQ(textOf(path_), "") << length;
    }
}

TEST_F(Shards, ZerosThatACrashLeavesAreCutOff) {
    EXPECT_EQ(refusal(lineOf("/a") + std::string(4'096, '\0')), std::nullopt);
    EXPECT_EQ(textOf(path_), lineOf("/a"));
}

TEST_F(Shards, AFileOfSomebodyElseIsRefusedAndStaysAsItIs) {
    for (const std::string text : {"hello\n", "hello", "{\"file\":\"a\"}\n"}) {
        EXPECT_EQ(refusal(text), "holds something else than rows of a scan");
        EXPECT_EQ(textOf(path_), text);
    }
    const std::string broken = lineOf("/a") + "hello\n" + lineOf("/b");
    EXPECT_EQ(refusal(broken), "holds lines that are no rows of a scan");
    EXPECT_EQ(textOf(path_), broken);
}

TEST_F(Shards, OnlyOneScanWritesOne) {
    DoneRows done;
    const ShardFile first(path_, done);
    DoneRows others;
    EXPECT_THROW(ShardFile(path_, others), ShardError);
}

TEST_F(Shards, RowsThatAreThereAreKnown) {
    writeFile(path_, bytesOf(lineOf("/a") + lineOf("/b", FileStatus::timeout)));
    DoneRows done;
    const ShardFile shard(path_, done);
    EXPECT_EQ(done.size(), 2U);
    EXPECT_EQ(done.of(fileOf("/a")), DoneRows::State::done);
    EXPECT_EQ(done.of(fileOf("/b")), DoneRows::State::failed);
    EXPECT_EQ(done.of(fileOf("/c")), DoneRows::State::absent);
    FoundFile changed = fileOf("/a");
    changed.size = 11;
    EXPECT_EQ(done.of(changed), DoneRows::State::absent);
    changed = fileOf("/a");
    changed.modified += 1;
    EXPECT_EQ(done.of(changed), DoneRows::State::absent);
}

TEST_F(Shards, OfRowsOfOneFileTheLastOneCounts) {
    DoneRows done;
    for (const FileStatus status :
         {FileStatus::timeout, FileStatus::ok, FileStatus::damaged, FileStatus::ok}) {
        done.add(decodeRowKey(lineOf("/a", status)));
    }
    done.settle();
    EXPECT_EQ(done.size(), 1U);
    EXPECT_EQ(done.of(fileOf("/a")), DoneRows::State::done);
}

TEST_F(Shards, AKillAtAnyTimeLeavesWholeRows) {
    for (int round = 0; round < 5; ++round) {
        const pid_t child = ::fork();
        if (child == 0) {
            DoneRows done;
            ShardFile shard(path_, done);
            for (;;) {
                shard.add(lineOf("/" + std::string(100'000, 'x')));
            }
        }
        ::usleep(20'000 * static_cast<unsigned>(round + 1));
        ::kill(child, SIGKILL);
        int status = 0;
        ASSERT_EQ(::waitpid(child, &status, 0), child);
        ASSERT_TRUE(WIFSIGNALED(status));
        DoneRows done;
        const ShardFile shard(path_, done);
        std::string rest = textOf(path_);
        const std::string line = lineOf("/" + std::string(100'000, 'x'));
        EXPECT_EQ(rest.size() % line.size(), 0U);
        EXPECT_TRUE(rest.empty() || rest.ends_with(line));
    }
}

TEST(ScanTimes, AreToldToTheNanosecond) {
    EXPECT_EQ(timeText(0), "1970-01-01T00:00:00.000000000Z");
    EXPECT_EQ(timeText(-1), "1969-12-31T23:59:59.999999999Z");
    // 86,400 seconds a day.
    EXPECT_EQ(timeText(86'400'000'000'005), "1970-01-02T00:00:00.000000005Z");
}

}  // namespace
}  // namespace trellant::scan
