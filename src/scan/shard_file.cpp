// SPDX-License-Identifier: Apache-2.0
#include <trellant/base/printable_text.h>
#include <trellant/base/system_error_text.h>
#include <trellant/base/write_all.h>
#include <trellant/json/json_decode.h>
#include <trellant/scan/shard_file.h>
#include <trellant/version.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <ctime>
#include <fcntl.h>
#include <optional>
#include <span>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace trellant::scan {

namespace {

constexpr std::size_t readBytes = 1'048'576;
/// A batch is written when it is so large, or so old.
constexpr std::size_t batchBytes = 262'144;
constexpr std::chrono::seconds batchTime{2};
/// How every row begins: what begins so and goes no further is torn, and nobody else's.
constexpr std::string_view rowHead = "{\"row\":";

std::optional<ScanRowKey> keyOf(std::string_view line) {
    try {
        return decodeRowKey(line);
    } catch (const JsonDecodingError&) {
        return std::nullopt;
    }
}

}  // namespace

DoneRows::Entry DoneRows::hashed(std::string_view path, std::uint64_t size,
                                 std::string_view modified, std::string_view program) const {
    // A NUL ends each part: no path holds one.
    std::string text(path);
    text += '\0';
    text.append(std::to_string(size)).append(1, '\0').append(modified).append(1, '\0');
    text.append(program);
    const HashSecret& first = HashSecret::ofProcess();
    const HashSecret second{.low = ~first.low, .high = first.high ^ first.low};
    const ByteView bytes = std::as_bytes(std::span(text));
    return {sipHash(first, bytes), sipHash(second, bytes) & ~std::uint64_t{1}};
}

void DoneRows::add(const ScanRowKey& key) {
    Entry entry = hashed(key.path, static_cast<std::uint64_t>(key.size), key.modified, key.program);
    entry[1] |= key.status == FileStatus::ok ? 0U : 1U;
    entries_.push_back(entry);
}

void DoneRows::settle() {
    const auto same = [](const Entry& left, const Entry& right) {
        return left[0] == right[0] && (left[1] | 1U) == (right[1] | 1U);
    };
    std::stable_sort(entries_.begin(), entries_.end(), [](const Entry& left, const Entry& right) {
        return left[0] != right[0] ? left[0] < right[0] : (left[1] | 1U) < (right[1] | 1U);
    });
    // The last of equal ones stays: unique keeps the first, so it looks from behind.
    const auto kept = std::unique(entries_.rbegin(), entries_.rend(), same);
    entries_.erase(entries_.begin(), kept.base());
}

DoneRows::State DoneRows::of(const FoundFile& file) const {
    const Entry wanted =
        hashed(textOfBytes(file.path), file.size,
               file.failure.empty() ? timeText(file.modified) : std::string(), versionText);
    const auto found = std::lower_bound(
        entries_.begin(), entries_.end(), wanted, [](const Entry& left, const Entry& right) {
            return left[0] != right[0] ? left[0] < right[0] : (left[1] | 1U) < (right[1] | 1U);
        });
    if (found == entries_.end() || (*found)[0] != wanted[0] ||
        ((*found)[1] | 1U) != (wanted[1] | 1U)) {
        return State::absent;
    }
    return ((*found)[1] & 1U) == 0 ? State::done : State::failed;
}

void eachRowLine(int descriptor,
                 const std::function<void(std::string_view line, std::uint64_t end)>& take) {
    std::string text;
    std::uint64_t offset = 0;
    for (;;) {
        const std::size_t before = text.size();
        if (before > longestRow) {
            throw ShardError("a line of it is longer than any row");
        }
        text.resize(before + readBytes);
        ssize_t got = -1;
        do {
            got = ::read(descriptor, text.data() + before, readBytes);
        } while (got < 0 && errno == EINTR);
        if (got < 0) {
            throw ShardError("cannot be read: " + systemErrorText(errno));
        }
        text.resize(before + static_cast<std::size_t>(got));
        if (got == 0) {
            return;
        }
        std::size_t begin = 0;
        // What was there before has no line feed.
        for (std::size_t end = text.find('\n', before); end != std::string::npos;
             end = text.find('\n', begin)) {
            offset += end + 1 - begin;
            take(std::string_view(text).substr(begin, end - begin), offset);
            begin = end + 1;
        }
        text.erase(0, begin);
    }
}

ShardFile::ShardFile(const std::string& path, DoneRows& done)
    : file_(::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOCTTY, 0666)) {
    struct stat status {};
    if (!file_.isOpen() || ::fstat(file_.number(), &status) != 0) {
        throw ShardError("cannot be opened: " + systemErrorText(errno));
    }
    if (!S_ISREG(status.st_mode)) {
        throw ShardError("is no regular file, which rows could be added to later");
    }
    if (::flock(file_.number(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK) {
        throw ShardError("is being written by another scan");
    }
    end_ = readRows(done);
    done.settle();
    if (::ftruncate(file_.number(), static_cast<off_t>(end_)) != 0 ||
        ::lseek(file_.number(), static_cast<off_t>(end_), SEEK_SET) < 0) {
        throw ShardError("cannot be written: " + systemErrorText(errno));
    }
}

std::uint64_t ShardFile::readRows(DoneRows& done) const {
    std::uint64_t end = 0;
    bool isBroken = false;
    eachRowLine(file_.number(), [&](std::string_view line, std::uint64_t lineEnd) {
        const auto key = keyOf(line);
        if (!key) {
            isBroken = true;
            return;
        }
        if (isBroken) {
            throw ShardError("holds lines that are no rows of a scan");
        }
        done.add(*key);
        end = lineEnd;
    });
    // What is behind the rows goes, if it is ours: the front of a row, or the zeros that a crash of
    // the machine leaves.
    std::array<char, rowHead.size()> head{};
    const ssize_t got = ::pread(file_.number(), head.data(), head.size(), static_cast<off_t>(end));
    const std::string_view rest(head.data(), got > 0 ? static_cast<std::size_t>(got) : 0);
    if (!rowHead.starts_with(rest) && rest.find_first_not_of('\0') != std::string_view::npos) {
        throw ShardError("holds something else than rows of a scan");
    }
    return end;
}

void ShardFile::add(std::string_view line) {
    if (batch_.empty()) {
        batchBegan_ = std::chrono::steady_clock::now();
    }
    batch_ += line;
    if (batch_.size() >= batchBytes) {
        flush();
    } else {
        flushOld();
    }
}

void ShardFile::flushOld() {
    if (!batch_.empty() && std::chrono::steady_clock::now() - batchBegan_ >= batchTime) {
        flush();
    }
}

void ShardFile::flush() {
    if (batch_.empty()) {
        return;
    }
    int failure = writeAll(file_.number(), batch_);
    if (failure == 0 && ::fdatasync(file_.number()) != 0) {
        failure = errno;
    }
    if (failure != 0) {
        // Whole rows or none; should that fail too, the next start cuts.
        if (::ftruncate(file_.number(), static_cast<off_t>(end_)) == 0) {
            ::lseek(file_.number(), static_cast<off_t>(end_), SEEK_SET);
        }
        throw ShardError("cannot be written: " + systemErrorText(failure));
    }
    end_ += batch_.size();
    batch_.clear();
}

bool ShardFile::isAt(const std::string& path) const {
    struct stat own {};
    struct stat other {};
    return ::fstat(file_.number(), &own) == 0 && ::stat(path.c_str(), &other) == 0 &&
           own.st_dev == other.st_dev && own.st_ino == other.st_ino;
}

std::string timeText(std::int64_t nanoseconds) {
    constexpr std::int64_t second = 1'000'000'000;
    std::int64_t rest = nanoseconds % second;
    std::int64_t whole = nanoseconds / second;
    if (rest < 0) {
        rest += second;
        --whole;
    }
    const auto seconds = static_cast<std::time_t>(whole);
    struct tm date {};
    ::gmtime_r(&seconds, &date);
    std::array<char, 64> text{};
    static_cast<void>(std::snprintf(text.data(), text.size(), "%04d-%02d-%02dT%02d:%02d:%02d.%09dZ",
                                    date.tm_year + 1900, date.tm_mon + 1, date.tm_mday,
                                    date.tm_hour, date.tm_min, date.tm_sec,
                                    static_cast<int>(rest)));
    return text.data();
}

}  // namespace trellant::scan
