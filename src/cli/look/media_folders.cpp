#include "media_folders.h"

#include <trellant/base/text.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <optional>
#include <sys/stat.h>
#include <system_error>

namespace trellant::cli {

namespace fs = std::filesystem;

namespace {

/// Files and folders that are looked at: a large archive has some hundred thousand.
constexpr std::uint64_t entryLimit = 5'000'000;

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

}  // namespace

std::string wantedFileName(std::string path) {
    std::replace(path.begin(), path.end(), '\\', '/');
    while (!path.empty() && path.back() == '/') {
        path.pop_back();
    }
    const auto slash = path.rfind('/');
    return lowerCased(slash == std::string::npos ? path : path.substr(slash + 1));
}

MediaFolders::MediaFolders(const std::vector<std::string>& folders,
                           const std::vector<std::string>& ignored, const StepProgress& progress) {
    for (const std::string& path : ignored) {
        if (const auto identity = identityOf(path)) {
            seen_.insert(*identity);
        }
    }
    for (const std::string& folder : folders) {
        readFolder(folder, progress);
    }
    for (auto& [name, paths] : pathsByName_) {
        std::sort(paths.begin(), paths.end());
    }
}

void MediaFolders::readFolder(const std::string& folder, const StepProgress& progress) {
    std::error_code error;
    fs::recursive_directory_iterator entry(folder, fs::directory_options::skip_permission_denied,
                                           error);
    // What goes wrong further down ends this folder only; what was seen of it counts.
    for (; !error && entry != fs::recursive_directory_iterator(); entry.increment(error)) {
        progress.check();
        if (++entries_ > entryLimit) {
            incomplete_ = true;
            return;
        }
        const std::string name = entry->path().filename().native();
        if (name.starts_with('.')) {
            entry.disable_recursion_pending();
        } else if (isAudioFileName(name)) {
            add(entry->path().native(), name);
        }
    }
}

void MediaFolders::add(const std::string& path, std::string_view name) {
    const auto identity = identityOf(path);
    if (identity && seen_.insert(*identity).second) {
        pathsByName_[lowerCased(name)].push_back(path);
    }
}

std::vector<std::string> MediaFolders::named(const std::string& wanted) const {
    const auto found = pathsByName_.find(wanted);
    return found == pathsByName_.end() ? std::vector<std::string>() : found->second;
}

}  // namespace trellant::cli
