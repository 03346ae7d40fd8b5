// SPDX-License-Identifier: Apache-2.0
// The names that a container gives to properties, or to types.
#pragma once

#include <trellant/base/keyed_hash.h>
#include <trellant/io/byte_readers.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace trellant {

class BentoNames {
  public:
    /// To be called with ascending `object`s, so that the smallest one keeps a name that several
    /// carry. `value` is the stored name; an empty one is passed over.
    /// Gives the bytes of the text kept.
    std::size_t add(std::uint32_t object, ByteView value);

    [[nodiscard]] std::optional<std::string_view> name(std::uint32_t object) const;
    [[nodiscard]] std::optional<std::uint32_t> object(std::string_view name) const;

  private:
    KeyedMap<std::uint32_t, std::string> names_;
    /// Views into names_, whose texts never move.
    KeyedMap<std::string_view, std::uint32_t> objects_;
};

}  // namespace trellant
