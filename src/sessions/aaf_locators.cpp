// SPDX-License-Identifier: Apache-2.0
#include "aaf_locators.h"

#include <trellant/base/text.h>
#include <trellant/base/url.h>

#include <algorithm>

namespace trellant::sessions {

namespace {

/// Of all ASCII, so as many bytes as units.
constexpr std::size_t mostUnits = 32'766;

bool isLetter(char byte) noexcept {
    return (byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z');
}

bool isFileURL(std::string_view path) {
    return lowerCased(path.substr(0, 5)) == "file:";
}

/// What is a URL already, with all that no URL may have percent-encoded.
std::string encodedURL(std::string_view url) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string encoded;
    for (const char byte : url) {
        if (byte > ' ' && byte < '\x7F' && byte != '"' && byte != '<' && byte != '>' &&
            byte != '\\') {
            encoded += byte;
            continue;
        }
        const auto value = static_cast<unsigned char>(byte);
        encoded.append({'%', digits[value >> 4U], digits[value & 0xFU]});
    }
    return encoded;
}

std::string withSlashesFor(std::string_view path, char separator) {
    std::string slashed(path);
    std::replace(slashed.begin(), slashed.end(), separator, '/');
    return slashed;
}

/// "Disk:Folder:Name", with ":" before a path from the current folder.
bool isColonPath(std::string_view path) noexcept {
    return path.find(':') != std::string_view::npos && path.find('/') == std::string_view::npos &&
           path.find('\\') == std::string_view::npos;
}

bool hasDrive(std::string_view path) noexcept {
    return path.size() >= 3 && isLetter(path[0]) && path[1] == ':' &&
           (path[2] == '\\' || path[2] == '/');
}

}  // namespace

std::string urlOfRecordedPath(std::string_view path) {
    if (path.empty()) {
        return {};
    }
    if (isFileURL(path)) {
        return encodedURL(path);
    }
    if (path.starts_with("\\\\")) {
        return "file:" + fileURL(withSlashesFor(path, '\\')).text.substr(7);
    }
    if (path.starts_with('/')) {
        return fileURL(path).text;
    }
    if (hasDrive(path) || path.find('\\') != std::string_view::npos) {
        return fileURL("/" + withSlashesFor(path, '\\')).text;
    }
    if (isColonPath(path)) {
        const std::size_t first = std::min(path.find_first_not_of(':'), path.size());
        return fileURL("/" + withSlashesFor(path.substr(first), ':')).text;
    }
    return fileURL("/" + std::string(path)).text;
}

std::string urlAsWritten(std::string url) {
    if (url.size() <= mostUnits) {
        return url;
    }
    const std::size_t slash = url.find_last_of('/');
    const bool isShorter = slash != std::string::npos && url.size() - slash <= mostUnits - 7;
    return isShorter ? "file://" + url.substr(slash) : std::string();
}

}  // namespace trellant::sessions
