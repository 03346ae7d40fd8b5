// SPDX-License-Identifier: Apache-2.0

#include <trellant/base/text.h>
#include <trellant/handoff/media_folders.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <limits>
#include <optional>
#include <sys/stat.h>
#include <system_error>

namespace trellant {

namespace fs = std::filesystem;

namespace {

/// Files and folders that are looked at: a large archive has some hundred thousand.
constexpr std::uint64_t entryLimit = 5'000'000;
/// Nobody asked for the folder of the file to be searched: it may be anything, so little is read.
constexpr std::uint64_t besideLimit = 20'000;
constexpr int besideDepth = 2;
constexpr int anyDepth = std::numeric_limits<int>::max();

constexpr std::array<std::string_view, 5> audioExtensions{".wav", ".wave", ".aif", ".aiff",
                                                          ".aifc"};

bool isAudioFileName(std::string_view name) {
    const auto dot = name.rfind('.');
    return dot != std::string_view::npos && dot != 0 &&
           std::find(audioExtensions.begin(), audioExtensions.end(),
                     lowerCased(name.substr(dot))) != audioExtensions.end();
}

std::optional<std::pair<std::uint64_t, std::uint64_t>> identityOf(const std::string& path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) {
        return std::nullopt;
    }
    return std::pair(static_cast<std::uint64_t>(status.st_dev),
                     static_cast<std::uint64_t>(status.st_ino));
}

/// The audio beside a session that was exported: copies of what was found already, which would make
/// every later look find two files of each name.
bool isOfExport(const fs::path& folder) {
    std::error_code ignored;
    return folder.extension() == ".media" &&
           fs::is_regular_file(fs::path(folder).replace_extension(".losses.json"), ignored);
}

}  // namespace

std::string wantedFileName(std::string path) {
    std::replace(path.begin(), path.end(), '\\', '/');
    while (!path.empty() && path.back() == '/') {
        path.pop_back();
    }
    const auto slash = path.rfind('/');
    return lowerCased(slash == std::string::npos ? path : path.substr(slash + 1));
}

MediaFolders::MediaFolders(const std::vector<std::string>& ignored, const WorkProgress& progress)
    : progress_(progress) {
    for (const std::string& path : ignored) {
        if (const auto identity = identityOf(path)) {
            seen_.insert(*identity);
        }
    }
}

void MediaFolders::addBeside(const std::string& file) {
    static_cast<void>(read(fs::path(file).parent_path().native(), besideDepth, besideLimit, true));
}

void MediaFolders::addFolder(const std::string& folder) {
    if (!read(folder, anyDepth, entryLimit, false)) {
        incomplete_ = true;
    }
}

bool MediaFolders::read(const std::string& folder, int deepest, std::uint64_t most, bool isBeside) {
    std::error_code error;
    fs::recursive_directory_iterator entry(folder, fs::directory_options::skip_permission_denied,
                                           error);
    std::uint64_t entries = 0;
    // What goes wrong further down ends this folder only; what was seen of it counts.
    for (; !error && entry != fs::recursive_directory_iterator(); entry.increment(error)) {
        progress_.check();
        if (++entries > most || ++entries_ > entryLimit) {
            return false;
        }
        const std::string name = entry->path().filename().native();
        if (name.starts_with('.') || entry.depth() >= deepest || isOfExport(entry->path())) {
            entry.disable_recursion_pending();
        }
        if (!name.starts_with('.') && isAudioFileName(name)) {
            add(entry->path().native(), name, isBeside);
        }
    }
    return true;
}

void MediaFolders::add(const std::string& path, std::string_view name, bool isBeside) {
    const auto identity = identityOf(path);
    if (identity && seen_.insert(*identity).second) {
        filesByName_[lowerCased(name)].push_back({path, isBeside});
    }
}

std::vector<MediaFile> MediaFolders::named(const std::string& wanted) const {
    const auto found = filesByName_.find(wanted);
    if (found == filesByName_.end()) {
        return {};
    }
    std::vector<MediaFile> files = found->second;
    std::sort(files.begin(), files.end(), [](const MediaFile& left, const MediaFile& right) {
        return left.isBeside != right.isBeside ? left.isBeside : left.path < right.path;
    });
    return files;
}

}  // namespace trellant
