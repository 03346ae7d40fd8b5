// SPDX-License-Identifier: Apache-2.0
// The first byte of the input says which extension, and how many files of the name there are.
#include "file_names.h"

#include "require.h"
#include "targets.h"

#include <trellant/base/text.h>
#include <trellant/base/url.h>

#include <filesystem>
#include <string>
#include <trellant_testing/temporary_directory.h>
#include <vector>

namespace trellant::fuzzing {

namespace {

void requireSafe(const std::string& path, const std::string& folder, const std::string& extension) {
    require(path.starts_with(folder + "/"), "a file lies in the folder");
    const std::string name = path.substr(folder.size() + 1);
    require(name.find('/') == std::string::npos, "a name has no separator");
    require(name.ends_with("." + extension), "a name has its extension");
    require(name.size() <= 255, "a name fits a file system");
    require(isValidUTF8(name), "a name is UTF-8");
    require(replacingNonAlphanumerics(name, "-_. ", '_') == name, "a name is printable");
    require(lastPathComponent(path) == name, "a name is the last part of its path");
    require(extensionOf(name) == extension || name == "." + extension,
            "an extension is found again");
}

/// Asks for names as files of the first ones appear.
void nameFiles(std::string_view base, const std::string& extension, unsigned count) {
    static const testing::TemporaryDirectory folder;
    UniqueNames names(folder.path().string());
    std::vector<std::string> files;
    for (unsigned index = 0; index <= count; ++index) {
        const auto path = names.uniqueURL(base, extension);
        requireSafe(path, folder.path().string(), extension);
        require(!std::filesystem::exists(path), "a name is free");
        require(pathOfFileURL(fileURL(path).text) == path, "a URL leads back to its path");
        files.push_back(testing::writeFile(path, {}));
    }
    for (const auto& file : files) {
        std::filesystem::remove(file);
    }
}

void followPath(const std::string& path) {
    require(absolutePath(path, "/folder").starts_with('/'), "an absolute path is absolute");
    static_cast<void>(pathOfFileURL(path));
    if (path.find('\0') == std::string::npos) {
        require(pathOfFileURL(fileURL("/" + path).text) == "/" + path,
                "a URL leads back to any path");
    }
}

}  // namespace

void runFileNames(ByteView input) {
    if (input.empty()) {
        return;
    }
    const auto options = std::to_integer<unsigned>(input.front());
    const std::string raw(reinterpret_cast<const char*>(input.data()) + 1, input.size() - 1);
    followPath(raw);
    const std::string text = madeValidUTF8(raw);
    require(isValidUTF8(text), "a text made UTF-8 is UTF-8");
    require(isValidUTF8(lowerCased(text)), "a text in lower case is UTF-8");
    const auto base = safeName(withoutExtension(lastPathComponent(text)));
    require(safeName(base) == base, "a safe name is safe as it is");
    nameFiles(base, options % 2 == 0 ? "wav" : "aifc", options / 2 % 4);
}

}  // namespace trellant::fuzzing
