// SPDX-License-Identifier: Apache-2.0
// File locations as URL text. A URL is kept as the text it was given; only paths are converted.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace [[gnu::visibility("default")]] trellant {

/// A URL, kept as its text. Any non-empty text is accepted from JSON.
struct AAFURL {
    std::string text;
    bool operator==(const AAFURL&) const = default;
};

/// `path` made absolute: an absolute path stays as written; a relative one (the empty path too) is
/// taken against `currentDirectory` (absolute) with "." and ".." removed, without a look at links.
[[nodiscard]] std::string absolutePath(std::string_view path, std::string_view currentDirectory);

/// The file URL of an absolute path: "file://" and the path's bytes, percent-encoded with
/// upper-case hexadecimal except A-Z a-z 0-9 and ! $ & ' ( ) * + , - . / : = @ _ ~
[[nodiscard]] AAFURL fileURL(std::string_view absolutePath);

/// The path that a file URL names: scheme "file" in any case, host empty or "localhost", the path
/// absolute and percent-decoded (raw blanks accepted), query and fragment cut off. Absent for any
/// other text, a broken percent escape or an encoded NUL.
[[nodiscard]] std::optional<std::string> pathOfFileURL(std::string_view url);

/// How a document in `directory` names the file at `path`, both absolute and without links: by the
/// way from one to the other, percent-encoded as in fileURL, never with a scheme.
[[nodiscard]] AAFURL relativeFileURL(std::string_view path, std::string_view directory);

/// The path that a document in `directory` (absolute) names: of a file URL its own, of a text
/// without a scheme the place that it leads to from there. Absent for any other text.
[[nodiscard]] std::optional<std::string> pathOfReference(std::string_view reference,
                                                         std::string_view directory);

}  // namespace trellant
