// SPDX-License-Identifier: Apache-2.0
#include "real_files.h"

#include <algorithm>
#include <cstdlib>
#include <trellant_testing/requests.h>

namespace trellant::testing {

namespace {

std::vector<std::string> namesIn(const std::filesystem::path& folder) {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::optional<std::filesystem::path> folder() {
    const char* named = std::getenv("TRELLANT_REAL_FILES");
    return named != nullptr && *named != '\0' ? std::optional<std::filesystem::path>(named)
                                              : std::nullopt;
}

/// OMF 1.x does not know the property by which 2.x names the class of an object.
bool isVersion1(const std::filesystem::path& file) {
    constexpr std::string_view name = "OMFI:OOBJ:ObjClass";
    const Bytes bytes = readFile(file.string());
    return std::search(bytes.begin(), bytes.end(), name.begin(), name.end(),
                       [](std::byte byte, char character) {
                           return static_cast<char>(byte) == character;
                       }) == bytes.end();
}

std::optional<std::vector<std::string>> filesOfVersion(bool wantsVersion1) {
    const auto place = folder();
    if (!place) {
        return std::nullopt;
    }
    std::vector<std::string> files;
    for (const std::string& name : namesIn(*place)) {
        if (name.ends_with(".omf") && isVersion1(*place / name) == wantsVersion1) {
            files.push_back((*place / name).string());
        }
    }
    return files;
}

}  // namespace

std::optional<std::vector<std::string>> realFiles() {
    return filesOfVersion(false);
}

std::optional<std::vector<std::string>> realFilesOfVersion1() {
    return filesOfVersion(true);
}

std::optional<std::string> realFile(std::string_view name) {
    const auto place = folder();
    if (!place || !std::filesystem::exists(*place / name)) {
        return std::nullopt;
    }
    return (*place / name).string();
}

RealFileRun::RealFileRun(std::string_view operation, const std::string& path) {
    const auto request = requestFor(operation, path, directory_.file("work"));
    run_ = runWorker({.input = request.json()});
}

std::string RealFileRun::workFile(std::string_view name) const {
    return directory_.file(std::string("work/").append(name));
}

std::optional<std::vector<std::string>> RealFileRun::workFiles() const {
    const auto work = directory_.path() / "work";
    return std::filesystem::exists(work) ? std::optional(namesIn(work)) : std::nullopt;
}

}  // namespace trellant::testing
