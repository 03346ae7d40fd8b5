// SPDX-License-Identifier: Apache-2.0
#include <trellant/base/url.h>

#include <algorithm>
#include <initializer_list>
#include <iterator>
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

/// The names that a path passes through, without what leads nowhere.
[[nodiscard]] std::vector<std::string_view> namesOf(std::initializer_list<std::string_view> parts) {
    std::vector<std::string_view> names;
    for (std::string_view part : parts) {
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
    return names;
}

[[nodiscard]] std::string percentEncoded(std::string_view path) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string text;
    text.reserve(path.size());
    for (const char byte : path) {
        if (staysUnencoded(byte)) {
            text.push_back(byte);
        } else {
            const auto bits = static_cast<unsigned char>(byte);
            text.append({'%', digits[bits >> 4U], digits[bits & 15U]});
        }
    }
    return text;
}

/// Whether a reference begins with a scheme: what stands before a colon in its first segment.
[[nodiscard]] bool hasScheme(std::string_view reference) noexcept {
    const std::size_t end = reference.find_first_of(":/?#");
    return end != std::string_view::npos && reference[end] == ':';
}

}  // namespace

std::string absolutePath(std::string_view path, std::string_view currentDirectory) {
    if (path.starts_with('/')) {
        return std::string(path);
    }
    std::string absolute;
    for (const std::string_view name : namesOf({currentDirectory, path})) {
        absolute.append("/").append(name);
    }
    return absolute.empty() ? "/" : absolute;
}

AAFURL fileURL(std::string_view absolutePath) {
    return {"file://" + percentEncoded(absolutePath)};
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

AAFURL relativeFileURL(std::string_view path, std::string_view directory) {
    const auto target = namesOf({path});
    const auto base = namesOf({directory});
    const auto [aside, from] =
        std::mismatch(target.begin(), target.end(), base.begin(), base.end());
    std::string text;
    for (auto name = from; name != base.end(); ++name) {
        text += "../";
    }
    for (auto name = aside; name != target.end(); ++name) {
        text.append(*name).append(std::next(name) == target.end() ? "" : "/");
    }
    text = percentEncoded(text);
    return {hasScheme(text) ? "./" + text : text};
}

std::optional<std::string> pathOfReference(std::string_view reference, std::string_view directory) {
    if (hasScheme(reference)) {
        return pathOfFileURL(reference);
    }
    const auto path = percentDecoded(reference.substr(0, reference.find_first_of("?#")));
    return path ? std::optional(absolutePath(*path, directory)) : std::nullopt;
}

}  // namespace trellant
