// Where the table of contents lies, from the bytes at the very end of the file.
#pragma once

#include <trellant/io/bento_types.h>
#include <trellant/io/byte_readers.h>

#include <cstddef>
#include <cstdint>

namespace trellant {

inline constexpr std::size_t bentoFooterSize = 24;
/// Bytes of the standard footer and the extended one before it.
inline constexpr std::size_t bentoTailSize = 48;
/// Cap in bytes of the table of contents, which is read whole.
inline constexpr std::uint64_t bentoTocLimit = 536'870'912;

/// The footer that the file's last bytes hold. `tail` is the last 48 bytes of the file, or the
/// whole of a shorter one; `fileSize` its length in bytes. The table's place has been checked: it
/// ends at or before the footer. Throws OMFIOError.
[[nodiscard]] BentoFooter decodeBentoFooter(ByteView tail, std::uint64_t fileSize);

}  // namespace trellant
