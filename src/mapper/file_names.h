// SPDX-License-Identifier: Apache-2.0
// How extracted files are named: safe anywhere, unique within the work directory.
#pragma once

#include <trellant/base/free_numbers.h>

#include <string>
#include <string_view>

namespace trellant {

/// The last component of a path with "/" between components; trailing slashes do not count. Of
/// slashes alone it is "/", of the empty text empty.
[[nodiscard]] std::string_view lastPathComponent(std::string_view path);

/// What follows the last dot of a file name (no path); empty when nothing does, when it holds a
/// blank, or when that dot is the name's first character.
[[nodiscard]] std::string_view extensionOf(std::string_view fileName);

/// `fileName` without its extension and the dot before it.
[[nodiscard]] std::string_view withoutExtension(std::string_view fileName);

/// `name` with every scalar that is no letter, mark or number and none of "-", "_", ".", " "
/// replaced by "_", then at most its first 120 characters (grapheme clusters).
[[nodiscard]] std::string safeName(std::string_view name);

/// Finds free names in one directory. Names once found taken are remembered, so that a thousand
/// sources of one name do not ask the system half a million times.
class UniqueNames {
  public:
    /// `directory`: absolute path.
    explicit UniqueNames(std::string directory) : directory_(std::move(directory)) {}

    /// A path in the directory at which nothing exists in any form, links without a target
    /// included: BASE.EXTENSION, else BASE_2.EXTENSION to BASE_999.EXTENSION; when all are taken
    /// the first again, which is then overwritten. The base is cut at a character boundary so that
    /// the name fits 255 bytes.
    [[nodiscard]] std::string uniqueURL(std::string_view base, std::string_view extension);

  private:
    [[nodiscard]] std::string candidate(std::string_view base, std::string_view suffix,
                                        std::string_view extension) const;

    std::string directory_;
    FreeNumbers numbers_;
};

}  // namespace trellant
