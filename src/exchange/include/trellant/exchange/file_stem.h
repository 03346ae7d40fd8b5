// SPDX-License-Identifier: Apache-2.0
// What a file is called that is named after something in a hand-off.
#pragma once

#include <string>
#include <string_view>

namespace [[gnu::visibility("default")]] trellant {
namespace exchange {

enum class NameKind {
    /// What a person calls something.
    name,
    /// Where a file lies, as any system writes it.
    path
};

/// A file name's stem that every system takes, from whatever a source is called: letters, marks,
/// numbers, "-", "_", "." and blanks, none of the last two at an end, no name that a system keeps
/// for itself, at most 100 characters; "audio" where nothing is left.
[[nodiscard]] std::string fileStem(std::string_view name, NameKind kind);

}  // namespace exchange
}  // namespace trellant
