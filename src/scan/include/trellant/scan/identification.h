// SPDX-License-Identifier: Apache-2.0
// Whether a file is an OMF file, told by what is in it and never by its name: containers end with
// a footer, and the names of the object model stand near their ends.
#pragma once

#include <trellant/io/random_access_file.h>

#include <optional>
#include <string>
#include <string_view>

namespace [[gnu::visibility("default")]] trellant {
namespace scan {

/// The identifiers of the registry PRONOM for the two object models.
inline constexpr std::string_view pronomOmf1 = "fmt/1854";
inline constexpr std::string_view pronomOmf2 = "fmt/1855";

/// Bytes at either end that are searched for names, as signatures of the registry have it.
inline constexpr std::size_t searchedEnd = 65'536;
/// The same at the end of a container that tells nothing there.
inline constexpr std::size_t searchedFarther = 1'048'576;

struct Identification {
    /// It ends as a container does.
    bool hasFooter = false;
    /// The registry's identifier, where names of one of the models stand near an end.
    std::optional<std::string> pronom{};
};

/// Absent for all that is neither a container nor the front of one: what lost its end on the way
/// begins with names of the object model between bytes that are no text. Reads the last 24 bytes
/// and 64 KiB at the front, and up to 1 MiB at the end of a container. Never throws for what is
/// there.
[[nodiscard]] std::optional<Identification> identified(const RandomAccessFile& file);

}  // namespace scan
}  // namespace trellant
