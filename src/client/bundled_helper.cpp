// SPDX-License-Identifier: Apache-2.0
#include <trellant/base/executable_location.h>
#include <trellant/client/worker_client.h>

#include <array>
#include <string_view>
#include <system_error>

namespace trellant {

namespace {

/// Seen from the folder of the host's executable, in the order of the search.
constexpr std::array<std::string_view, 3> helperFolders{"AAFTools", "../libexec/trellant/AAFTools",
                                                        "../bin"};

}  // namespace

std::vector<std::filesystem::path> bundledHelperPlaces(const std::string& helperName) {
    // A name with a slash in it would lead anywhere, one with a NUL to another file; an empty one
    // is a folder.
    if (helperName.empty() ||
        helperName.find_first_of(std::string_view("/\0", 2)) != std::string::npos) {
        return {};
    }
    std::vector<std::filesystem::path> places;
    if (const std::optional<std::string> program = executableDirectory()) {
        for (const std::string_view folder : helperFolders) {
            places.push_back(
                (std::filesystem::path(*program) / folder / helperName).lexically_normal());
        }
    }
    return places;
}

std::optional<std::filesystem::path> bundledHelper(const std::string& helperName) {
    for (const std::filesystem::path& place : bundledHelperPlaces(helperName)) {
        std::error_code ignored;
        const auto status = std::filesystem::status(place, ignored);
        if (std::filesystem::exists(status) && !std::filesystem::is_directory(status)) {
            return place;
        }
    }
    return std::nullopt;
}

}  // namespace trellant
