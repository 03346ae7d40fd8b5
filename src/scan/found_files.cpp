// SPDX-License-Identifier: Apache-2.0
#include <trellant/base/file_descriptor.h>
#include <trellant/base/keyed_hash.h>
#include <trellant/base/system_error_text.h>
#include <trellant/scan/found_files.h>

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <memory>
#include <span>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace trellant::scan {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t longestLine = 65'536;
constexpr std::size_t readBytes = 65'536;

std::string absolutePath(const std::string& path) {
    std::error_code failure;
    const fs::path absolute = fs::absolute(path, failure);
    std::string text = (failure ? fs::path(path) : absolute).lexically_normal().native();
    // "folder/" and "folder" are one place.
    while (text.size() > 1 && text.back() == '/') {
        text.pop_back();
    }
    return text;
}

/// The lines of a descriptor, one by one.
class Lines {
  public:
    explicit Lines(int descriptor) : descriptor_(descriptor) {}

    /// False at the end. A line that is too long, or a failed read, is told by `failure`.
    [[nodiscard]] bool next(std::string& line) {
        for (;;) {
            const std::size_t end = text_.find('\n', at_);
            if (end != std::string::npos || (isAtEnd_ && at_ < text_.size())) {
                const std::size_t stop = end == std::string::npos ? text_.size() : end;
                line.assign(text_, at_, stop - at_);
                at_ = stop + 1;
                return true;
            }
            if (isAtEnd_ || !more()) {
                return false;
            }
        }
    }
    /// Empty when all was well.
    [[nodiscard]] const std::string& failure() const noexcept { return failure_; }

  private:
    [[nodiscard]] bool more() {
        text_.erase(0, at_);
        at_ = 0;
        if (text_.size() > longestLine) {
            failure_ = "a line is longer than any path";
            return false;
        }
        const std::size_t before = text_.size();
        text_.resize(before + readBytes);
        ssize_t got = -1;
        do {
            got = ::read(descriptor_, text_.data() + before, readBytes);
        } while (got < 0 && errno == EINTR);
        if (got < 0) {
            failure_ = systemErrorText(errno);
            return false;
        }
        text_.resize(before + static_cast<std::size_t>(got));
        isAtEnd_ = got == 0;
        return true;
    }

    int descriptor_;
    std::string text_;
    std::size_t at_ = 0;
    bool isAtEnd_ = false;
    std::string failure_;
};

/// Calls `take` with every line; gives why not all could be read, empty when they could.
template <class Take>
std::string eachLine(const std::string& list, const Take& take) {
    const FileDescriptor opened(list == "-" ? -1 : ::open(list.c_str(), O_RDONLY | O_CLOEXEC));
    if (list != "-" && !opened.isOpen()) {
        return systemErrorText(errno);
    }
    Lines lines(list == "-" ? STDIN_FILENO : opened.number());
    for (std::string line; lines.next(line);) {
        if (!line.empty()) {
            take(line);
        }
    }
    return lines.failure();
}

/// Calls `take` with every entry below `folder`, and `fail` with each folder that cannot be read.
template <class Take, class Fail>
void eachEntry(const std::string& folder, const Take& take, const Fail& fail) {
    // One open folder a level; deeper ones than this are a circle or a trap.
    constexpr std::size_t deepest = 256;
    std::vector<fs::directory_iterator> open;
    const auto enter = [&](const std::string& path) {
        std::error_code failure;
        fs::directory_iterator entries(path, failure);
        if (failure) {
            fail(path, failure.message());
        } else if (open.size() >= deepest) {
            fail(path, "it lies below too many folders");
        } else {
            open.push_back(std::move(entries));
        }
    };
    enter(folder);
    while (!open.empty()) {
        fs::directory_iterator& entries = open.back();
        if (entries == fs::directory_iterator()) {
            open.pop_back();
            continue;
        }
        const fs::directory_entry entry = *entries;
        std::error_code failure;
        entries.increment(failure);
        if (failure) {
            fail(entry.path().parent_path().native(), failure.message());
            entries = fs::directory_iterator();
        }
        take(entry);
        std::error_code unknown;
        if (entry.symlink_status(unknown).type() == fs::file_type::directory) {
            enter(entry.path().native());
        }
    }
}

class Search {
  public:
    Search(const FindingPlaces& places, const FindingCalls& calls)
        : places_(places), calls_(calls) {}

    void run() const {
        for (const std::string& path : places_.paths) {
            named(path);
        }
        for (const std::string& list : places_.lists) {
            const std::string failure = eachLine(list, [this](const std::string& line) {
                calls_.looked();
                named(line);
            });
            if (!failure.empty()) {
                calls_.failure(list, failure);
            }
        }
    }

  private:
    void named(const std::string& given) const {
        const std::string path = absolutePath(given);
        struct stat status {};
        if (::stat(path.c_str(), &status) != 0) {
            if (places_.shard.holds(path)) {
                calls_.file({.path = path, .failure = systemErrorText(errno)});
            }
        } else if (S_ISDIR(status.st_mode)) {
            below(path);
        } else if (!S_ISREG(status.st_mode)) {
            if (places_.shard.holds(path)) {
                calls_.file({.path = path, .failure = "it is no regular file"});
            }
        } else {
            tell(path, status);
        }
    }

    void below(const std::string& folder) const {
        eachEntry(
            folder,
            [this](const fs::directory_entry& entry) {
                calls_.looked();
                struct stat status {};
                const std::string& path = entry.path().native();
                std::error_code unknown;
                // What vanishes meanwhile is not there.
                if (entry.symlink_status(unknown).type() == fs::file_type::regular &&
                    ::lstat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode)) {
                    tell(path, status);
                }
            },
            calls_.failure);
    }

    void tell(const std::string& path, const struct stat& status) const {
        constexpr std::int64_t nanoseconds = 1'000'000'000;
        if (!places_.shard.holds(path)) {
            return;
        }
        FoundFile file{
            .path = path, .size = static_cast<std::uint64_t>(status.st_size), .modified = 0};
        // Times that leave the range of nanoseconds in 64 bits are taken for none.
        std::int64_t whole = 0;
        if (!__builtin_mul_overflow(std::int64_t{status.st_mtim.tv_sec}, nanoseconds, &whole) &&
            !__builtin_add_overflow(whole, std::int64_t{status.st_mtim.tv_nsec}, &file.modified)) {
            calls_.file(std::move(file));
            return;
        }
        file.modified = 0;
        calls_.file(std::move(file));
    }

    const FindingPlaces& places_;
    const FindingCalls& calls_;
};

}  // namespace

bool Shard::holds(std::string_view path) const noexcept {
    // Fixed on purpose: all machines and all times agree.
    constexpr HashSecret agreed{.low = 0x7472656c6c616e74, .high = 0x7363616e73686172};
    return sipHash(agreed, std::as_bytes(std::span(path))) % count == number - 1;
}

void findFiles(const FindingPlaces& places, const FindingCalls& calls) {
    Search(places, calls).run();
}

std::uint64_t countEntries(const FindingPlaces& places, const std::function<void()>& stopped) {
    std::uint64_t count = 0;
    const auto add = [&count, &stopped](const auto& /*entry*/) {
        stopped();
        ++count;
    };
    for (const std::string& path : places.paths) {
        std::error_code unknown;
        if (fs::is_directory(path, unknown)) {
            eachEntry(absolutePath(path), add, [](const std::string&, const std::string&) {});
        }
    }
    for (const std::string& list : places.lists) {
        // Standard input can be read only once.
        if (list != "-") {
            static_cast<void>(eachLine(list, add));
        }
    }
    return count;
}

}  // namespace trellant::scan
