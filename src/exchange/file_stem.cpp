// SPDX-License-Identifier: Apache-2.0
#include <trellant/base/text.h>
#include <trellant/exchange/file_stem.h>

#include <algorithm>
#include <array>

namespace trellant::exchange {

namespace {

constexpr std::size_t mostStemCharacters = 100;
/// Leaves room in 255 bytes for a channel, a number and the extension.
constexpr std::size_t mostStemBytes = 200;

/// The last name in a path as any system writes it. Colons part the folders of one system and are
/// common in what people call a source, so they count in recorded paths only.
std::string_view lastName(std::string_view path, std::string_view separators) {
    const auto separator = path.find_last_of(separators);
    return separator == std::string_view::npos || separator + 1 == path.size()
               ? path
               : path.substr(separator + 1);
}

/// Without what says that it is an audio file: the new name says so itself.
std::string_view withoutAudioExtension(std::string_view name) {
    constexpr std::array<std::string_view, 6> extensions{".wav",  ".wave", ".aif",
                                                         ".aiff", ".aifc", ".bwf"};
    const std::string lower = lowerCased(name);
    for (const std::string_view extension : extensions) {
        if (lower.size() == name.size() && lower.ends_with(extension)) {
            return name.substr(0, name.size() - extension.size());
        }
    }
    return name;
}

/// Devices of a system that knows them under any extension.
bool isReserved(std::string_view stem) {
    std::string name = lowerCased(stem.substr(0, stem.find('.')));
    if (name == "con" || name == "prn" || name == "aux" || name == "nul") {
        return true;
    }
    return name.size() == 4 && (name.starts_with("com") || name.starts_with("lpt")) &&
           name.back() >= '0' && name.back() <= '9';
}

void trimEnds(std::string& text) {
    constexpr std::string_view dropped = ". ";
    text.erase(text.find_last_not_of(dropped) + 1);
    text.erase(0, std::min(text.find_first_not_of(dropped), text.size()));
}

}  // namespace

std::string fileStem(std::string_view name, NameKind kind) {
    const std::string_view last = lastName(name, kind == NameKind::path ? "/\\:" : "/\\");
    std::string stem = replacingNonAlphanumerics(withoutAudioExtension(last), "-_. ", '_');
    stem = std::string(prefixOfClusters(stem, mostStemCharacters, mostStemBytes));
    trimEnds(stem);
    if (stem.empty()) {
        return "audio";
    }
    return isReserved(stem) ? "_" + stem : stem;
}

}  // namespace trellant::exchange
