// SPDX-License-Identifier: Apache-2.0
#include <trellant/base/printable_text.h>
#include <trellant/exporter/exporter.h>
#include <trellant/exporter/final_places.h>
#include <trellant/io/errors.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <optional>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace trellant {

namespace fs = std::filesystem;

namespace {

std::optional<mode_t> modeOf(const std::string& path) {
    struct stat status {};
    return ::lstat(path.c_str(), &status) == 0 ? std::optional(status.st_mode) : std::nullopt;
}

[[noreturn]] void isTaken(const std::string& name, const std::string& what) {
    throw ExportTargetError(printableText(name) + what);
}

void rename(const std::string& from, const std::string& to) {
    if (std::rename(from.c_str(), to.c_str()) != 0) {
        throw FileSystemError("create", to, errno);
    }
}

std::vector<std::string> namesIn(const std::string& folder) {
    std::vector<std::string> names;
    std::error_code error;
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end;
         entry.increment(error)) {
        names.push_back(entry->path().filename().native());
    }
    if (error) {
        throw FileSystemError("read folder", folder, error.value());
    }
    std::sort(names.begin(), names.end());
    return names;
}

}  // namespace

void FinalPlaces::checkFile(const std::string& name) const {
    const auto mode = modeOf(pathOf(name));
    if (!mode) {
        return;
    }
    if (read_.holds(pathOf(name))) {
        isTaken(name, " is read by " + advice_.run + " and is not replaced; " + advice_.instead);
    }
    if (!force_) {
        isTaken(name, " is there already; --force replaces it, " + advice_.orElse);
    }
    if (!S_ISREG(*mode) && !S_ISLNK(*mode)) {
        isTaken(name, " is there already and is no file; " + advice_.instead);
    }
}

void FinalPlaces::check(const std::vector<std::string>& files, const std::string& folder) const {
    for (const std::string& name : files) {
        checkFile(name);
    }
    const auto mode = folder.empty() ? std::nullopt : modeOf(pathOf(folder));
    if (!mode) {
        return;
    }
    if (!S_ISDIR(*mode)) {
        isTaken(folder, " is there already and is no folder; " + advice_.instead);
    }
    if (!force_ && !namesIn(pathOf(folder)).empty()) {
        isTaken(folder, " is there already; --force replaces files of the same names in it, " +
                            advice_.orElse);
    }
}

void FinalPlaces::moveFile(const std::string& staged, const std::string& name) const {
    checkFile(name);
    const std::string path = pathOf(name);
    if (force_) {
        rename(staged, path);
        return;
    }
    // A second name for the file fails where one exists, which renaming does not.
    if (::link(staged.c_str(), path.c_str()) == 0) {
        ::unlink(staged.c_str());
    } else if (errno == EEXIST) {
        checkFile(name);
    } else {
        // Not every file system has second names.
        rename(staged, path);
    }
}

void FinalPlaces::moveFolder(const std::string& staged, const std::string& name) const {
    const std::string path = pathOf(name);
    // An empty folder gives way.
    if (std::rename(staged.c_str(), path.c_str()) == 0) {
        return;
    }
    if (errno != ENOTEMPTY && errno != EEXIST) {
        throw FileSystemError("create folder", path, errno);
    }
    const std::vector<std::string> names = namesIn(staged);
    for (const std::string& file : names) {
        checkFile(name + "/" + file);
    }
    for (const std::string& file : names) {
        rename(staged + "/" + file, path + "/" + file);
    }
}

}  // namespace trellant
