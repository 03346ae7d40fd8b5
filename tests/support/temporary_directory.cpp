// SPDX-License-Identifier: Apache-2.0
#include <cstdlib>
#include <fstream>
#include <stdexcept>
#include <trellant_testing/temporary_directory.h>

namespace trellant::testing {

TemporaryDirectory::TemporaryDirectory()
    : TemporaryDirectory(std::filesystem::temp_directory_path()) {}

TemporaryDirectory::TemporaryDirectory(const std::filesystem::path& parent) {
    std::string pattern = (parent / "trellant-XXXXXX").string();
    if (::mkdtemp(pattern.data()) == nullptr) {
        throw std::runtime_error("no temporary directory below " + parent.string());
    }
    path_ = pattern;
}

TemporaryDirectory::~TemporaryDirectory() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

std::string TemporaryDirectory::file(std::string_view name) const {
    return (path_ / name).string();
}

std::string writeFile(const std::string& path, ByteView bytes) {
    // A file that is cut to nothing and written again is flushed to the disk by some file systems,
    // which costs milliseconds each time; a new one is not.
    std::filesystem::remove(path);
    std::ofstream file(path, std::ios::binary);
    std::string text(bytes.size(), '\0');
    for (std::size_t index = 0; index < bytes.size(); ++index) {
        text[index] = static_cast<char>(bytes[index]);
    }
    file.write(text.data(), static_cast<std::streamsize>(text.size()));
    file.close();
    if (!file) {
        throw std::runtime_error("cannot write " + path);
    }
    return path;
}

Bytes readFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        throw std::runtime_error("cannot read " + path);
    }
    Bytes bytes(std::filesystem::file_size(path));
    std::string text(bytes.size(), '\0');
    file.read(text.data(), static_cast<std::streamsize>(text.size()));
    for (std::size_t index = 0; index < bytes.size(); ++index) {
        bytes[index] = static_cast<std::byte>(text[index]);
    }
    return bytes;
}

}  // namespace trellant::testing
