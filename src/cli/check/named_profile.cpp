// SPDX-License-Identifier: Apache-2.0
#include "named_profile.h"

#include <trellant/base/nearest_word.h>
#include <trellant/base/printable_path.h>
#include <trellant/io/errors.h>
#include <trellant/io/random_access_file.h>

#include <cstdint>
#include <filesystem>
#include <system_error>
#include <vector>

namespace trellant::cli {

namespace fs = std::filesystem;

namespace {

[[noreturn]] void refuseUnknown(const std::string& name) {
    std::vector<std::string> names;
    std::string list;
    for (const check::BuiltInProfile& profile : check::builtInProfiles()) {
        names.emplace_back(profile.name);
        list += (list.empty() ? "" : ", ") + names.back();
    }
    const auto nearest = nearestWord(name, names);
    throw check::ProfileError("there is no profile and no file \"" + printablePath(name) + "\"" +
                              (nearest ? "; did you mean \"" + *nearest + "\"?"
                                       : "; profiles that come with the program are " + list));
}

std::string textOf(const std::string& path) {
    std::error_code ignored;
    if (!fs::exists(path, ignored)) {
        refuseUnknown(path);
    }
    if (!fs::is_regular_file(path, ignored)) {
        throw check::ProfileError(printablePath(path) + " is no file that a profile could be in");
    }
    try {
        const RandomAccessFile file(path);
        if (file.size() > largestProfile) {
            throw check::ProfileError(printablePath(path) + " is larger than any profile");
        }
        const Bytes bytes = file.read(0, static_cast<std::int64_t>(file.size()));
        return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
    } catch (const FileSystemError& error) {
        throw check::ProfileError(error.what());
    } catch (const OMFIOError& error) {
        throw check::ProfileError(error.what());
    }
}

}  // namespace

check::Profile namedProfile(const std::string& name) {
    if (auto builtIn = check::builtInProfile(name)) {
        return std::move(*builtIn);
    }
    const fs::path folder = fs::path(name).parent_path();
    return check::readProfile(textOf(name), name, [&folder](const std::string& extended) {
        return textOf((folder / extended).native());
    });
}

}  // namespace trellant::cli
