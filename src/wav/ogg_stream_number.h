// SPDX-License-Identifier: Apache-2.0
// Every stream of an Ogg file has a number of 32 bits, by which streams that are woven together are
// told apart. The library draws it by chance, and the same sound is to give the same bytes.
#pragma once

#include <cstdint>

namespace trellant::wav {

/// Gives every page of the Ogg file behind `descriptor`, which holds one stream, that number and
/// the checksum that goes with it. Throws ConversionError for what is no Ogg file and when the
/// system refuses.
void setStreamNumber(int descriptor, std::uint32_t number);

}  // namespace trellant::wav
