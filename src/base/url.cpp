// SPDX-License-Identifier: Apache-2.0
#include <trellant/base/url.h>

#include <algorithm>
#include <vector>

namespace trellant {

namespace {

[[nodiscard]] bool staysUnencoded(char byte) noexcept {
    return (byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z') ||
           (byte >= '0' && byte <= '9') ||
           std::string_view("!$&'()*+,-./:=@_~").find(byte) != std::string_view::npos;
}

[[nodiscard]] std::optional<unsigned> hexDigit(char byte) noexcept {
    if (byte >= '0' && byte <= '9') {
        return static_cast<unsigned>(byte - '0');
    }
    if (byte >= 'a' && byte <= 'f') {
        return static_cast<unsigned>(byte - 'a') + 10U;
    }
    if (byte >= 'A' && byte <= 'F') {
        return static_cast<unsigned>(byte - 'A') + 10U;
    }
    return std::nullopt;
}

/// ASCII letters only: schemes and "localhost" hold no others. `lower` is in lower case.
[[nodiscard]] bool equalsIgnoringCase(std::string_view text, std::string_view lower) noexcept {
    return std::equal(text.begin(), text.end(), lower.begin(), lower.end(),
                      [](char left, char right) {
                          return (left >= 'A' && left <= 'Z' ? left - 'A' + 'a' : left) == right;
                      });
}

/// Nothing for a broken escape, and for a NUL in any form: no path of a file system holds one.
[[nodiscard]] std::optional<std::string> percentDecoded(std::string_view text) {
    std::string decoded;
    decoded.reserve(text.size());
    for (std::size_t at = 0; at < text.size(); ++at) {
        char byte = text[at];
        if (byte == '%') {
            if (text.size() - at < 3) {
                return std::nullopt;
            }
            const std::optional<unsigned> high = hexDigit(text[at + 1]);
            const std::optional<unsigned> low = hexDigit(text[at + 2]);
            if (!high || !low) {
                return std::nullopt;
            }
            byte = static_cast<char>(*high * 16U + *low);
            at += 2;
        }
        if (byte == '\0') {
            return std::nullopt;
        }
        decoded.push_back(byte);
    }
    return decoded;
}

}  // namespace

std::string absolutePath(std::string_view path, std::string_view currentDirectory) {
    if (path.starts_with('/')) {
        return std::string(path);
    }
    std::vector<std::string_view> names;
    for (std::string_view part : {currentDirectory, path}) {
        while (!part.empty()) {
            const std::string_view name = part.substr(0, part.find('/'));
            part.remove_prefix(std::min(name.size() + 1, part.size()));
            if (name == ".." && !names.empty()) {
                names.pop_back();
            } else if (!name.empty() && name != "." && name != "..") {
                names.push_back(name);
            }
        }
    }
    std::string absolute;
    for (const std::string_view name : names) {
        absolute.append("/").append(name);
    }
    return absolute.empty() ? "/" : absolute;
}

AAFURL fileURL(std::string_view absolutePath) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string text = "file://";
    text.reserve(text.size() + absolutePath.size());
    for (const char byte : absolutePath) {
        if (staysUnencoded(byte)) {
            text.push_back(byte);
        } else {
            const auto bits = static_cast<unsigned char>(byte);
            text.append({'%', digits[bits >> 4U], digits[bits & 15U]});
        }
    }
    return {std::move(text)};
}

std::optional<std::string> pathOfFileURL(std::string_view url) {
    constexpr std::string_view scheme = "file:";
    if (!equalsIgnoringCase(url.substr(0, scheme.size()), scheme)) {
        return std::nullopt;
    }
    url.remove_prefix(scheme.size());
    url = url.substr(0, url.find_first_of("?#"));
    if (url.starts_with("//")) {
        url.remove_prefix(2);
        const std::string_view host = url.substr(0, url.find('/'));
        if (!host.empty() && !equalsIgnoringCase(host, "localhost")) {
            return std::nullopt;
        }
        url.remove_prefix(host.size());
    }
    if (!url.starts_with('/')) {
        return std::nullopt;
    }
    return percentDecoded(url);
}

}  // namespace trellant
