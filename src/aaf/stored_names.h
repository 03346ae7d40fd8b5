// SPDX-License-Identifier: Apache-2.0
// The names of the storages and streams that a property's objects and values stand in:
//   NAME-PID            one object, or a stream of bytes
//   NAME-PID{KEY}       one of the objects of a vector or set
//   NAME-PID index      the keys of a vector or set
// PID and KEY are hexadecimal. A NAME that would make these too long is squeezed: its middle is
// replaced by "-".
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace trellant::aaf {

/// "Content-3b03".
[[nodiscard]] std::u16string nameOfOne(std::string_view property, std::uint16_t pid);
/// "Interpol-nitions-2609", with room for what follows.
[[nodiscard]] std::u16string nameOfMany(std::string_view property, std::uint16_t pid);
/// "Interpol-nitions-2609 index".
[[nodiscard]] std::u16string nameOfIndex(std::u16string_view many);
/// "Interpol-nitions-2609{1f}".
[[nodiscard]] std::u16string nameOfMember(std::u16string_view many, std::uint32_t key);

}  // namespace trellant::aaf
