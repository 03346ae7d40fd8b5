// SPDX-License-Identifier: Apache-2.0
#include <trellant/extraction/extraction.h>
#include <trellant/extraction/staging.h>
#include <trellant/io/errors.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <string_view>
#include <sys/file.h>
#include <sys/stat.h>
#include <system_error>

namespace trellant {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view namePrefix = ".trellant-";
/// The system puts random letters there.
constexpr std::string_view nameEnd = "XXXXXX";

/// Whether a run that lives holds the folder's lock.
bool isInUse(const std::string& folder) {
    const FileDescriptor opened(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    return opened.isOpen() && ::flock(opened.number(), LOCK_SH | LOCK_NB) != 0 &&
           errno == EWOULDBLOCK;
}

}  // namespace

Staging::Staging(const std::string& directory)
    : path_(directory + "/" + std::string(namePrefix) + std::string(nameEnd)) {
    if (::mkdtemp(path_.data()) == nullptr) {
        throw FileSystemError("write to", directory, errno);
    }
    lock_ = FileDescriptor(::open(path_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (lock_.isOpen()) {
        ::flock(lock_.number(), LOCK_EX | LOCK_NB);
    }
}

Staging::~Staging() {
    std::error_code ignored;
    fs::remove_all(path_, ignored);
}

bool Staging::holds(const std::string& path) const {
    struct stat status {};
    return path.size() > path_.size() + 1 && path.starts_with(path_ + "/") &&
           path.find('/', path_.size() + 1) == std::string::npos &&
           ::lstat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode);
}

std::string Staging::freeFile(const NumberedName& name) const {
    struct stat status {};
    std::uint64_t number = name.number;
    std::string path = file(name.text());
    while (::lstat(path.c_str(), &status) == 0) {
        path = file(name.withNumber(++number));
    }
    return path;
}

std::vector<std::string> Staging::wholeFiles() const {
    struct Written {
        fs::file_time_type when;
        std::string name;
    };
    std::vector<Written> files;
    std::error_code ignored;
    for (fs::directory_iterator entry(path_, ignored), end; entry != end;
         entry.increment(ignored)) {
        std::error_code unknown;
        if (fs::is_regular_file(entry->symlink_status(unknown))) {
            files.push_back({entry->last_write_time(unknown), entry->path().filename().native()});
        }
    }
    std::sort(files.begin(), files.end(),
              [](const Written& left, const Written& right) { return left.when < right.when; });
    std::vector<std::string> names;
    for (std::size_t i = 0; i + 1 < files.size() && files[i].when < files.back().when; ++i) {
        names.push_back(std::move(files[i].name));
    }
    return names;
}

std::uint64_t Staging::bytes() const {
    std::uint64_t sum = 0;
    std::error_code ignored;
    for (fs::directory_iterator entry(path_, ignored), end; entry != end;
         entry.increment(ignored)) {
        sum += bytesOfFile(entry->path().native());
    }
    return sum;
}

std::vector<std::string> stagingFoldersIn(const std::string& directory) {
    std::vector<std::string> names;
    std::error_code ignored;
    for (fs::directory_iterator entry(directory, ignored), end; entry != end;
         entry.increment(ignored)) {
        const std::string name = entry->path().filename().native();
        std::error_code unknown;
        if (name.size() == namePrefix.size() + nameEnd.size() && name.starts_with(namePrefix) &&
            fs::is_directory(entry->symlink_status(unknown)) && !isInUse(entry->path().native())) {
            names.push_back(name);
        }
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::uint64_t bytesOfFile(const std::string& path) noexcept {
    struct stat status {};
    if (::lstat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) {
        return 0;
    }
    return static_cast<std::uint64_t>(status.st_size);
}

}  // namespace trellant
